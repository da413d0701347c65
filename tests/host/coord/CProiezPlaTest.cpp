#include "platform/coord/CProiezPla.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/coord/MotoreProj.h"
#include "tests/host/coord/ProjPeer.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

struct Row {
    const char* name;
    int type;
    CProiezPla::Values p;
    double a, rf;
    const char* operation;  // the same projection as PROJ writes it
    double toDegrees;       // round trip, degrees
};

const Row kRows[] = {
    {"UTM 33 north",
     TpProiezPla::mercatoreTrasversa,
     {0, 15, 500000, 0, 0.9996},
     6378137,
     298.257223563,
     "+proj=utm +zone=33 +ellps=WGS84",
     1e-11},
    {"TM with a latitude of origin",
     TpProiezPla::mercatoreTrasversa,
     {49, -2, 400000, -100000, 0.9996012717},
     6377563.396,
     299.3249646,
     "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy",
     1e-11},
    {"TM south",
     TpProiezPla::mercatoreTrasversa,
     {0, 173, 1600000, 10000000, 0.9996},
     6378137,
     298.257222101,
     "+proj=tmerc +lat_0=0 +lon_0=173 +k=0.9996 +x_0=1600000 +y_0=10000000 +ellps=GRS80",
     1e-11},
    {"TM on a sphere",
     TpProiezPla::mercatoreTrasversa,
     {10, 20, 0, 0, 1},
     6371000,
     0,
     "+proj=tmerc +lat_0=10 +lon_0=20 +R=6371000",
     1e-11},
    {"Lambert 1SP",
     TpProiezPla::lambert1SP,
     {18, -77, 250000, 150000, 1},
     6378206.4,
     294.9786982138982,
     "+proj=lcc +lat_1=18 +lat_0=18 +lon_0=-77 +k_0=1 +x_0=250000 +y_0=150000 +ellps=clrk66",
     1e-11},
    {"Lambert 1SP reduced scale",
     TpProiezPla::lambert1SP,
     {46.8, 2.33, 600000, 2200000, 0.99987742},
     6378249.145,
     293.465,
     "+proj=lcc +lat_1=46.8 +lat_0=46.8 +lon_0=2.33 +k_0=0.99987742 +x_0=600000 +y_0=2200000 +a=6378249.145 "
     "+rf=293.465",
     1e-11},
    {"Lambert 2SP",
     TpProiezPla::lambert2SP,
     {44, 3, 700000, 6200000, 49},
     6378137,
     298.257222101,
     "+proj=lcc +lat_0=44 +lat_1=44 +lat_2=49 +lon_0=3 +x_0=700000 +y_0=6200000 +ellps=GRS80",
     1e-11},
    {"stereographic",
     TpProiezPla::stereografica,
     {52, 19, 500000, 500000, 0.9998},
     6378245,
     298.3,
     "+proj=stere +lat_0=52 +lon_0=19 +k=0.9998 +x_0=500000 +y_0=500000 +ellps=krass",
     1e-10},
    {"stereographic at the pole",
     TpProiezPla::stereografica,
     {90, 0, 2000000, 2000000, 0.994},
     6378137,
     298.257223563,
     "+proj=stere +lat_0=90 +lon_0=0 +k=0.994 +x_0=2000000 +y_0=2000000 +ellps=WGS84",
     1e-10},
    {"oblique stereographic",
     TpProiezPla::stereograficaObliqua,
     {52.156160555555556, 5.387638888888889, 155000, 463000, 0.9999079},
     6377397.155,
     299.1528128,
     "+proj=sterea +lat_0=52.156160555555556 +lon_0=5.387638888888889 +k=0.9999079 +x_0=155000 +y_0=463000 "
     "+ellps=bessel",
     1e-10},
};

CProiezPla Make(const Row& row) {
    CProiezPla p;
    p.Set(row.type, row.p);
    p.SetEllissoide(row.a, row.rf);
    return p;
}

// Positions about the origin, within some hundred kilometres, and not beyond a pole.
std::vector<Triple> Around(const Row& row) {
    std::vector<Triple> places;
    for (const double dLat : {-3.0, -0.7, 0.0, 0.4, 2.9})
        for (const double dLon : {-2.9, -0.3, 0.0, 1e-7, 1.7})
            for (const double h : {-50.0, 0.0, 1234.5})
                if (std::fabs(row.p[0] + dLat) < 90) places.push_back({row.p[0] + dLat, row.p[1] + dLon, h});
    return places;
}

TEST(CProiezPlaTest, PlaneCoordinatesAreThoseOfProj) {
    for (const Row& row : kRows) {
        const CProiezPla p = Make(row);
        const ProjPeer peer = ProjPeer::Operation(row.operation);
        for (const Triple& g : Around(row)) {
            Triple t, expected;
            ASSERT_TRUE(peer.Forward(g.a, g.b, g.c, expected)) << row.name;
            ASSERT_TRUE(p.GrafToPlan(g.a, g.b, g.c, t.a, t.b, t.c)) << row.name;
            EXPECT_TRUE(Near(t, expected, 1e-6)) << row.name << " at " << g.a << ", " << g.b;
        }
    }
}

