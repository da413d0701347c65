// Simulator: writes the log of a receiver that was never there.
#pragma once

#include <cstdint>
#include <ostream>

#include "apps/gpsbook/simulator/SimulationOptions.h"

namespace gpsbook {

/// What was written.
struct SimulationSummary {
    std::int64_t epochs = 0;
    std::int64_t fixed = 0;
    std::int64_t floating = 0;
    std::int64_t single = 0;
    std::int64_t bytes = 0;
    UtcTime first;  // of the first epoch
    UtcTime last;   // of the last epoch
};

/// Writes the log piece by piece; the same options give the same bytes.
/// Requires: OptionProblem(options) is none.
/// On error: stops when `out` fails; the caller sees that in its state.
SimulationSummary Simulate(const SimulationOptions& options, std::ostream& out);

}  // namespace gpsbook
