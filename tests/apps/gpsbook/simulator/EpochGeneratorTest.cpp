#include "apps/gpsbook/simulator/EpochGenerator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace gpsbook {
namespace {

std::vector<SimulatedEpoch> All(const SimulationOptions& options) {
    EpochGenerator generator(options);
    std::vector<SimulatedEpoch> epochs;
    for (std::int64_t i = 0; i < options.epochs; ++i) epochs.push_back(generator.Next());
    return epochs;
}

void ExpectPlace(const Vector3& place, double east, double north, std::int64_t index) {
    EXPECT_NEAR(place[0], east, 1e-9) << index;
    EXPECT_NEAR(place[1], north, 1e-9) << index;
    EXPECT_EQ(place[2], 0.0) << index;
}

TEST(TruthAt, LineRunsFromTheBaseToTheEast) {
    SimulationOptions options;
    options.epochs = 5;
    options.length = 100.0;
    for (std::int64_t i = 0; i < 5; ++i)
        ExpectPlace(TruthAt(options, i), 25.0 * static_cast<double>(i), 0.0, i);
    options.epochs = 1;
    ExpectPlace(TruthAt(options, 0), 0.0, 0.0, 0);
}

TEST(TruthAt, CircleRunsFromNorthOverEast) {
    SimulationOptions options;
    options.track = Track::circle;
    options.epochs = 4;
    options.radius = 50.0;
    ExpectPlace(TruthAt(options, 0), 0.0, 50.0, 0);
    ExpectPlace(TruthAt(options, 1), 50.0, 0.0, 1);
    ExpectPlace(TruthAt(options, 2), 0.0, -50.0, 2);
    ExpectPlace(TruthAt(options, 3), -50.0, 0.0, 3);
}

TEST(TruthAt, StopsRestOnTheGridAndMoveBetween) {
    SimulationOptions options;
    options.track = Track::stops;
    options.length = 120.0;  // 30 m from point to point
    options.epochs = 1000;
    for (std::int64_t i = 0; i < 10; ++i) ExpectPlace(TruthAt(options, i), 0.0, 0.0, i);
    for (std::int64_t i = 10; i < 15; ++i)
        ExpectPlace(TruthAt(options, i), 5.0 * static_cast<double>(i - 9), 0.0, i);
    for (std::int64_t i = 15; i < 25; ++i) ExpectPlace(TruthAt(options, i), 30.0, 0.0, i);
    ExpectPlace(TruthAt(options, 4 * 15), 120.0, 0.0, 60);   // end of the first row
    ExpectPlace(TruthAt(options, 5 * 15), 120.0, 30.0, 75);  // the second goes back
    ExpectPlace(TruthAt(options, 9 * 15), 0.0, 30.0, 135);
    ExpectPlace(TruthAt(options, 24 * 15), 120.0, 120.0, 360);  // the last point
    ExpectPlace(TruthAt(options, 25 * 15), 0.0, 0.0, 375);      // and over again
}

TEST(EpochGenerator, TimesFollowTheRate) {
    SimulationOptions options;
    options.epochs = 4;
    options.rate = 3.0;
    const auto epochs = All(options);
    const std::uint32_t start = 8 * 3600 * 1000;
    EXPECT_EQ(epochs[0].utc.todMs, start);
    EXPECT_EQ(epochs[1].utc.todMs, start + 333);
    EXPECT_EQ(epochs[2].utc.todMs, start + 667);
    EXPECT_EQ(epochs[3].utc.todMs, start + 1000);
}

TEST(EpochGenerator, TimesGoThroughALeapSecondAndIntoTheNextDay) {
    SimulationOptions options;
    options.epochs = 3;
    options.start = {{2016, 12, 31}, 86399000};
    const auto epochs = All(options);
    EXPECT_EQ(epochs[1].utc.date, (CivilDate{2016, 12, 31}));
    EXPECT_EQ(epochs[1].utc.todMs, 86400000U);
    EXPECT_EQ(epochs[2].utc.date, (CivilDate{2017, 1, 1}));
    EXPECT_EQ(epochs[2].utc.todMs, 0U);
    EXPECT_EQ(epochs[2].gpsMs - epochs[0].gpsMs, 2000);
}

TEST(EpochGenerator, MixedLogOfAnyLengthHasAllSolutions) {
    for (const std::int64_t count : {3, 4, 10, 50, 1000}) {
        SimulationOptions options;
        options.epochs = count;
        std::set<Solution> found;
        for (const SimulatedEpoch& epoch : All(options)) found.insert(epoch.solution);
        EXPECT_EQ(found.size(), 3U) << count;
    }
}

TEST(EpochGenerator, MixedLogBeginsSingleThenFloatThenFixed) {
    SimulationOptions options;
    options.epochs = 100;
    const auto epochs = All(options);
    for (std::size_t i = 0; i < 31; ++i) {
        const Solution expected = i < 10 ? Solution::single : i < 30 ? Solution::floating : Solution::fixed;
        EXPECT_EQ(epochs[i].solution, expected) << i;
    }
}

TEST(EpochGenerator, LongMixedLogLosesTheFixedSolutionAndFindsItAgain) {
    SimulationOptions options;
    options.epochs = 20000;
    const auto epochs = All(options);
    int toFloat = 0;
    int toSingle = 0;
    int toFixed = 0;
    for (std::size_t i = 1; i < epochs.size(); ++i) {
        const Solution before = epochs[i - 1].solution;
        const Solution now = epochs[i].solution;
        if (before == Solution::fixed && now == Solution::floating) ++toFloat;
        if (before == Solution::fixed && now == Solution::single) ++toSingle;
        if (before == Solution::floating && now == Solution::fixed) ++toFixed;
        EXPECT_FALSE(before == Solution::single && now == Solution::fixed) << i;
    }
    EXPECT_GT(toFloat, 20);
    EXPECT_GT(toSingle, 3);
    EXPECT_GE(toFixed, toFloat + toSingle);
}

TEST(EpochGenerator, PlannedSolutionIsTheOnlyOne) {
    const std::pair<QualityPlan, Solution> plans[] = {{QualityPlan::fixed, Solution::fixed},
                                                      {QualityPlan::floating, Solution::floating},
                                                      {QualityPlan::single, Solution::single}};
    for (const auto& [plan, solution] : plans) {
        SimulationOptions options;
        options.quality = plan;
        for (const SimulatedEpoch& epoch : All(options)) EXPECT_EQ(epoch.solution, solution);
    }
}

TEST(EpochGenerator, NoiseHasTheDeviationItClaims) {
    for (const QualityPlan plan : {QualityPlan::fixed, QualityPlan::floating, QualityPlan::single}) {
        SimulationOptions options;
        options.quality = plan;
        options.epochs = 20000;
        options.noise = 0.02;
        Vector3 squares{};
        double sigma = 0.0;
        double sigmaUp = 0.0;
        for (const SimulatedEpoch& epoch : All(options)) {
            for (std::size_t i = 0; i < 3; ++i)
                squares[i] += std::pow(epoch.enu[i] - epoch.truth[i], 2) / 20000.0;
            sigma = epoch.sigma;
            sigmaUp = epoch.sigmaUp;
        }
        EXPECT_NEAR(std::sqrt(squares[0]) / sigma, 1.0, 0.02);
        EXPECT_NEAR(std::sqrt(squares[1]) / sigma, 1.0, 0.02);
        EXPECT_NEAR(std::sqrt(squares[2]) / sigmaUp, 1.0, 0.02);
        EXPECT_GE(sigma, 0.02);
    }
}

TEST(EpochGenerator, SatellitesAndDopStayInTheirLimitsAndChange) {
    SimulationOptions options;
    options.epochs = 20000;
    std::set<int> gps;
    std::set<int> glonass;
    for (const SimulatedEpoch& epoch : All(options)) {
        gps.insert(epoch.gps);
        glonass.insert(epoch.glonass);
        EXPECT_GE(epoch.pdop, 1.1);
        EXPECT_LE(epoch.pdop, 2.9);
    }
    EXPECT_GE(*gps.begin(), 6);
    EXPECT_LE(*gps.rbegin(), 12);
    EXPECT_GE(*glonass.begin(), 4);
    EXPECT_LE(*glonass.rbegin(), 9);
    EXPECT_GT(gps.size(), 3U);
    EXPECT_GT(glonass.size(), 3U);
}

}  // namespace
}  // namespace gpsbook
