#include "platform/coord/CEllissoide.h"

#include <gtest/gtest.h>

#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

constexpr long double kPi = 3.14159265358979323846264338327950288L;

struct Figure {
    const char* name;
    double a, rf;
};

constexpr Figure kFigures[] = {
    {"WGS 84", 6378137.0, 298.257223563}, {"International 1924", 6378388.0, 297.0}, {"sphere", 6371000.0, 0}};

constexpr double kLatitudes[] = {-90, -89.9999999, -75, -45, -12.5, -1e-9, 0, 1e-9, 23, 45, 60, 89.99, 90};
constexpr double kLongitudes[] = {-179.9999999, -123.25, -90, -1e-9, 0, 12.5, 90, 135, 179.9999999, 180};
constexpr double kHeights[] = {-5e6, -1e6, -11000, -1, 0, 100, 8848, 4e5, 1e6, 2e7};

// The closed form with semi-axes instead of the eccentricity, in extended precision.
Triple Geocentric(const Figure& f, double lat, double lon, double h) {
    const long double a = f.a, b = f.rf > 0 ? a - a / f.rf : a;
    const long double phi = lat * (kPi / 180), lambda = lon * (kPi / 180);
    const long double c = std::cos(phi), s = std::sin(phi);
    const long double w = std::sqrt(a * a * c * c + b * b * s * s);
    return {static_cast<double>((a * a / w + h) * c * std::cos(lambda)),
            static_cast<double>((a * a / w + h) * c * std::sin(lambda)),
            static_cast<double>((b * b / w + h) * s)};
}

TEST(CEllissoideTest, DefaultIsWgs84) {
    const CEllissoide e;
    EXPECT_EQ(e.GetSemiAsse(), 6378137.0);
    EXPECT_NEAR(e.GetE2(), 6.69437999014e-3, 1e-14);
}

TEST(CEllissoideTest, ZeroInverseFlatteningIsASphere) { EXPECT_EQ(CEllissoide(6371000.0, 0).GetE2(), 0.0); }

TEST(CEllissoideTest, ForwardAgreesWithTheSemiAxesFormula) {
    for (const Figure& f : kFigures) {
        const CEllissoide e(f.a, f.rf);
        for (const double lat : kLatitudes)
            for (const double lon : kLongitudes)
                for (const double h : kHeights) {
                    Triple t;
                    ASSERT_TRUE(e.GrafToGeoc(lat, lon, h, t.a, t.b, t.c)) << f.name;
                    ASSERT_TRUE(Near(t, Geocentric(f, lat, lon, h), 3e-8))
                        << f.name << " at " << lat << ", " << lon << ", " << h;
                }
    }
}

TEST(CEllissoideTest, BackwardFindsTheGeographicPositionWithinAMicrometre) {
    for (const Figure& f : kFigures) {
        const CEllissoide e(f.a, f.rf);
        for (const double lat : kLatitudes)
            for (const double lon : kLongitudes)
                for (const double h : kHeights) {
                    const Triple g = Geocentric(f, lat, lon, h);
                    Triple t;
                    ASSERT_TRUE(e.GeocToGraf(g.a, g.b, g.c, t.a, t.b, t.c)) << f.name;
                    const double metresPerDegree = (f.a + h) * kRad;
                    ASSERT_LE(std::fabs(t.a - lat) * metresPerDegree, 1e-6)
                        << f.name << " at " << lat << ", " << lon << ", " << h;
                    ASSERT_LE(std::fabs(t.c - h), 1e-6)
                        << f.name << " at " << lat << ", " << lon << ", " << h;
                    const double parallel = metresPerDegree * std::cos(lat * kRad);
                    ASSERT_LE(std::fabs(std::remainder(t.b - lon, 360)) * parallel, 1e-6)
                        << f.name << " at " << lat << ", " << lon << ", " << h;
                }
    }
}

TEST(CEllissoideTest, RoundTripStaysWithinAMicrometreOnADenseGrid) {
    const CEllissoide e;
    double worst = 0;
    for (double lat = -90; lat <= 90; lat += 2.5)
        for (double lon = -177.5; lon <= 180; lon += 7.5)
            for (double h = -5e6; h <= 2e7; h += 1.25e6) {
                Triple g, t, again;
                e.GrafToGeoc(lat, lon, h, g.a, g.b, g.c);
                e.GeocToGraf(g.a, g.b, g.c, t.a, t.b, t.c);
                e.GrafToGeoc(t.a, t.b, t.c, again.a, again.b, again.c);
                worst = std::max(worst, Distance(again, g));
            }
    RecordProperty("nanometres", static_cast<int>(worst * 1e9));
    EXPECT_LE(worst, 1e-6);
}