TEST(CProiezPlaTest, GeographicCoordinatesAreThoseOfProj) {
    for (const Row& row : kRows) {
        const CProiezPla p = Make(row);
        const ProjPeer peer = ProjPeer::Operation(row.operation);
        for (const double dx : {-150000.0, 0.0, 42000.25})
            for (const double dy : {-99999.5, 1.0, 180000.0}) {
                Triple t, expected;
                const double x = row.p[2] + dx, y = row.p[3] + dy;
                ASSERT_TRUE(peer.Inverse(x, y, 55.5, expected)) << row.name;
                ASSERT_TRUE(p.PlanToGraf(x, y, 55.5, t.a, t.b, t.c)) << row.name;
                EXPECT_TRUE(Near(t, expected, 1e-12)) << row.name << " at " << x << ", " << y;
            }
    }
}

TEST(CProiezPlaTest, GeographicToPlaneAndBackReturns) {
    for (const Row& row : kRows) {
        const CProiezPla p = Make(row);
        for (const Triple& g : Around(row)) {
            Triple t, back;
            ASSERT_TRUE(p.GrafToPlan(g.a, g.b, g.c, t.a, t.b, t.c)) << row.name;
            ASSERT_TRUE(p.PlanToGraf(t.a, t.b, t.c, back.a, back.b, back.c)) << row.name;
            EXPECT_NEAR(back.a, g.a, row.toDegrees) << row.name;
            EXPECT_NEAR(back.b * std::cos(g.a * kRad), g.b * std::cos(g.a * kRad), row.toDegrees) << row.name;
            EXPECT_EQ(back.c, g.c) << row.name;
            Triple again;
            ASSERT_TRUE(p.GrafToPlan(back.a, back.b, back.c, again.a, again.b, again.c)) << row.name;
            EXPECT_TRUE(Near(again, t, 1e-5)) << row.name;
        }
    }
}

struct Two {
    const char* name;
    double lat0, lon0, lat1, lat2, fe, fn;
};

TEST(CProiezPlaTest, TwoParallelsWithAnOriginOfTheirOwnAreFoldedIntoFiveValues) {
    constexpr Two rows[] = {
        {"origin between the parallels", 46.5, 3, 49, 44, 700000, 6600000},
        {"origin south of the parallels", 27.833333333333333, -99, 28.383333333333333, 30.283333333333333,
         609601.2192, 0},
        {"southern hemisphere", -32, 135, -28, -36, 1000000, 2000000},
        {"origin on the equator", 0, 134, -18, -36, 0, 0},
        {"origin at the first parallel", 44, 3, 44, 49, 1700000, 3200000},
    };
    for (const Two& row : rows) {
        CProiezPla p;
        p.SetEllissoide(6378137, 298.257222101);
        ASSERT_TRUE(p.SetLambert2SP(row.lat0, row.lon0, row.lat1, row.lat2, row.fe, row.fn)) << row.name;
        EXPECT_EQ(p.GetType(), TpProiezPla::lambert2SP) << row.name;
        EXPECT_EQ(p.GetValues()[0], row.lat1) << row.name;
        EXPECT_EQ(p.GetValues()[1], row.lon0) << row.name;
        EXPECT_EQ(p.GetValues()[2], row.fe) << row.name;
        EXPECT_EQ(p.GetValues()[4], row.lat2) << row.name;
        const ProjPeer peer =
            ProjPeer::Operation("+proj=lcc +ellps=GRS80 +lat_0=" + Num(row.lat0) +
                                " +lat_1=" + Num(row.lat1) + " +lat_2=" + Num(row.lat2) +
                                " +lon_0=" + Num(row.lon0) + " +x_0=" + Num(row.fe) + " +y_0=" + Num(row.fn));
        for (const double dLat : {-3.0, 0.0, 2.5})
            for (const double dLon : {-4.0, 0.0, 3.5}) {
                Triple t, expected;
                const double lat = (row.lat1 + row.lat2) / 2 + dLat, lon = row.lon0 + dLon;
                ASSERT_TRUE(peer.Forward(lat, lon, 0, expected)) << row.name;
                ASSERT_TRUE(p.GrafToPlan(lat, lon, 0, t.a, t.b, t.c)) << row.name;
                EXPECT_TRUE(Near(t, expected, 1e-6)) << row.name;
            }
    }
}

