// Positions of a receiver log, taken out the simplest way, with no reader of the program in between.
#pragma once

#include <string>
#include <vector>

#include "tests/host/coord/Values.h"

namespace gpstest {

/// Latitude, longitude (degrees) and height (metres, 0 where the log has none) of every GGA sentence with
/// coordinates, whatever its checksum; or of every row of a solution file.
std::vector<Triple> PositionsOfNmea(const std::string& path);
std::vector<Triple> PositionsOfPos(const std::string& path);

}  // namespace gpstest
