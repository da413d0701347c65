// NmeaText: the sentences of a simulated epoch (NMEA 0183).
#pragma once

#include <string>
#include <string_view>

#include "apps/gpsbook/simulator/EpochGenerator.h"

namespace gpsbook {

/// The exclusive or of all characters, which are those between '$' and '*'.
unsigned NmeaChecksum(std::string_view body);

/// Appends GGA, RMC, GST, a GSA for GPS and one for GLONASS and, when asked for, GSV sentences; CRLF ends.
/// Minutes have eight decimals (0.02 mm), lengths four. In GGA: height = altitude + separation, all three as
/// printed but for the rounding of the height to 0.1 mm.
void AppendNmea(std::string& out, const SimulatedEpoch& epoch, const SimulationOptions& options);

}  // namespace gpsbook