TEST(CProiezPlaTest, TwoParallelsThatDefineNoConeChangeNothing) {
    CProiezPla p;
    const CProiezPla::Values utm{0, 15, 500000, 0, 0.9996};
    p.Set(TpProiezPla::mercatoreTrasversa, utm);
    EXPECT_FALSE(p.SetLambert2SP(0, 10, 30, -30, 0, 0)) << "parallels that cancel";
    EXPECT_FALSE(p.SetLambert2SP(95, 10, 30, 40, 0, 0)) << "an origin beyond the pole";
    EXPECT_FALSE(p.SetLambert2SP(0, 10, kNan, 40, 0, 0));
    EXPECT_FALSE(p.SetLambert2SP(0, GPS_VAL_UNSET, 30, 40, 0, 0));
    EXPECT_EQ(p.GetType(), TpProiezPla::mercatoreTrasversa);
    EXPECT_EQ(p.GetValues(), utm);
}

TEST(CProiezPlaTest, WithoutAProjectionEveryConversionFails) {
    for (const int type : {static_cast<int>(TpProiezPla::nessuna), -1, 7, 1000}) {
        CProiezPla p;
        p.Set(type, {0, 15, 500000, 0, 0.9996});
        Triple t, g;
        EXPECT_FALSE(p.GrafToPlan(45, 15, 0, t.a, t.b, t.c)) << "type " << type;
        EXPECT_TRUE(AllUnset(t)) << "type " << type;
        EXPECT_FALSE(p.PlanToGraf(500000, 5000000, 0, g.a, g.b, g.c)) << "type " << type;
        EXPECT_TRUE(AllUnset(g)) << "type " << type;
        EXPECT_TRUE(p.GetSistema().empty()) << "type " << type;
    }
}

TEST(CProiezPlaTest, ValuesThatAreNoMeasurementGiveFalseAndUnset) {
    for (const Row& row : kRows) {
        const CProiezPla p = Make(row);
        for (const Special& s : kNoMeasurement)
            for (int k = 0; k < 3; ++k) {
                const auto pick = [&](int i, double v) { return i == k ? s.value : v; };
                Triple t, g;
                EXPECT_FALSE(p.GrafToPlan(pick(0, 45), pick(1, 15), pick(2, 0), t.a, t.b, t.c))
                    << row.name << ", " << s.name << " as value " << k;
                EXPECT_TRUE(AllUnset(t)) << row.name << ", " << s.name << " as value " << k;
                EXPECT_FALSE(p.PlanToGraf(pick(0, row.p[2]), pick(1, row.p[3]), pick(2, 0), g.a, g.b, g.c))
                    << row.name << ", " << s.name << " as value " << k;
                EXPECT_TRUE(AllUnset(g)) << row.name << ", " << s.name << " as value " << k;
            }
        for (const double lat : {90.1, -90.1, 1000.0}) {
            Triple t;
            EXPECT_FALSE(p.GrafToPlan(lat, 15, 0, t.a, t.b, t.c)) << row.name << " at latitude " << lat;
            EXPECT_TRUE(AllUnset(t)) << row.name << " at latitude " << lat;
        }
    }
}

TEST(CProiezPlaTest, AFigureThatProjRefusesFailsAndRecoversWithAGoodOne) {
    CProiezPla p;
    p.Set(TpProiezPla::mercatoreTrasversa, {0, 15, 500000, 0, -1});  // a scale below 0
    Triple t;
    EXPECT_FALSE(p.GrafToPlan(45, 15, 0, t.a, t.b, t.c));
    EXPECT_TRUE(AllUnset(t));
    p.Set(TpProiezPla::mercatoreTrasversa, {0, 15, 500000, 0, 1});
    EXPECT_TRUE(p.GrafToPlan(45, 15, 0, t.a, t.b, t.c));
    p.SetEllissoide(-1, 300);
    EXPECT_FALSE(p.GrafToPlan(45, 15, 0, t.a, t.b, t.c));
    EXPECT_TRUE(AllUnset(t));
}

// A figure that PROJ would read as 0 makes a projection, too, but not the one that was meant.
TEST(CProiezPlaTest, AFigureThatIsNotSetMakesEveryConversionFail) {
    for (const Row& row : kRows)
        for (const Special& s : kNoMeasurement)
            for (std::size_t k = 0; k < 7; ++k) {
                CProiezPla p = Make(row);
                CProiezPla::Values v = row.p;
                if (k < 5) v[k] = s.value;
                p.Set(row.type, v);
                p.SetEllissoide(k == 5 ? s.value : row.a, k == 6 ? s.value : row.rf);
                Triple t, g;
                EXPECT_FALSE(p.GrafToPlan(45, 15, 0, t.a, t.b, t.c))
                    << row.name << ", " << s.name << " as " << k;
                EXPECT_TRUE(AllUnset(t)) << row.name << ", " << s.name << " as " << k;
                EXPECT_FALSE(p.PlanToGraf(row.p[2], row.p[3], 0, g.a, g.b, g.c))
                    << row.name << ", " << s.name << " as " << k;
                EXPECT_TRUE(p.GetSistema().empty()) << row.name << ", " << s.name << " as " << k;
            }
}

