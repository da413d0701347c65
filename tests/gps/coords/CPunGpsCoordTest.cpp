// Derived coordinates of a point: what is computed when, from what, and what is left alone.
#include <gtest/gtest.h>

#include <stdexcept>

#include "gps/model/CPunGps.h"
#include "platform/coord/CEllissoide.h"
#include "tests/gps/coords/ScriptedMotore.h"

namespace {

using namespace gpstest;

constexpr double kLat = 45.25, kLon = 9.75, kH = 100.0, kAlt = 1.8;

Triple Geoc(double lat, double lon, double h) {
    Triple t;
    EXPECT_TRUE(CEllissoide().GrafToGeoc(lat, lon, h, t[0], t[1], t[2]));
    return t;
}

class CPunGpsCoordTest : public ::testing::Test {
protected:
    CPunGpsCoordTest()
        : group(nullptr, false, nullptr, 0), point(nullptr, false, &group), lone(nullptr, false, nullptr) {
        group.GetConvCoord()->SetMotore(&engine);
        SetFix(point, kLat, kLon, kH, kAlt);
        SetFix(lone, kLat, kLon, kH, kAlt);
    }

    // One of latitude, longitude, height, antenna height (0 to 3) takes a value.
    static void SetOne(CPunGps& p, int k, double v) {
        const double fix[4] = {kLat, kLon, kH, kAlt};
        SetFix(p, k == 0 ? v : fix[0], k == 1 ? v : fix[1], k == 2 ? v : fix[2], k == 3 ? v : fix[3]);
    }

