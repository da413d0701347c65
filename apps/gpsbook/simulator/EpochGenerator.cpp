#include "apps/gpsbook/simulator/EpochGenerator.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "apps/gpsbook/readers/LeapSeconds.h"
#include "platform/coord/CEllissoide.h"

namespace gpsbook {

namespace {

constexpr std::int64_t kGridSide = 5;     // points
constexpr std::int64_t kStopEpochs = 10;  // on a point
constexpr std::int64_t kGoEpochs = 5;     // to the next

constexpr double kFloatFactor = 20.0;    // noise of a float solution, in noises of a fixed one
constexpr double kSingleFactor = 150.0;  // the same of a single solution
constexpr double kUpFactor = 2.0;        // noise of up, in noises of east

constexpr double kChanceOfFloat = 0.005;  // of losing the fixed solution, each epoch
constexpr double kChanceOfSingle = 0.001;

Vector3 GridPoint(std::int64_t stop, double side) {
    // Along one row and back along the next, over and over.
    const std::int64_t inGrid = stop % (kGridSide * kGridSide);
    const std::int64_t row = inGrid / kGridSide;
    const std::int64_t column = row % 2 == 0 ? inGrid % kGridSide : kGridSide - 1 - inGrid % kGridSide;
    const double spacing = side / static_cast<double>(kGridSide - 1);
    return {spacing * static_cast<double>(column), spacing * static_cast<double>(row), 0.0};
}

Vector3 OnGrid(std::int64_t index, double side) {
    const std::int64_t stop = index / (kStopEpochs + kGoEpochs);
    const std::int64_t since = index % (kStopEpochs + kGoEpochs);
    const Vector3 from = GridPoint(stop, side);
    if (since < kStopEpochs) return from;
    const Vector3 to = GridPoint(stop + 1, side);
    const double part = static_cast<double>(since - kStopEpochs + 1) / static_cast<double>(kGoEpochs + 1);
    return {from[0] + part * (to[0] - from[0]), from[1] + part * (to[1] - from[1]), 0.0};
}

double NoiseFactor(Solution solution) {
    switch (solution) {
        case Solution::single:
            return kSingleFactor;
        case Solution::floating:
            return kFloatFactor;
        case Solution::fixed:
            break;
    }
    return 1.0;
}

std::int64_t MsOfEpoch(std::int64_t index, double rate) {
    return std::llround(static_cast<double>(index) * 1000.0 / rate);
}

}  // namespace

Vector3 TruthAt(const SimulationOptions& options, std::int64_t index) {
    const auto i = static_cast<double>(index);
    const auto n = static_cast<double>(options.epochs);
    switch (options.track) {
        case Track::line:
            return {options.epochs > 1 ? options.length * i / (n - 1.0) : 0.0, 0.0, 0.0};
        case Track::circle: {
            const double t = 2.0 * std::numbers::pi * i / n;
            return {options.radius * std::sin(t), options.radius * std::cos(t), 0.0};
        }
        case Track::stops:
            break;
    }
    return OnGrid(index, options.length);
}

EpochGenerator::EpochGenerator(const SimulationOptions& options)
    : options_(options),
      frame_(options.baseLat, options.baseLon),
      base_{},
      startMs_(UtcToGpsMs(options.start).value()),
      random_(options.seed),
      held_(std::clamp<std::int64_t>(options.epochs / 10, 1, 10)) {
    CEllissoide().GrafToGeoc(options.baseLat, options.baseLon, options.baseHeight, base_[0], base_[1],
                             base_[2]);
}

SimulatedEpoch EpochGenerator::Next() {
    SimulatedEpoch e;
    e.gpsMs = startMs_ + MsOfEpoch(index_, options_.rate);
    e.utc = GpstToUtc(e.gpsMs);
    e.solution = NextSolution();
    WalkSatellites();
    e.gps = gps_;
    e.glonass = glonass_;
    e.pdop = pdop_ / 100.0;
    const double ratio = random_.Uniform();
    if (e.solution != Solution::single)
        e.ratio = e.solution == Solution::fixed ? 3.0 + 47.0 * ratio : 1.0 + 1.9 * ratio;

    e.truth = TruthAt(options_, index_);
    e.sigma = options_.noise * NoiseFactor(e.solution);
    e.sigmaUp = e.sigma * kUpFactor;
    for (std::size_t i = 0; i < 3; ++i)
        e.enu[i] = e.truth[i] + random_.Gaussian() * (i == 2 ? e.sigmaUp : e.sigma);
    const Vector3 offset = frame_.ToGeocentric(e.enu);
    for (std::size_t i = 0; i < 3; ++i) e.xyz[i] = base_[i] + offset[i];
    CEllissoide().GeocToGraf(e.xyz[0], e.xyz[1], e.xyz[2], e.lat, e.lon, e.h);

    if (index_ > 0) {
        const Vector3 before = TruthAt(options_, index_ - 1);
        const double east = e.truth[0] - before[0];
        const double north = e.truth[1] - before[1];
        e.speed = std::hypot(east, north) * options_.rate;
        const double course = std::atan2(east, north) * 180.0 / std::numbers::pi;
        e.course = course < 0.0 ? course + 360.0 : course;
    }
    ++index_;
    return e;
}

/// A mixed log begins with a tenth of its epochs single and then a fifth float, at most 10 and 20 and at
/// least one each: a log of three epochs has all solutions.
Solution EpochGenerator::NextSolution() {
    const double chance = random_.Uniform();
    const double duration = random_.Uniform();
    switch (options_.quality) {
        case QualityPlan::fixed:
            return Solution::fixed;
        case QualityPlan::floating:
            return Solution::floating;
        case QualityPlan::single:
            return Solution::single;
        case QualityPlan::mixed:
            break;
    }
    if (held_ > 0) {
        --held_;
        return solution_;
    }
    if (solution_ == Solution::single) {
        solution_ = Solution::floating;
        held_ = std::clamp<std::int64_t>(options_.epochs / 5, 1, 20) - 1;
    } else if (solution_ == Solution::floating) {
        // The first fixed epoch is a sure one.
        solution_ = Solution::fixed;
    } else if (chance < kChanceOfSingle) {
        solution_ = Solution::single;
        held_ = 2 + static_cast<std::int64_t>(8.0 * duration);
    } else if (chance < kChanceOfSingle + kChanceOfFloat) {
        solution_ = Solution::floating;
        held_ = 4 + static_cast<std::int64_t>(26.0 * duration);
    }
    return solution_;
}

/// Satellites come and go one at a time; the first epoch has those of the beginning.
void EpochGenerator::WalkSatellites() {
    const auto step = [&](double chance) {
        const double u = random_.Uniform();
        if (index_ == 0 || u >= 2.0 * chance) return 0;
        return u < chance ? -1 : 1;
    };
    gps_ = std::clamp(gps_ + step(0.02), 6, 12);
    glonass_ = std::clamp(glonass_ + step(0.02), 4, 9);
    pdop_ = std::clamp(pdop_ + step(0.3), 110, 290);
}

}  // namespace gpsbook
