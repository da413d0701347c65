// SectionDamage: what the reading of a section found out about it.
#pragma once

#include <vector>

#include "host/project/DamageReport.h"
#include "host/project/SectionSource.h"

class ifpstream;

namespace gpsproject {

/// So many reads past the end are harmless; a damaged count would want billions.
inline constexpr int kPastEndReads = 4096;

/// Adds what is wrong: bytes, checksum, reads that found nothing. Requires: the stream has been read to the
/// end of the source.
void TellSectionDamage(const FoundSection& section, const ifpstream& in, const SectionSource& source,
                       std::vector<Damage>& damages);

}  // namespace gpsproject
