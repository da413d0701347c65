// Derived coordinates of a group's base: the same members as a point's, with other conditions.
#include <gtest/gtest.h>

#include <stdexcept>

#include "gps/model/CGrpGps.h"
#include "platform/coord/CEllissoide.h"
#include "tests/gps/coords/ScriptedMotore.h"

namespace {

using namespace gpstest;

constexpr double kLat = 45.25, kLon = 9.75, kH = 100.0, kAlt = 1.8;

Triple Geoc(double lat, double lon, double h) {
    Triple t;
    CEllissoide().GrafToGeoc(lat, lon, h, t[0], t[1], t[2]);
    return t;
}

class CGrpGpsCoordTest : public ::testing::Test {
protected:
    CGrpGpsCoordTest() : group(nullptr, false, nullptr, 0) {
        group.GetConvCoord()->SetMotore(&engine);
        SetBase(group, kLat, kLon, kH, kAlt);
    }

    ScriptedMotore engine;
    CGrpGps group;
};

using Getter = void (CGrpGps::*)(double&, double&, double&);

Triple Get(CGrpGps& g, Getter getter) {
    Triple t = kUntouchedTriple;
    (g.*getter)(t[0], t[1], t[2]);
    return t;
}

bool SameBits(const Triple& a, const Triple& b) {
    return IsSame(a[0], b[0]) && IsSame(a[1], b[1]) && IsSame(a[2], b[2]);
}

TEST_F(CGrpGpsCoordTest, GeocentricCoordinatesAreThoseOfTheDefaultEllipsoid) {
    EXPECT_EQ(Get(group, &CGrpGps::GetGeocCeFaMis), Geoc(kLat, kLon, kH));
    EXPECT_EQ(Get(group, &CGrpGps::GetGeocTerrMis), Geoc(kLat, kLon, 98.2));
    EXPECT_TRUE(engine.calls.empty());
}

TEST_F(CGrpGpsCoordTest, Wgs84GoesThroughTheGroupsOwnConversion) {
    const Triple phase = Geoc(kLat, kLon, kH), ground = Geoc(kLat, kLon, kH - kAlt);
    EXPECT_EQ(Get(group, &CGrpGps::GetGeocCeFaWgs84), engine.answer);
    EXPECT_EQ(Get(group, &CGrpGps::GetGeocTerrWgs84), engine.answer);
    EXPECT_EQ(Get(group, &CGrpGps::GetGrafWgs84), engine.answer);
    EXPECT_EQ(engine.calls,
              (std::vector<ScriptedMotore::Call>{{"GeocBaseToGeocWgs", {phase[0], phase[1], phase[2]}},
                                                 {"GeocBaseToGeocWgs", {ground[0], ground[1], ground[2]}},
                                                 {"GrafBaseToGrafWgs", {kLat, kLon, kH}}}));
}

TEST_F(CGrpGpsCoordTest, GeographicWgs84IsNeverTested) {
    SetBase(group, GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
    EXPECT_EQ(Get(group, &CGrpGps::GetGrafWgs84), engine.answer);
    EXPECT_EQ(engine.calls, (std::vector<ScriptedMotore::Call>{
                                {"GrafBaseToGrafWgs", {GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET}}}));
}

// Bit k of the mask: value k of the base is defined.
TEST_F(CGrpGpsCoordTest, APhaseCentreNeedsOneDefinedValue) {
    for (int mask = 0; mask < 8; ++mask) {
        const double lat = mask & 1 ? kLat : GPS_VAL_UNSET, lon = mask & 2 ? kLon : GPS_VAL_UNSET,
                     h = mask & 4 ? kH : GPS_VAL_UNSET;
        SetBase(group, lat, lon, h, GPS_VAL_UNSET);
        engine.calls.clear();
        const Triple mis = Get(group, &CGrpGps::GetGeocCeFaMis);
        const Triple wgs = Get(group, &CGrpGps::GetGeocCeFaWgs84);
        if (mask == 0) {
            EXPECT_EQ(mis, kUnset);
            EXPECT_EQ(wgs, kUnset);
            EXPECT_TRUE(engine.calls.empty());
            continue;
        }
        EXPECT_TRUE(SameBits(mis, Geoc(lat, lon, h))) << mask << ": computed, meaningless as it may be";
        EXPECT_EQ(wgs, engine.answer) << mask;
        ASSERT_EQ(engine.calls.size(), 1u) << mask;
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_TRUE(IsSame(engine.calls[0].arguments[k], Geoc(lat, lon, h)[k])) << mask;
    }
}

TEST_F(CGrpGpsCoordTest, AGroundMarkNeedsAllFourValues) {
    for (const double v : {GPS_VAL_UNSET, 8.5e199, kNan})
        for (int k = 0; k < 4; ++k) {
            SetBase(group, k == 0 ? v : kLat, k == 1 ? v : kLon, k == 2 ? v : kH, k == 3 ? v : kAlt);
            EXPECT_EQ(Get(group, &CGrpGps::GetGeocTerrMis), kUnset) << k << " is " << v;
            EXPECT_EQ(Get(group, &CGrpGps::GetGeocTerrWgs84), kUnset) << k << " is " << v;
        }
    EXPECT_TRUE(engine.calls.empty());
}

TEST_F(CGrpGpsCoordTest, ABaseIsValidByLatitudeAndLongitudeAlone) {
    EXPECT_TRUE(group.AreBaseCoordValid());
    SetBase(group, kLat, kLon, GPS_VAL_UNSET, GPS_VAL_UNSET);
    EXPECT_TRUE(group.AreBaseCoordValid()) << "no height";
    for (const double v : {GPS_VAL_UNSET, 8.5e199, kNan}) {
        SetBase(group, v, kLon, kH, kAlt);
        EXPECT_FALSE(group.AreBaseCoordValid()) << v;
        SetBase(group, kLat, v, kH, kAlt);
        EXPECT_FALSE(group.AreBaseCoordValid()) << v;
    }
    SetBase(group, -1e300, -1e300, kH, kAlt);
    EXPECT_TRUE(group.AreBaseCoordValid()) << "only the upper side is tested";
    EXPECT_FALSE(CGrpGps(nullptr, false, nullptr, 0).AreBaseCoordValid()) << "a new group";
}

TEST_F(CGrpGpsCoordTest, FalseResultsAreIgnoredAndTheOutputsHoldWhatWasLeft) {
    engine.result = false;
    engine.answer = {7, 8, 9};
    EXPECT_EQ(Get(group, &CGrpGps::GetGrafWgs84), engine.answer);
    EXPECT_EQ(Get(group, &CGrpGps::GetGeocCeFaWgs84), engine.answer);
    EXPECT_EQ(Get(group, &CGrpGps::GetGeocTerrWgs84), engine.answer);
}

TEST_F(CGrpGpsCoordTest, ExceptionsPassThrough) {
    engine.throws = true;
    EXPECT_THROW(Get(group, &CGrpGps::GetGrafWgs84), std::runtime_error);
    EXPECT_THROW(Get(group, &CGrpGps::GetGeocCeFaWgs84), std::runtime_error);
    EXPECT_THROW(Get(group, &CGrpGps::GetGeocTerrWgs84), std::runtime_error);
}

TEST_F(CGrpGpsCoordTest, AGeocentricBaseIsStoredAsGeographicAndReportsNothing) {
    ReportLog log;
    const Triple g = Geoc(-41.5, 174.25, 321.5);
    group.SetGeocCeFaMis(g[0], g[1], g[2]);
    EXPECT_NEAR(group.GetBaseLat(), -41.5, 1e-12);
    EXPECT_NEAR(group.GetBaseLong(), 174.25, 1e-12);
    EXPECT_NEAR(group.GetBaseElev(), 321.5, 1e-6);
    EXPECT_EQ(group.GetBaseAltAnt(), kAlt);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(CGrpGpsCoordTest, AnUndefinedTripleChangesNothing) {
    for (const double v : {GPS_VAL_UNSET, 8.5e199, kNan}) {
        group.SetGeocCeFaMis(v, v, v);
        EXPECT_EQ(Stored(group), (Triple{kLat, kLon, kH})) << v;
    }
}

TEST_F(CGrpGpsCoordTest, OneDefinedComponentOverwritesAllThreeValues) {
    for (std::size_t k = 0; k < 3; ++k) {
        SetBase(group, kLat, kLon, kH, kAlt);
        Triple in = kUnset;
        in[k] = 4e6;
        group.SetGeocCeFaMis(in[0], in[1], in[2]);
        EXPECT_FALSE(IsSame(group.GetBaseLat(), kLat)) << k;
        EXPECT_FALSE(IsSame(group.GetBaseLong(), kLon)) << k;
        EXPECT_FALSE(IsSame(group.GetBaseElev(), kH)) << k;
        EXPECT_TRUE(IsSame(group.GetBaseAltAnt(), kAlt)) << k;
    }
}

// The difference between the two classes, at one and the same position.
TEST_F(CGrpGpsCoordTest, WithoutAHeightAGroupComputesWhereAPointDoesNot) {
    SetBase(group, kLat, kLon, GPS_VAL_UNSET, kAlt);
    CPunGps point(nullptr, false, &group);
    SetFix(point, kLat, kLon, GPS_VAL_UNSET, kAlt);
    Triple p;
    point.GetGeocCeFaMis(p[0], p[1], p[2]);
    EXPECT_EQ(p, kUnset);
    EXPECT_NE(Get(group, &CGrpGps::GetGeocCeFaMis), kUnset);
}

}  // namespace
