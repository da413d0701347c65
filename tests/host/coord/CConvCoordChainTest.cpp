// The chain of CConvCoord: each link alone, all of them together, and what cannot be converted.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/coord/CConvCoord.h"
#include "platform/coord/CLibMap.h"
#include "tests/host/coord/ProjPeer.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

constexpr double kRoma40[7] = {104.1, 49.1, 9.9, -0.971, 2.917, -0.714, 11.68};
constexpr double kReceiver[7] = {-1.25, 0.5, 2.75, 0.02, -0.03, 0.01, -0.4};

void SetTm(CConvCoord& c) {
    c.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 12, 3000000, 0, 0.9996);
}

void SetOwnBase(CConvCoord& c) {
    c.SetTpDtBaseGps(CConvCoord::dtProprio);
    const double* k = kReceiver;
    c.GetConvDtBaseGps()->SetCoeffToStd(k[0], k[1], k[2], k[3], k[4], k[5], k[6]);
}

void SetProjectDatum(CConvCoord& c) {
    c.SetImp(CConvCoord::impEllissoide, CConvCoord::ellInternazionale1924);
    c.SetImp(CConvCoord::impDatSel1, 2);
    c.SetImp(CConvCoord::impDatSel2, 5);
    c.SetImp(CConvCoord::impDatIndice, 0);
    c.SetImpFlag(true);
    CDatumConv* d = c.GetLibMap()->GetDatAt(2, 5, 0);
    if (!d) d = c.GetLibMap()->AddDat(2, 5);
    const double* k = kRoma40;
    d->SetCoeffFromStd(k[0], k[1], k[2], k[3], k[4], k[5], k[6]);
}

void SetRotoTras(CConvCoord& c) {
    c.GetConvLocal()->SetRotoTras(3000100, 4700200, 1000, 2000, 1.00012, 17.5);
}

void SetPlaneOfHeights(CConvCoord& c) {
    c.GetConvAltez()->SetTpCalcPt(CConvAltez::tpPiano);
    c.GetConvAltez()->SetCoeff(-65.2, 2e-5, 1e-5);
}

struct Link {
    const char* name;
    std::function<void(CConvCoord&)> set;
};

const std::vector<Link> kLinks = {
    {"projection alone", [](CConvCoord&) {}},
    {"measured datum", SetOwnBase},
    {"project's datum", SetProjectDatum},
    {"roto-translation", SetRotoTras},
    {"constant height",
     [](CConvCoord& c) {
         c.GetConvAltez()->SetTpCalcPt(CConvAltez::tpCostante);
         c.GetConvAltez()->SetCoeff(44.8, 1, 1);
     }},
    {"plane of heights", SetPlaneOfHeights},
    {"plane of heights in a projection of its own",
     [](CConvCoord& c) {
         SetPlaneOfHeights(c);
         c.GetConvAltez()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
     }},
    {"by definition",
     [](CConvCoord& c) {
         std::string why;
         ASSERT_TRUE(c.GetConvLocal()->SetDefinizione("EPSG:32633", why)) << why;
     }},
    {"all together",
     [](CConvCoord& c) {
         SetOwnBase(c);
         SetProjectDatum(c);
         SetRotoTras(c);
         SetPlaneOfHeights(c);
         c.GetConvAltez()->SetTpProiezPlaEx(TpProiezPla::lambert2SP, 44, 12, 0, 0, 46);
     }},
};

Triple ToPlane(const CConvCoord& c, double lat, double lon, double h, double ant) {
    Triple t;
    EXPECT_TRUE(c.GrafGpsToPlanAtt(lat, lon, h, ant, t.a, t.b, t.c));
    return t;
}

TEST(CConvCoordChainTest, EveryLinkReturnsAloneAndTogether) {
    for (const Link& link : kLinks) {
        CLibMap map;
        CConvCoord c(&map);
        SetTm(c);
        link.set(c);
        for (const double lat : {41.1, 42.5, 45.9})
            for (const double lon : {10.2, 12.0, 13.75})
                for (const double h : {-20.5, 0.0, 2345.678}) {
                    const Triple t = ToPlane(c, lat, lon, h, 1.8);
                    Triple g, again;
                    ASSERT_TRUE(c.PlanAttToGrafGps(t.a, t.b, t.c, 1.8, g.a, g.b, g.c)) << link.name;
                    EXPECT_NEAR(g.a, lat, 1e-11) << link.name;
                    EXPECT_NEAR(g.b, lon, 1e-11) << link.name;
                    EXPECT_NEAR(g.c, h, 1e-5) << link.name;
                    again = ToPlane(c, g.a, g.b, g.c, 1.8);
                    EXPECT_TRUE(Near(again, t, 1e-5)) << link.name;
                }
    }
}

