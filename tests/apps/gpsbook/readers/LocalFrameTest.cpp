#include "apps/gpsbook/readers/LocalFrame.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>

#include "platform/coord/CEllissoide.h"

namespace gpsbook {
namespace {

void ExpectNear(const Covariance& actual, const Covariance& expected, double tolerance) {
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "element " << i;
}

// Where equator and Greenwich meridian cross, up is X, east is Y and north is Z.
TEST(LocalFrame, AxesAtTheOriginOfCoordinates) {
    const Vector3 xyz = LocalFrame(0.0, 0.0).ToGeocentric({1.0, 2.0, 3.0});
    EXPECT_DOUBLE_EQ(xyz[0], 3.0);
    EXPECT_DOUBLE_EQ(xyz[1], 1.0);
    EXPECT_DOUBLE_EQ(xyz[2], 2.0);
    // e n u en eu nu -> xx = uu, yy = ee, zz = nn, xy = eu, xz = nu, yz = en
    ExpectNear(LocalFrame(0.0, 0.0).CovToGeocentric({1.0, 4.0, 9.0, 0.1, 0.2, 0.3}),
               {9.0, 1.0, 4.0, 0.2, 0.3, 0.1}, 1e-14);
}

// At 90 degrees east on the equator east is -X, up is Y.
TEST(LocalFrame, AxesAtNinetyDegreesEast) {
    const Vector3 xyz = LocalFrame(0.0, 90.0).ToGeocentric({1.0, 2.0, 3.0});
    EXPECT_NEAR(xyz[0], -1.0, 1e-15);
    EXPECT_NEAR(xyz[1], 3.0, 1e-15);
    EXPECT_NEAR(xyz[2], 2.0, 1e-15);
    ExpectNear(LocalFrame(0.0, 90.0).CovToGeocentric({1.0, 4.0, 9.0, 0.1, 0.2, 0.3}),
               {1.0, 9.0, 4.0, -0.2, -0.1, 0.3}, 1e-14);
}

// At the north pole on the Greenwich meridian north is -X, up is Z.
TEST(LocalFrame, AxesAtTheNorthPole) {
    const Vector3 xyz = LocalFrame(90.0, 0.0).ToGeocentric({1.0, 2.0, 3.0});
    EXPECT_NEAR(xyz[0], -2.0, 1e-15);
    EXPECT_NEAR(xyz[1], 1.0, 1e-15);
    EXPECT_NEAR(xyz[2], 3.0, 1e-15);
}

TEST(LocalFrame, UpIsTheEllipsoidsNormal) {
    const CEllissoide wgs84;
    double x0 = 0.0;
    double y0 = 0.0;
    double z0 = 0.0;
    double x1 = 0.0;
    double y1 = 0.0;
    double z1 = 0.0;
    wgs84.GrafToGeoc(-33.3, 151.2, 0.0, x0, y0, z0);
    wgs84.GrafToGeoc(-33.3, 151.2, 1000.0, x1, y1, z1);
    const Vector3 up = LocalFrame(-33.3, 151.2).ToGeocentric({0.0, 0.0, 1000.0});
    EXPECT_NEAR(up[0], x1 - x0, 1e-8);
    EXPECT_NEAR(up[1], y1 - y0, 1e-8);
    EXPECT_NEAR(up[2], z1 - z0, 1e-8);
}

TEST(LocalFrame, ThereAndBackAgainIsTheSameCovariance) {
    const Covariance enu{1.0, 4.0, 9.0, 0.5, -0.2, 0.7};
    const LocalFrame frame(45.0657, 7.659);
    const Covariance xyz = frame.CovToGeocentric(enu);
    EXPECT_GT(std::abs(xyz[0] - enu[0]), 0.1);
    EXPECT_NEAR(xyz[0] + xyz[1] + xyz[2], 14.0, 1e-12);  // a rotation keeps the trace
    ExpectNear(frame.CovToLocal(xyz), enu, 1e-12);
}

TEST(LocalFrame, RmsOfVariancesBelowZeroIsZero) {
    EXPECT_DOUBLE_EQ(HorizontalRms({9.0, 16.0, 1.0, 0.0, 0.0, 0.0}), 5.0);
    EXPECT_DOUBLE_EQ(VerticalRms({9.0, 16.0, 4.0, 0.0, 0.0, 0.0}), 2.0);
    EXPECT_EQ(HorizontalRms({-1e-20, 0.0, 1.0, 0.0, 0.0, 0.0}), 0.0);
    EXPECT_EQ(VerticalRms({0.0, 0.0, -1e-20, 0.0, 0.0, 0.0}), 0.0);
}

}  // namespace
}  // namespace gpsbook
