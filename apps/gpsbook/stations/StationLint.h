// StationLint: what looks wrong about the bases of a book, seen from the permanent stations.
#pragma once

#include <vector>

#include "apps/gpsbook/book/Lint.h"
#include "host/coord/StationFiles.h"

namespace gpsbook {

/// A base this near to a station, metres, has the station's coordinates: frames of Europe and of the whole
/// earth are decimetres apart, and two of Europe a few centimetres.
inline constexpr double kSamePosition = 0.02;

/// Findings "base-name" and "base-frame" of all groups, in their order.
std::vector<Finding> LintBases(const CLibGps& book, const StationsInUse& stations);

}  // namespace gpsbook