TEST(CConvCoordChainTest, TheWholeChainAgreesWithOnePipelineOfProj) {
    CLibMap map;
    CConvCoord c(&map);
    SetTm(c);
    SetOwnBase(c);
    SetProjectDatum(c);
    const auto helmert = [](const double* k) {
        return " +step +proj=helmert +convention=position_vector +x=" + Num(k[0]) + " +y=" + Num(k[1]) +
               " +z=" + Num(k[2]) + " +rx=" + Num(k[3]) + " +ry=" + Num(k[4]) + " +rz=" + Num(k[5]) +
               " +s=" + Num(k[6]);
    };
    const ProjPeer peer = ProjPeer::Operation(
        "+proj=pipeline +step +proj=cart +ellps=WGS84" + helmert(kReceiver) + helmert(kRoma40) +
        " +step +inv +proj=cart +ellps=intl +step +proj=tmerc +lon_0=12 +k=0.9996 +x_0=3000000 +ellps=intl");
    for (const double lat : {37.2, 42.5, 45.9})
        for (const double lon : {10.2, 12.0, 14.75})
            for (const double h : {-20.5, 2345.678}) {
                Triple expected;
                ASSERT_TRUE(peer.Forward(lat, lon, h - 1.8, expected));
                EXPECT_TRUE(Near(ToPlane(c, lat, lon, h, 1.8), expected, 1e-6)) << lat << ", " << lon;
            }
}

TEST(CConvCoordChainTest, TheRotoTranslationFollowsTheProjection) {
    CConvCoord c;
    SetTm(c);
    const Triple plain = ToPlane(c, 42.5, 12.3, 100, 0);
    SetRotoTras(c);
    double x = plain.a, y = plain.b;
    c.GetConvLocal()->ToLocal(x, y);
    EXPECT_TRUE(Near(ToPlane(c, 42.5, 12.3, 100, 0), {x, y, plain.c}, 1e-9));
    EXPECT_GT(std::fabs(x - plain.a), 1000);
}

TEST(CConvCoordChainTest, TheAntennaComesOffTheHeight) {
    CConvCoord c;
    SetTm(c);
    const Triple with = ToPlane(c, 42.5, 12.3, 100.0, 1.8), ground = ToPlane(c, 42.5, 12.3, 98.2, 0);
    EXPECT_EQ(with.c, 98.2);
    EXPECT_EQ(with.a, ground.a);
    EXPECT_EQ(with.b, ground.b);
    Triple g;
    ASSERT_TRUE(c.PlanAttToGrafGps(with.a, with.b, with.c, 1.8, g.a, g.b, g.c));
    EXPECT_DOUBLE_EQ(g.c, 100.0);
}

// With a datum change the order shows: the ground mark goes through the chain, so the antenna length that
// comes off is that along the normal in the measured datum.
TEST(CConvCoordChainTest, TheAntennaComesOffBeforeTheDatumChange) {
    CLibMap map;
    CConvCoord c(&map);
    SetTm(c);
    SetProjectDatum(c);
    constexpr double antenna = 5000;  // so long that the order makes a visible difference
    const Triple t = ToPlane(c, 42.5, 12.3, 6000, antenna), ground = ToPlane(c, 42.5, 12.3, 1000, 0);
    EXPECT_EQ(Distance(t, ground), 0);
    const Triple phase = ToPlane(c, 42.5, 12.3, 6000, 0);
    EXPECT_GT(std::hypot(phase.a - t.a, phase.b - t.b), 0.01) << "the other order would give this position";
}

TEST(CConvCoordChainTest, HeightTypesTakeTheirDifferenceFromTheEllipsoidalHeight) {
    CConvCoord c;
    SetTm(c);
    const Triple plain = ToPlane(c, 42.5, 12.3, 100, 0);
    EXPECT_EQ(plain.c, 100);
    c.GetConvAltez()->SetCoeff(44.8, 2e-5, -1e-6);
    c.GetConvAltez()->SetTpCalcPt(CConvAltez::tpCostante);
    EXPECT_NEAR(ToPlane(c, 42.5, 12.3, 100, 0).c, 100 - 44.8, 1e-12);
    c.GetConvAltez()->SetTpCalcPt(CConvAltez::tpPiano);
    const double plane = 44.8 + 2e-5 * plain.a - 1e-6 * plain.b;
    EXPECT_NEAR(ToPlane(c, 42.5, 12.3, 100, 0).c, 100 - plane, 1e-9);
    SetRotoTras(c);  // the plane is over the projection, whatever is done to its coordinates afterwards
    EXPECT_NEAR(ToPlane(c, 42.5, 12.3, 100, 0).c, 100 - plane, 1e-9);
}

