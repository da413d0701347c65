// EpochGenerator: the epochs of a simulated log, one after the other.
#pragma once

#include <cstdint>

#include "apps/gpsbook/readers/Calendar.h"
#include "apps/gpsbook/readers/LocalFrame.h"
#include "apps/gpsbook/simulator/Random.h"
#include "apps/gpsbook/simulator/SimulationOptions.h"

namespace gpsbook {

enum class Solution : std::uint8_t { single, floating, fixed };

/// One epoch: the truth, and what the receiver makes of it.
struct SimulatedEpoch {
    std::int64_t gpsMs = 0;  // GPS time, milliseconds since its epoch
    UtcTime utc;
    Vector3 truth{};   // east, north, up of the base; metres
    Vector3 enu{};     // the same with noise; metres
    Vector3 xyz{};     // the noisy position, geocentric WGS 84; metres
    double lat = 0.0;  // the noisy position; degrees
    double lon = 0.0;  // degrees
    double h = 0.0;    // metres above the ellipsoid
    Solution solution = Solution::single;
    double sigma = 0.0;    // metres, of east and of north
    double sigmaUp = 0.0;  // metres
    int gps = 0;           // satellites used
    int glonass = 0;
    double pdop = 0.0;    // two decimals
    double ratio = 0.0;   // of the ambiguity test, one decimal
    double speed = 0.0;   // metres a second, of the truth since the epoch before
    double course = 0.0;  // degrees from north over east, of the same
};

/// The true place of epoch `index`: east, north, up of the base; metres.
Vector3 TruthAt(const SimulationOptions& options, std::int64_t index);

/// Draws the same random numbers for every form of log, so that all forms of one simulation tell of the same
/// positions.
class EpochGenerator {
public:
    /// Requires: OptionProblem(options) is none.
    explicit EpochGenerator(const SimulationOptions& options);

    /// Requires: called at most `epochs` times.
    SimulatedEpoch Next();

private:
    Solution NextSolution();
    void WalkSatellites();

    SimulationOptions options_;
    LocalFrame frame_;
    Vector3 base_;  // geocentric, metres
    std::int64_t startMs_;
    Random random_;
    std::int64_t index_ = 0;
    Solution solution_ = Solution::single;
    std::int64_t held_;  // epochs for which the solution stays as it is
    int gps_ = 9;
    int glonass_ = 6;
    int pdop_ = 160;  // hundredths
};

}  // namespace gpsbook