TEST(CProiezPlaTest, SettersAnswerWhetherSomethingChanged) {
    CProiezPla p;
    const CProiezPla::Values v{0, 15, 500000, 0, 0.9996};
    EXPECT_TRUE(p.Set(TpProiezPla::mercatoreTrasversa, v));
    EXPECT_FALSE(p.Set(TpProiezPla::mercatoreTrasversa, v));
    for (std::size_t i = 0; i < v.size(); ++i) {
        CProiezPla::Values other = v;
        other[i] += 0.001;
        EXPECT_TRUE(p.Set(TpProiezPla::mercatoreTrasversa, other)) << "p" << i + 1;
        EXPECT_EQ(p.GetValues(), other);
        EXPECT_TRUE(p.Set(TpProiezPla::mercatoreTrasversa, v));
    }
    EXPECT_TRUE(p.Set(TpProiezPla::stereografica, v));
    EXPECT_TRUE(p.SetEllissoide(6378388, 297));
    EXPECT_FALSE(p.SetEllissoide(6378388, 297));
    EXPECT_TRUE(p.SetEllissoide(6378388, 298));
}

TEST(CProiezPlaTest, AChangeTakesEffectAtTheNextConversion) {
    CProiezPla p;
    p.Set(TpProiezPla::mercatoreTrasversa, {0, 15, 500000, 0, 1});
    Triple before, after;
    ASSERT_TRUE(p.GrafToPlan(45, 15, 0, before.a, before.b, before.c));
    p.Set(TpProiezPla::mercatoreTrasversa, {0, 15, 500100, 0, 1});
    ASSERT_TRUE(p.GrafToPlan(45, 15, 0, after.a, after.b, after.c));
    EXPECT_NEAR(after.a - before.a, 100, 1e-8);
    p.SetEllissoide(6378388, 297);
    Triple other;
    ASSERT_TRUE(p.GrafToPlan(45, 15, 0, other.a, other.b, other.c));
    EXPECT_GT(std::fabs(other.b - after.b), 10);
}

// What is costly is made once: the engine of a projection is the same object wherever the figures are.
TEST(CProiezPlaTest, EqualDefinitionsShareOneEngine) {
    const std::string utm = "+proj=tmerc +lat_0=0 +lon_0=15 +k_0=0.9996 +ellps=WGS84";
    const auto first = CProiezPla::Motore::DaProiezione(utm);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(CProiezPla::Motore::DaProiezione(utm), first);
    EXPECT_NE(CProiezPla::Motore::DaProiezione(utm + " +x_0=1"), first);
    const auto system = CProiezPla::Motore::DaSistema("EPSG:32633");
    ASSERT_NE(system, nullptr);
    EXPECT_EQ(CProiezPla::Motore::DaSistema("EPSG:32633"), system);
    EXPECT_EQ(CProiezPla::Motore::DaProiezione("+proj=nosuchthing"), nullptr);
}

TEST(CProiezPlaTest, ACopyConvertsAlikeAndIsIndependent) {
    CProiezPla p;
    p.Set(TpProiezPla::mercatoreTrasversa, {0, 15, 500000, 0, 1});
    Triple t, u;
    ASSERT_TRUE(p.GrafToPlan(45, 14, 7, t.a, t.b, t.c));
    CProiezPla copy(p);
    p.Set(TpProiezPla::mercatoreTrasversa, {0, 16, 500000, 0, 1});
    ASSERT_TRUE(copy.GrafToPlan(45, 14, 7, u.a, u.b, u.c));
    EXPECT_EQ(Distance(t, u), 0);
}

TEST(CProiezPlaTest, TheSystemTextNamesTheSameProjectionToProj) {
    for (const Row& row : kRows) {
        const CProiezPla p = Make(row);
        // Cut down to the projection: from geographic coordinates on that ellipsoid, with no datum step.
        const ProjPeer peer = ProjPeer::Operation(p.GetSistema().substr(0, p.GetSistema().find(" +units")));
        const double lat = row.p[0] > 80 ? 85 : row.p[0] + 0.5, lon = row.p[1] + 0.5;
        Triple t, expected;
        ASSERT_TRUE(peer.Forward(lat, lon, 0, expected)) << row.name << ": " << p.GetSistema();
        ASSERT_TRUE(p.GrafToPlan(lat, lon, 0, t.a, t.b, t.c)) << row.name;
        EXPECT_TRUE(Near(t, expected, 1e-6)) << row.name;
        std::string why;
        CProiezPla again;
        EXPECT_TRUE(again.SetDefinizione(p.GetSistema(), why)) << row.name << ": " << why;
    }
}

}  // namespace