TEST(CConvCoordChainTest, APlaneOfHeightsWithItsOwnProjectionStartsFromWgs84) {
    CLibMap map;
    CConvCoord c(&map);
    SetTm(c);
    SetOwnBase(c);
    SetProjectDatum(c);
    const double before = ToPlane(c, 42.5, 12.3, 100, 0).c;
    SetPlaneOfHeights(c);
    c.GetConvAltez()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    Triple w, en;
    ASSERT_TRUE(c.GrafBaseToGrafWgs(42.5, 12.3, 100, w.a, w.b, w.c));
    ASSERT_TRUE(ProjPeer::Operation("+proj=utm +zone=32 +ellps=WGS84").Forward(w.a, w.b, 0, en));
    EXPECT_NEAR(before - ToPlane(c, 42.5, 12.3, 100, 0).c, -65.2 + 2e-5 * en.a + 1e-5 * en.b, 1e-9);
}

TEST(CConvCoordChainTest, AnUnknownHeightTypeFails) {
    CConvCoord c;
    SetTm(c);
    c.GetConvAltez()->SetTpCalcPt(3);
    Triple t, g;
    EXPECT_FALSE(c.GrafGpsToPlanAtt(42.5, 12.3, 100, 0, t.a, t.b, t.c));
    EXPECT_TRUE(AllUnset(t));
    EXPECT_FALSE(c.PlanAttToGrafGps(3000000, 4700000, 100, 0, g.a, g.b, g.c));
    EXPECT_TRUE(AllUnset(g));
}

TEST(CConvCoordChainTest, WithoutAProjectionThePlaneFailsAndWgs84DoesNot) {
    CConvCoord c;
    Triple t, w;
    EXPECT_FALSE(c.GrafGpsToPlanAtt(42.5, 12.3, 100, 0, t.a, t.b, t.c));
    EXPECT_TRUE(AllUnset(t));
    EXPECT_TRUE(c.GrafBaseToGrafWgs(42.5, 12.3, 100, w.a, w.b, w.c));
    EXPECT_EQ(Distance(w, 42.5, 12.3, 100), 0);
}

TEST(CConvCoordChainTest, ValuesThatAreNoMeasurementGiveFalseAndUnset) {
    for (const bool datum : {false, true}) {
        CLibMap map;
        CConvCoord c(&map);
        SetTm(c);
        if (datum) SetOwnBase(c), SetProjectDatum(c);
        for (const Special& s : kNoMeasurement)
            for (int k = 0; k < 4; ++k) {
                const auto pick = [&](int i, double v) { return i == k ? s.value : v; };
                Triple t, g, w, x;
                EXPECT_FALSE(
                    c.GrafGpsToPlanAtt(pick(0, 42), pick(1, 12), pick(2, 100), pick(3, 1), t.a, t.b, t.c))
                    << s.name << " as value " << k;
                EXPECT_TRUE(AllUnset(t)) << s.name << " as value " << k;
                EXPECT_FALSE(
                    c.PlanAttToGrafGps(pick(0, 3e6), pick(1, 4.7e6), pick(2, 100), pick(3, 1), g.a, g.b, g.c))
                    << s.name << " as value " << k;
                EXPECT_TRUE(AllUnset(g)) << s.name << " as value " << k;
                if (k == 3) continue;
                EXPECT_FALSE(c.GrafBaseToGrafWgs(pick(0, 42), pick(1, 12), pick(2, 100), w.a, w.b, w.c))
                    << s.name << " as value " << k;
                EXPECT_TRUE(AllUnset(w)) << s.name << " as value " << k;
                EXPECT_FALSE(c.GeocBaseToGeocWgs(pick(0, 4e6), pick(1, 1e6), pick(2, 4e6), x.a, x.b, x.c))
                    << s.name << " as value " << k;
                EXPECT_TRUE(AllUnset(x)) << s.name << " as value " << k;
            }
        for (const double lat : {90.1, -90.1}) {
            Triple t, w;
            EXPECT_FALSE(c.GrafGpsToPlanAtt(lat, 12, 100, 1, t.a, t.b, t.c)) << lat;
            EXPECT_TRUE(AllUnset(t)) << lat;
            EXPECT_FALSE(c.GrafBaseToGrafWgs(lat, 12, 100, w.a, w.b, w.c)) << lat;
            EXPECT_TRUE(AllUnset(w)) << lat;
        }
    }
}

}  // namespace
