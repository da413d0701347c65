#include "apps/gpsbook/simulator/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace gpsbook {
namespace {

TEST(Random, GivesTheSequenceOfSplitMix64) {
    // The sequence of this seed as it is published with implementations in many languages.
    Random random(1234567);
    EXPECT_EQ(random.Next(), 6457827717110365317U);
    EXPECT_EQ(random.Next(), 3203168211198807973U);
    EXPECT_EQ(random.Next(), 9817491932198370423U);
    EXPECT_EQ(random.Next(), 4593380528125082431U);
    EXPECT_EQ(random.Next(), 16408922859458223821U);
}

TEST(Random, UniformFillsTheUnitInterval) {
    Random random(7);
    double least = 1.0;
    double most = 0.0;
    double sum = 0.0;
    constexpr int count = 100000;
    for (int i = 0; i < count; ++i) {
        const double u = random.Uniform();
        least = std::min(least, u);
        most = std::max(most, u);
        sum += u;
    }
    EXPECT_GE(least, 0.0);
    EXPECT_LT(most, 1.0);
    EXPECT_LT(least, 0.001);
    EXPECT_GT(most, 0.999);
    EXPECT_NEAR(sum / count, 0.5, 0.005);
}

TEST(Random, GaussianHasMeanZeroAndDeviationOne) {
    Random random(7);
    double sum = 0.0;
    double squares = 0.0;
    int within = 0;
    constexpr int count = 100000;
    for (int i = 0; i < count; ++i) {
        const double g = random.Gaussian();
        sum += g;
        squares += g * g;
        if (std::fabs(g) < 1.0) ++within;
    }
    EXPECT_NEAR(sum / count, 0.0, 0.015);
    EXPECT_NEAR(squares / count, 1.0, 0.02);
    EXPECT_NEAR(static_cast<double>(within) / count, 0.683, 0.01);
}

}  // namespace
}  // namespace gpsbook