TEST(CEllissoideTest, LongitudeIsZeroOnThePolarAxis) {
    const CEllissoide e;
    for (const double x : {0.0, -0.0})
        for (const double y : {0.0, -0.0})
            for (const double z : {6400000.0, -6400000.0}) {
                Triple t;
                ASSERT_TRUE(e.GeocToGraf(x, y, z, t.a, t.b, t.c));
                EXPECT_EQ(t.a, z > 0 ? 90.0 : -90.0);
                EXPECT_EQ(t.b, 0.0) << "x " << x << ", y " << y;
                EXPECT_NEAR(t.c, 6400000.0 - 6356752.3142451795, 1e-6);
            }
}

TEST(CEllissoideTest, LatitudeIsNinetyAtTheCentre) {
    for (const Figure& f : kFigures) {
        Triple t;
        ASSERT_TRUE(CEllissoide(f.a, f.rf).GeocToGraf(0, 0, 0, t.a, t.b, t.c)) << f.name;
        EXPECT_EQ(t.a, 90.0) << f.name;
        EXPECT_EQ(t.b, 0.0) << f.name;
        EXPECT_NEAR(t.c, f.rf > 0 ? f.a / f.rf - f.a : -f.a, 1e-6) << f.name;
    }
}

TEST(CEllissoideTest, TheDateLineIsPlus180) {
    const CEllissoide e;
    Triple t;
    ASSERT_TRUE(e.GeocToGraf(-6378137.0, -0.0, 0, t.a, t.b, t.c));
    EXPECT_EQ(t.b, 180.0);
    Triple g;
    ASSERT_TRUE(e.GrafToGeoc(-17, -180, 30, g.a, g.b, g.c));
    ASSERT_TRUE(e.GeocToGraf(g.a, g.b, g.c, t.a, t.b, t.c));
    EXPECT_EQ(t.b, 180.0);
}

TEST(CEllissoideTest, NonFiniteValuesGiveFalseAndWriteEveryOutput) {
    const CEllissoide e;
    for (const Special& s : kNoMeasurement) {
        if (std::isfinite(s.value)) continue;
        for (int k = 0; k < 3; ++k) {
            const double v[3] = {k == 0 ? s.value : 45, k == 1 ? s.value : 10, k == 2 ? s.value : 100};
            Triple g, t;
            EXPECT_FALSE(e.GrafToGeoc(v[0], v[1], v[2], g.a, g.b, g.c)) << s.name << " as value " << k;
            EXPECT_TRUE(AllWritten(g)) << s.name << " as value " << k;
            EXPECT_FALSE(e.GeocToGraf(v[0], v[1], v[2], t.a, t.b, t.c)) << s.name << " as value " << k;
            EXPECT_TRUE(AllWritten(t)) << s.name << " as value " << k;
        }
    }
}

TEST(CEllissoideTest, AnUnsetComponentIsComputedWithAndWritesEveryOutput) {
    const CEllissoide e;
    for (int mask = 1; mask < 8; ++mask) {
        const auto pick = [mask](int k, double v) { return mask >> k & 1 ? GPS_VAL_UNSET : v; };
        Triple g, t;
        e.GrafToGeoc(pick(0, 45), pick(1, 10), pick(2, 100), g.a, g.b, g.c);
        EXPECT_TRUE(AllWritten(g)) << "mask " << mask;
        e.GeocToGraf(pick(0, 4e6), pick(1, 1e6), pick(2, 5e6), t.a, t.b, t.c);
        EXPECT_TRUE(AllWritten(t)) << "mask " << mask;
    }
}

TEST(CEllissoideTest, ALatitudeBeyondThePoleIsRefused) {
    const CEllissoide e;
    Triple t;
    EXPECT_TRUE(e.GrafToGeoc(90, 0, 0, t.a, t.b, t.c));
    EXPECT_FALSE(e.GrafToGeoc(std::nextafter(90.0, 91.0), 0, 0, t.a, t.b, t.c));
    EXPECT_FALSE(e.GrafToGeoc(-90.1, 0, 0, t.a, t.b, t.c));
}

TEST(CEllissoideTest, OutputsMayBeTheInputs) {
    const CEllissoide e;
    double lat = 45, lon = 10, h = 100;
    e.GrafToGeoc(lat, lon, h, lat, lon, h);
    EXPECT_TRUE(Near({lat, lon, h}, Geocentric(kFigures[0], 45, 10, 100), 1e-8));
    e.GeocToGraf(lat, lon, h, lat, lon, h);
    EXPECT_NEAR(lat, 45, 1e-13);
    EXPECT_NEAR(lon, 10, 1e-13);
    EXPECT_NEAR(h, 100, 1e-8);
}

}  // namespace
