// What the cases of stored points share.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "bench/Workload.h"

namespace bench {

inline constexpr short kVersion = 1400;

/// Bytes of a point record of the newest version without its texts' own bytes: lengths 8, entity 33, fix and
/// precision 146, reserve 4, cloud 24.
inline constexpr std::size_t kPointBytes = 215;

/// The section of a book at the newest version.
std::string SectionOf(CLibGps& book);

/// The i-th point of the workload as an ordinary object.
std::unique_ptr<PlainPoint> MakePlainPoint(std::size_t i);

/// A new file in the folder of the measurement (--dir, else the system's temporary folder).
std::string ScratchFile(const std::string& name);
void SetScratchFolder(const std::string& folder);

}  // namespace bench
