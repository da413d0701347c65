// PosText: the header and rows of a simulated solution file (.pos), in GPS time.
#pragma once

#include <string>

#include "apps/gpsbook/simulator/EpochGenerator.h"

namespace gpsbook {

/// Appends the lines that tell what the rows are, with the base as reference position.
/// Requires: a form of .pos.
void AppendPosHeader(std::string& out, const SimulationOptions& options);

/// Appends one row. Degrees have nine decimals (0.1 mm), lengths four. Off the diagonal the precision columns
/// hold sign(c) sqrt(|c|) of a covariance c, in metres.
/// Requires: a form of .pos.
void AppendPosRow(std::string& out, const SimulatedEpoch& epoch, const SimulationOptions& options);

}  // namespace gpsbook