    ScriptedMotore engine;
    CGrpGps group;
    CPunGps point;
    CPunGps lone;  // without a group
};

using Getter = void (CPunGps::*)(double&, double&, double&);

Triple Get(CPunGps& p, Getter getter) {
    Triple t = kUntouchedTriple;
    (p.*getter)(t[0], t[1], t[2]);
    return t;
}

struct Member {
    const char* name;
    Getter get;
    bool needsAntenna;
    bool wgs84;
};

constexpr Member kGeocentric[] = {
    {"GetGeocCeFaMis", &CPunGps::GetGeocCeFaMis, false, false},
    {"GetGeocCeFaWgs84", &CPunGps::GetGeocCeFaWgs84, false, true},
    {"GetGeocTerrMis", &CPunGps::GetGeocTerrMis, true, false},
    {"GetGeocTerrWgs84", &CPunGps::GetGeocTerrWgs84, true, true},
};

TEST_F(CPunGpsCoordTest, GeocentricCoordinatesAreThoseOfTheDefaultEllipsoid) {
    for (const Member& m : kGeocentric) {
        engine.calls.clear();
        const Triple expected = Geoc(kLat, kLon, m.needsAntenna ? kH - kAlt : kH);
        const Triple t = Get(point, m.get);
        if (!m.wgs84) {
            EXPECT_EQ(t, expected) << m.name;
            EXPECT_TRUE(engine.calls.empty()) << m.name << " needs no conversion";
            continue;
        }
        EXPECT_EQ(t, engine.answer) << m.name;
        const ScriptedMotore::Call call{"GeocBaseToGeocWgs", {expected[0], expected[1], expected[2]}};
        EXPECT_EQ(engine.calls, std::vector{call}) << m.name;
    }
}

TEST_F(CPunGpsCoordTest, TheGroundMarkIsAtTheHeightLessTheAntenna) {
    EXPECT_EQ(Get(point, &CPunGps::GetGeocTerrMis), Geoc(kLat, kLon, 98.2));
    const Triple phase = Get(point, &CPunGps::GetGeocCeFaMis), ground = Get(point, &CPunGps::GetGeocTerrMis);
    EXPECT_NEAR(std::hypot(phase[0] - ground[0], phase[1] - ground[1], phase[2] - ground[2]), 1.8, 1e-8);
}

TEST_F(CPunGpsCoordTest, APhaseCentreNeedsThreeValuesAndAGroundMarkFour) {
    for (const double v : {GPS_VAL_UNSET, 8.5e199, 1e300, kNan})
        for (const Member& m : kGeocentric)
            for (int k = 0; k < 4; ++k) {
                SetOne(point, k, v);
                engine.calls.clear();
                const bool computed = k == 3 && !m.needsAntenna;
                const Triple t = Get(point, m.get);
                if (computed)
                    EXPECT_EQ(t, m.wgs84 ? engine.answer : Geoc(kLat, kLon, kH)) << m.name;
                else
                    EXPECT_EQ(t, kUnset) << m.name << ", value " << k << " is " << v;
                EXPECT_EQ(engine.calls.size(), computed && m.wgs84 ? 1u : 0u) << m.name;
            }
}

TEST_F(CPunGpsCoordTest, ValuesBelowTheLimitAreDefined) {
    SetOne(point, 2, -1e300);
    EXPECT_NE(Get(point, &CPunGps::GetGeocCeFaMis), kUnset);
    SetOne(point, 2, std::nextafter(8.5e199, 0.0));
    EXPECT_NE(Get(point, &CPunGps::GetGeocCeFaMis), kUnset);
}

TEST_F(CPunGpsCoordTest, WithoutAGroupOnlyTheMeasuredDatumIsThere) {
    EXPECT_EQ(Get(lone, &CPunGps::GetGrafWgs84), kUnset);
    EXPECT_EQ(Get(lone, &CPunGps::GetGeocCeFaWgs84), kUnset);
    EXPECT_EQ(Get(lone, &CPunGps::GetGeocTerrWgs84), kUnset);
    EXPECT_EQ(Get(lone, &CPunGps::GetGeocCeFaMis), Geoc(kLat, kLon, kH));
    EXPECT_EQ(Get(lone, &CPunGps::GetGeocTerrMis), Geoc(kLat, kLon, kH - kAlt));
}

TEST_F(CPunGpsCoordTest, GeographicWgs84HandsTheStoredValuesOverUntested) {
    EXPECT_EQ(Get(point, &CPunGps::GetGrafWgs84), engine.answer);
    EXPECT_EQ(engine.calls, (std::vector<ScriptedMotore::Call>{{"GrafBaseToGrafWgs", {kLat, kLon, kH}}}));
    SetFix(point, GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
    engine.calls.clear();
    EXPECT_EQ(Get(point, &CPunGps::GetGrafWgs84), engine.answer);
    EXPECT_EQ(engine.calls, (std::vector<ScriptedMotore::Call>{
                                {"GrafBaseToGrafWgs", {GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET}}}));
}

TEST_F(CPunGpsCoordTest, AFalseResultIsIgnoredAndTheOutputsHoldWhatWasLeft) {
    engine.result = false;
    engine.answer = {7, 8, 9};
    EXPECT_EQ(Get(point, &CPunGps::GetGrafWgs84), engine.answer);
    EXPECT_EQ(Get(point, &CPunGps::GetGeocCeFaWgs84), engine.answer);
    EXPECT_EQ(Get(point, &CPunGps::GetGeocTerrWgs84), engine.answer);
}

// A latitude beyond the pole: the ellipsoid answers false, and its figures go on all the same.
TEST_F(CPunGpsCoordTest, AFalseResultOfTheEllipsoidIsIgnoredToo) {
    SetOne(point, 0, 91);
    Triple left;
    EXPECT_FALSE(CEllissoide().GrafToGeoc(91, kLon, kH, left[0], left[1], left[2]));
    EXPECT_EQ(Get(point, &CPunGps::GetGeocCeFaMis), left);
    Get(point, &CPunGps::GetGeocCeFaWgs84);
    ASSERT_EQ(engine.calls.size(), 1u);
    EXPECT_EQ(engine.calls[0].arguments, (std::vector<double>{left[0], left[1], left[2]}));
}

TEST_F(CPunGpsCoordTest, ExceptionsPassThrough) {
    engine.throws = true;
    EXPECT_THROW(Get(point, &CPunGps::GetGrafWgs84), std::runtime_error);
    EXPECT_THROW(Get(point, &CPunGps::GetGeocCeFaWgs84), std::runtime_error);
    EXPECT_THROW(Get(point, &CPunGps::GetGeocTerrWgs84), std::runtime_error);
    EXPECT_EQ(Stored(point), (Triple{kLat, kLon, kH}));
}

TEST_F(CPunGpsCoordTest, AGeocentricPhaseCentreIsStoredAsGeographic) {
    const Triple g = Geoc(-41.5, 174.25, 321.5);
    point.SetGeocCeFaMis(g[0], g[1], g[2]);
    EXPECT_NEAR(point.GetLat(), -41.5, 1e-12);
    EXPECT_NEAR(point.GetLong(), 174.25, 1e-12);
    EXPECT_NEAR(point.GetElev(), 321.5, 1e-6);
    EXPECT_EQ(point.GetAltAnt(), kAlt);
    const Triple back = Get(point, &CPunGps::GetGeocCeFaMis);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(back[k], g[k], 1e-6) << k;
}

TEST_F(CPunGpsCoordTest, StoringAGeocentricPhaseCentreReportsNothing) {
    ReportLog log;
    const Triple g = Geoc(-41.5, 174.25, 321.5);
    point.SetGeocCeFaMis(g[0], g[1], g[2]);
    point.SetGeocBase(g[0], g[1], g[2]);
    point.SetGrafBase(1, 2, 3);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(CPunGpsCoordTest, AnUndefinedTripleChangesNothing) {
    for (const double v : {GPS_VAL_UNSET, 8.5e199, kNan}) {
        point.SetGeocCeFaMis(v, v, v);
        EXPECT_EQ(Stored(point), (Triple{kLat, kLon, kH})) << v;
    }
}

TEST_F(CPunGpsCoordTest, OneDefinedComponentOverwritesAllThreeValues) {
    for (int k = 0; k < 3; ++k) {
        SetFix(point, kLat, kLon, kH, kAlt);
        Triple in = kUnset;
        in[static_cast<std::size_t>(k)] = 4e6;
        point.SetGeocCeFaMis(in[0], in[1], in[2]);
        EXPECT_FALSE(IsSame(point.GetLat(), kLat)) << k;
        EXPECT_FALSE(IsSame(point.GetLong(), kLon)) << k;
        EXPECT_FALSE(IsSame(point.GetElev(), kH)) << k;
        EXPECT_TRUE(IsSame(point.GetAltAnt(), kAlt)) << k;
    }
}

TEST_F(CPunGpsCoordTest, TheBaseTripleIsUnsetAtFirstAndReturnsBitForBit) {
    EXPECT_EQ(Get(point, &CPunGps::GetGrafBase), kUnset);
    const Triple odd[] = {
        {45.1234567890123, -0.0, 1e-300}, {kNan, GPS_VAL_UNSET, -1e300}, {91, 500, 8.5e199}};
    for (const Triple& t : odd) {
        point.SetGrafBase(t[0], t[1], t[2]);
        const Triple back = Get(point, &CPunGps::GetGrafBase);
        for (std::size_t k = 0; k < 3; ++k) EXPECT_TRUE(IsSame(back[k], t[k])) << t[k];
    }
    EXPECT_EQ(Stored(point), (Triple{kLat, kLon, kH})) << "the fix is another matter";
}

TEST_F(CPunGpsCoordTest, AGeocentricBaseReturnsToTheEllipsoidsPrecision) {
    const Triple g = Geoc(45.5, 9.25, 250.75);
    point.SetGeocBase(g[0], g[1], g[2]);
    const Triple graf = Get(point, &CPunGps::GetGrafBase), geoc = Get(point, &CPunGps::GetGeocBase);
    EXPECT_NEAR(graf[0], 45.5, 1e-12);
    EXPECT_NEAR(graf[1], 9.25, 1e-12);
    EXPECT_NEAR(graf[2], 250.75, 1e-6);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(geoc[k], g[k], 1e-6) << k;
    EXPECT_EQ(Stored(point), (Triple{kLat, kLon, kH}));
    EXPECT_TRUE(engine.calls.empty());
}

TEST_F(CPunGpsCoordTest, TheGeocentricBaseIsComputedWithoutAnyTest) {
    point.SetGrafBase(1, 2, 3);
    point.SetGeocBase(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
    const Triple graf = Get(point, &CPunGps::GetGrafBase);
    EXPECT_FALSE(IsSame(graf[0], 1) || IsSame(graf[1], 2) || IsSame(graf[2], 3)) << "written all the same";

    point.SetGrafBase(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
    Triple left;
    CEllissoide().GrafToGeoc(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET, left[0], left[1], left[2]);
    const Triple t = Get(point, &CPunGps::GetGeocBase);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_TRUE(IsSame(t[k], left[k])) << k;
}

// Through the real conversion, so that the frame of the names is seen: the group's measured datum.
TEST_F(CPunGpsCoordTest, Wgs84GoesThroughTheGroupsMeasuredDatum) {
    group.GetConvCoord()->SetMotore(nullptr);
    group.GetConvCoord()->SetTpDtBaseGps(CConvCoord::dtProprio);
    group.GetConvCoord()->GetConvDtBaseGps()->SetCoeffToStd(10, 20, 30, 0, 0, 0, 0);
    const Triple mis = Get(point, &CPunGps::GetGeocCeFaMis), wgs = Get(point, &CPunGps::GetGeocCeFaWgs84);
    const Triple ground = Get(point, &CPunGps::GetGeocTerrMis),
                 groundW = Get(point, &CPunGps::GetGeocTerrWgs84);
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(wgs[k] - mis[k], 10.0 * static_cast<double>(k + 1), 1e-8);
        EXPECT_NEAR(groundW[k] - ground[k], 10.0 * static_cast<double>(k + 1), 1e-8);
    }
    const Triple graf = Get(point, &CPunGps::GetGrafWgs84), again = Geoc(graf[0], graf[1], graf[2]);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(again[k], wgs[k], 1e-6);
}

}  // namespace
