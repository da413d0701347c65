// ContainerScan: sections found by their own marks.
#pragma once

#include <string>
#include <vector>

#include "host/os/FileOperations.h"
#include "host/project/DamageReport.h"
#include "host/project/SectionSource.h"

namespace gpsproject {

/// Reads through the whole file. A section whose end is lost goes on to the next mark, one whose head is lost
/// has no name and is only told of. Answers 0 or an error number of errno.
int ScanSections(FileOperations& files, int file, std::int64_t size, std::vector<FoundSection>& sections,
                 std::vector<Damage>& damages);

}  // namespace gpsproject
