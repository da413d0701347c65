// Which datum and which ellipsoid a conversion works with.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "platform/coord/CConvCoord.h"
#include "platform/coord/CLibMap.h"
#include "tests/host/coord/ProjPeer.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

void SetUtm(CConvCoord& c) {
    c.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
}

Triple ToPlane(const CConvCoord& c) {
    Triple t;
    EXPECT_TRUE(c.GrafGpsToPlanAtt(45.25, 9.75, 120, 0, t.a, t.b, t.c));
    return t;
}

Triple ToWgs(const CConvCoord& c) {
    Triple t;
    EXPECT_TRUE(c.GrafBaseToGrafWgs(45.25, 9.75, 120, t.a, t.b, t.c));
    return t;
}

TEST(CConvCoordDatumTest, TheMeasuredDatumIsWgs84ByDefault) {
    CConvCoord c;
    c.GetConvDtBaseGps()->SetCoeffToStd(10, 20, 30, 0, 0, 0, 0);
    EXPECT_EQ(c.GetTpDtBaseGps(), CConvCoord::dtWgs84);
    EXPECT_EQ(Distance(ToWgs(c), 45.25, 9.75, 120), 0) << "the own datum is not asked";
    Triple x;
    ASSERT_TRUE(c.GeocBaseToGeocWgs(4e6, 1e6, 4e6, x.a, x.b, x.c));
    EXPECT_EQ(Distance(x, 4e6, 1e6, 4e6), 0);
}

TEST(CConvCoordDatumTest, TheOwnMeasuredDatumGoesToWgs84) {
    CConvCoord c;
    c.SetTpDtBaseGps(CConvCoord::dtProprio);
    EXPECT_EQ(Distance(ToWgs(c), 45.25, 9.75, 120), 0) << "a new datum is the identity";
    c.GetConvDtBaseGps()->SetCoeffToStd(10, 20, 30, 0, 0, 0, 0);
    Triple x, expected;
    ASSERT_TRUE(c.GeocBaseToGeocWgs(4e6, 1e6, 4e6, x.a, x.b, x.c));
    EXPECT_TRUE(Near(x, {4000010, 1000020, 4000030}, 1e-9));
    ASSERT_TRUE(ProjPeer::Operation("+proj=pipeline +step +proj=cart +ellps=WGS84 +step +proj=helmert +x=10 "
                                    "+y=20 +z=30 +step +inv +proj=cart +ellps=WGS84 +step +proj=axisswap "
                                    "+order=1,2,3")
                    .Forward(45.25, 9.75, 120, expected));
    const Triple t = ToWgs(c);
    EXPECT_NEAR(t.a * kRad, expected.b, 1e-15);
    EXPECT_NEAR(t.b * kRad, expected.a, 1e-15);
    EXPECT_NEAR(t.c, expected.c, 1e-8);
}

TEST(CConvCoordDatumTest, CoefficientsFromStandardAreInvertedForTheMeasuredDatum) {
    CConvCoord c;
    c.SetTpDtBaseGps(CConvCoord::dtProprio);
    c.GetConvDtBaseGps()->SetCoeffFromStd(10, 20, 30, 0, 0, 0, 0);
    Triple x;
    ASSERT_TRUE(c.GeocBaseToGeocWgs(4e6, 1e6, 4e6, x.a, x.b, x.c));
    EXPECT_TRUE(Near(x, {3999990, 999980, 3999970}, 1e-9));
}

TEST(CConvCoordDatumTest, TheMeasuredDatumOfTheLibraryIsUsedByTheLibrarysType) {
    CLibMap map;
    CConvCoord c(&map);
    c.SetTpDtBaseGps(CConvCoord::dtLibreria);
    map.GetConvDtBaseGps()->SetCoeffToStd(10, 20, 30, 0, 0, 0, 0);
    Triple x;
    ASSERT_TRUE(c.GeocBaseToGeocWgs(4e6, 1e6, 4e6, x.a, x.b, x.c));
    EXPECT_EQ(Distance(x, 4e6, 1e6, 4e6), 0) << "the library says WGS 84";
    map.SetTpDtBaseGps(1);
    ASSERT_TRUE(c.GeocBaseToGeocWgs(4e6, 1e6, 4e6, x.a, x.b, x.c));
    EXPECT_TRUE(Near(x, {4000010, 1000020, 4000030}, 1e-9));
    map.GetConvDtBaseGps()->SetCoeffToStd(11, 20, 30, 0, 0, 0, 0);
    ASSERT_TRUE(c.GeocBaseToGeocWgs(4e6, 1e6, 4e6, x.a, x.b, x.c));
    EXPECT_TRUE(Near(x, {4000011, 1000020, 4000030}, 1e-9)) << "a change takes effect at once";
    c.SetTpDtBaseGps(CConvCoord::dtProprio);
    ASSERT_TRUE(c.GeocBaseToGeocWgs(4e6, 1e6, 4e6, x.a, x.b, x.c));
    EXPECT_EQ(Distance(x, 4e6, 1e6, 4e6), 0) << "the own datum again";
}

TEST(CConvCoordDatumTest, TheProjectsDatumIsUsedOnlyWithItsFlag) {
    CLibMap map;
    CConvCoord c(&map);
    SetUtm(c);
    const Triple plain = ToPlane(c);
    map.AddDat(2, 5)->SetCoeffToStd(1, 0, 0, 0, 0, 0, 0);
    map.AddDat(2, 5)->SetCoeffToStd(100, 0, 0, 0, 0, 0, 0);
    c.SetImp(CConvCoord::impDatSel1, 2);
    c.SetImp(CConvCoord::impDatSel2, 5);
    c.SetImp(CConvCoord::impDatIndice, 1);
    EXPECT_EQ(Distance(ToPlane(c), plain), 0);
    c.SetImpFlag(true);
    const double far = Distance(ToPlane(c), plain);
    EXPECT_GT(far, 50);
    c.SetImp(CConvCoord::impDatIndice, 0);
    EXPECT_NEAR(Distance(ToPlane(c), plain) / far, 0.01, 1e-4) << "another index, another datum";
    c.SetImp(CConvCoord::impDatSel1, 0);
    c.SetImp(CConvCoord::impDatSel2, 0);
    EXPECT_EQ(Distance(ToPlane(c), plain), 0) << "the library's first datum is the identity";
    c.SetImpFlag(false);
    EXPECT_EQ(Distance(ToPlane(c), plain), 0);
}

TEST(CConvCoordDatumTest, AnUnknownProjectDatumFailsAndWgs84DoesNot) {
    CLibMap map;
    for (int which = 0; which < 4; ++which) {
        CConvCoord c(which == 3 ? nullptr : &map);
        SetUtm(c);
        c.SetImp(CConvCoord::impDatSel1, which == 0 ? 7 : 0);
        c.SetImp(CConvCoord::impDatSel2, which == 1 ? 7 : 0);
        c.SetImp(CConvCoord::impDatIndice, which == 2 ? 1 : 0);
        c.SetImpFlag(true);
        Triple t, g, w;
        EXPECT_FALSE(c.GrafGpsToPlanAtt(45.25, 9.75, 120, 0, t.a, t.b, t.c)) << which;
        EXPECT_TRUE(AllUnset(t)) << which;
        EXPECT_FALSE(c.PlanAttToGrafGps(500000, 5000000, 120, 0, g.a, g.b, g.c)) << which;
        EXPECT_TRUE(AllUnset(g)) << which;
        EXPECT_TRUE(c.GrafBaseToGrafWgs(45.25, 9.75, 120, w.a, w.b, w.c)) << which;
    }
}

TEST(CConvCoordDatumTest, AChangeInTheMapLibraryTakesEffectAtOnce) {
    CLibMap map;
    CConvCoord c(&map);
    SetUtm(c);
    c.SetImpFlag(true);
    const Triple before = ToPlane(c);
    map.GetDatAt(0, 0, 0)->SetCoeffToStd(100, 0, 0, 0, 0, 0, 0);
    EXPECT_GT(Distance(ToPlane(c), before), 50);
    map.GetDatAt(0, 0, 0)->SetCoeffToStd(0, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(Distance(ToPlane(c), before), 0);
    c.SetImp(CConvCoord::impDatIndice, 1);
    Triple t;
    EXPECT_FALSE(c.GrafGpsToPlanAtt(45.25, 9.75, 120, 0, t.a, t.b, t.c));
    map.AddDat(0, 0);
    EXPECT_TRUE(c.GrafGpsToPlanAtt(45.25, 9.75, 120, 0, t.a, t.b, t.c)) << "the datum is there now";
}

TEST(CConvCoordDatumTest, AnIdentityDatumOnAnotherEllipsoidLeavesTheAngles) {
    CLibMap map;
    CConvCoord c(&map);
    SetUtm(c);
    c.SetImpFlag(true);
    c.SetImp(CConvCoord::impEllissoide, CConvCoord::ellInternazionale1924);
    Triple expected;
    ASSERT_TRUE(ProjPeer::Operation("+proj=utm +zone=32 +ellps=intl").Forward(45.25, 9.75, 120, expected));
    EXPECT_TRUE(Near(ToPlane(c), expected, 1e-8)) << "the same angles and height, projected from there";
    c.SetImpFlag(false);
    EXPECT_TRUE(Near(ToPlane(c), expected, 1e-8)) << "and so without the datum's flag";
}

TEST(CConvCoordDatumTest, AProjectionByDefinitionTakesNoPartInDatumAndEllipsoid) {
    CLibMap map;
    map.GetDatAt(0, 0, 0)->SetCoeffToStd(100, 0, 0, 0, 0, 0, 0);
    CConvCoord c(&map);
    std::string why;
    ASSERT_TRUE(c.GetConvLocal()->SetDefinizione("EPSG:32632", why)) << why;
    const Triple before = ToPlane(c);
    c.SetImp(CConvCoord::impEllissoide, CConvCoord::ellBessel1841);
    c.SetImpFlag(true);
    EXPECT_EQ(Distance(ToPlane(c), before), 0);
    c.SetImp(CConvCoord::impDatIndice, 99);
    c.SetImp(CConvCoord::impEllissoide, 99);
    EXPECT_EQ(Distance(ToPlane(c), before), 0) << "what is unknown is not asked for";
}

struct Ellipsoid {
    int code;
    const char* name;  // as PROJ knows it
};

// PROJ's own parameters of the same ellipsoids, through a position that shows both axes.
TEST(CConvCoordDatumTest, TheEllipsoidsOfTheTableAreThoseOfProj) {
    constexpr Ellipsoid rows[] = {{CConvCoord::ellWgs84, "+ellps=WGS84"},
                                  {CConvCoord::ellGrs80, "+ellps=GRS80"},
                                  {CConvCoord::ellInternazionale1924, "+ellps=intl"},
                                  {CConvCoord::ellBessel1841, "+ellps=bessel"},
                                  {CConvCoord::ellClarke1866, "+ellps=clrk66"},
                                  {CConvCoord::ellClarke1880Rgs, "+a=6378249.145 +rf=293.465"},
                                  {CConvCoord::ellAiry1830, "+a=6377563.396 +rf=299.3249646"},
                                  {CConvCoord::ellKrassowsky1940, "+ellps=krass"},
                                  {CConvCoord::ellAustraliano, "+ellps=aust_SA"},
                                  {CConvCoord::ellGrs67, "+ellps=GRS67"}};
    for (const Ellipsoid& row : rows) {
        CConvCoord c;
        SetUtm(c);
        c.SetImp(CConvCoord::impEllissoide, row.code);
        Triple expected;
        ASSERT_TRUE(ProjPeer::Operation(std::string("+proj=tmerc +lon_0=9 +k=0.9996 +x_0=500000 ") + row.name)
                        .Forward(45.25, 9.75, 120, expected));
        EXPECT_TRUE(Near(ToPlane(c), expected, 1e-6)) << row.name;
        double a = 0, rf = 0;
        EXPECT_TRUE(c.GetEllissoide(a, rf)) << row.name;
        EXPECT_NEAR(a, 6378000, 1000) << row.name;
    }
}

TEST(CConvCoordDatumTest, AnUnknownEllipsoidFailsAndWritesNothing) {
    for (const int code : {-1, 10, 99, 101}) {
        CConvCoord c;
        SetUtm(c);
        c.SetImp(CConvCoord::impEllissoide, code);
        double a = kUntouched, rf = kUntouched;
        EXPECT_FALSE(c.GetEllissoide(a, rf)) << code;
        EXPECT_EQ(a, kUntouched) << code;
        EXPECT_EQ(rf, kUntouched) << code;
        Triple t;
        EXPECT_FALSE(c.GrafGpsToPlanAtt(45.25, 9.75, 120, 0, t.a, t.b, t.c)) << code;
        EXPECT_TRUE(AllUnset(t)) << code;
        c.SetImp(CConvCoord::impEllissoide, CConvCoord::ellWgs84);
        EXPECT_TRUE(c.GrafGpsToPlanAtt(45.25, 9.75, 120, 0, t.a, t.b, t.c)) << code;
    }
}

TEST(CConvCoordDatumTest, AnEllipsoidOfItsOwnComesFromR1AndR2) {
    CConvCoord c;
    SetUtm(c);
    c.SetImpReal(1, 6378388);
    c.SetImpReal(2, 297);
    const Triple wgs = ToPlane(c);
    c.SetImp(CConvCoord::impEllissoide, CConvCoord::ellProprio);
    Triple expected;
    ASSERT_TRUE(ProjPeer::Operation("+proj=utm +zone=32 +ellps=intl").Forward(45.25, 9.75, 120, expected));
    EXPECT_TRUE(Near(ToPlane(c), expected, 1e-8));
    EXPECT_GT(Distance(wgs, expected), 10) << "R1 and R2 count only with S2 saying so";
    c.SetImpReal(2, 0);
    ASSERT_TRUE(ProjPeer::Operation("+proj=tmerc +lon_0=9 +k=0.9996 +x_0=500000 +R=6378388")
                    .Forward(45.25, 9.75, 120, expected));
    EXPECT_TRUE(Near(ToPlane(c), expected, 1e-6)) << "no flattening: a sphere";
    for (const double a : {0.0, -6378137.0, kNan, kInf, GPS_VAL_UNSET}) {
        c.SetImpReal(1, a);
        Triple t;
        EXPECT_FALSE(c.GrafGpsToPlanAtt(45.25, 9.75, 120, 0, t.a, t.b, t.c)) << "R1 " << a;
        EXPECT_TRUE(AllUnset(t)) << "R1 " << a;
    }
}

TEST(CConvCoordDatumTest, TheEllipsoidOfTheDatumIsTheOneOfTheChange) {
    CLibMap map;
    map.GetDatAt(0, 0, 0)->SetCoeffFromStd(10, 20, 30, 0, 0, 0, 0);
    CConvCoord c(&map);
    SetUtm(c);
    c.SetImpFlag(true);
    c.SetImp(CConvCoord::impEllissoide, CConvCoord::ellBessel1841);
    Triple expected;
    ASSERT_TRUE(
        ProjPeer::Operation("+proj=pipeline +step +proj=cart +ellps=WGS84 +step +proj=helmert +x=10 +y=20 "
                            "+z=30 +step +inv +proj=cart +ellps=bessel +step +proj=utm +zone=32 "
                            "+ellps=bessel")
            .Forward(45.25, 9.75, 120, expected));
    EXPECT_TRUE(Near(ToPlane(c), expected, 1e-6));
}

// A fix measured in an unknown datum is not taken for one in WGS 84.
TEST(CConvCoordDatumTest, WithAnUnknownMeasuredDatumEverythingFails) {
    CConvCoord c;
    SetUtm(c);
    for (const int type : {-1, 3, 99, static_cast<int>(CConvCoord::dtLibreria)}) {  // and no map library
        c.SetTpDtBaseGps(CConvCoord::dtWgs84);
        ToPlane(c);  // prepared for the type that works
        c.SetTpDtBaseGps(type);
        Triple t;
        EXPECT_FALSE(c.GrafGpsToPlanAtt(45, 9, 100, 0, t.a, t.b, t.c)) << type;
        EXPECT_TRUE(AllUnset(t)) << type;
        EXPECT_FALSE(c.PlanAttToGrafGps(500000, 5e6, 100, 0, t.a, t.b, t.c)) << type;
        EXPECT_TRUE(AllUnset(t)) << type;
        EXPECT_FALSE(c.GrafBaseToGrafWgs(45, 9, 100, t.a, t.b, t.c)) << type;
        EXPECT_TRUE(AllUnset(t)) << type;
        EXPECT_FALSE(c.GeocBaseToGeocWgs(4.4e6, 7e5, 4.5e6, t.a, t.b, t.c)) << type;
        EXPECT_TRUE(AllUnset(t)) << type;
    }
}

TEST(CConvCoordDatumTest, AnAssignedPartTakesEffectAtOnce) {
    CConvCoord c, other;
    SetUtm(c);
    other.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 600000, 0, 0.9996);
    const Triple before = ToPlane(c);
    *c.GetConvLocal() = *other.GetConvLocal();
    EXPECT_NEAR(ToPlane(c).a - before.a, 100000, 1e-6);

    CConvAltez height;
    height.SetTpCalcPt(CConvAltez::tpCostante);
    height.SetCoeff(40, 0, 0);
    *c.GetConvAltez() = height;
    EXPECT_NEAR(ToPlane(c).c, before.c - 40, 1e-9);

    CLibMap map;
    CConvCoord withMap(&map);
    SetUtm(withMap);
    withMap.SetImpFlag(true);
    const Triple identity = ToPlane(withMap);
    CDatumConv datum;
    datum.SetCoeffFromStd(100, 0, 0, 0, 0, 0, 0);
    *map.GetDatAt(0, 0, 0) = datum;
    EXPECT_GT(Distance(ToPlane(withMap), identity), 10);
}

TEST(CConvCoordDatumTest, TheSameDefinitionAgainLeavesTheConversionUsable) {
    CConvCoord c;
    std::string why;
    ASSERT_TRUE(c.GetConvLocal()->SetDefinizione("EPSG:32632", why)) << why;
    const Triple before = ToPlane(c);
    ASSERT_TRUE(c.GetConvLocal()->SetDefinizione("EPSG:32632", why)) << why;
    const Triple after = ToPlane(c);
    EXPECT_EQ(after.a, before.a);
    EXPECT_EQ(after.b, before.b);
}

TEST(CConvCoordDatumTest, AnAssignedLocalPartKeepsTheEllipsoidOfItsConversion) {
    CConvCoord c, other;
    SetUtm(c);
    SetUtm(other);
    other.SetImp(CConvCoord::impEllissoide, CConvCoord::ellInternazionale1924);
    const Triple before = ToPlane(c);
    *c.GetConvLocal() = *other.GetConvLocal();
    EXPECT_EQ(ToPlane(c).b, before.b);
    c = other;
    EXPECT_EQ(ToPlane(c).b, ToPlane(other).b) << "an assigned conversion has the other's ellipsoid";
}

TEST(CConvCoordDatumTest, AMeasuredDatumOfTheMapLibraryMovesPlaneCoordinatesAtOnce) {
    CLibMap map;
    CConvCoord c(&map);
    SetUtm(c);
    c.SetTpDtBaseGps(CConvCoord::dtLibreria);
    const Triple asWgs = ToPlane(c);
    map.SetTpDtBaseGps(1);
    map.GetConvDtBaseGps()->SetCoeffToStd(100, 0, 0, 0, 0, 0, 0);
    EXPECT_GT(Distance(ToPlane(c), asWgs), 10);
    map.SetTpDtBaseGps(0);
    EXPECT_EQ(ToPlane(c).a, asWgs.a);
}

TEST(CConvCoordDatumTest, WithoutAProjectDatumTheEllipsoidOfS2MovesNoAngles) {
    CConvCoord c;
    SetUtm(c);
    c.SetImp(CConvCoord::impEllissoide, CConvCoord::ellInternazionale1924);
    c.SetTpDtBaseGps(CConvCoord::dtProprio);
    c.GetConvDtBaseGps()->SetCoeffToStd(10, 20, 30, 0, 0, 0, 0);
    Triple expected;
    ASSERT_TRUE(
        ProjPeer::Operation("+proj=pipeline +step +proj=cart +ellps=WGS84 +step +proj=helmert +x=10 +y=20 "
                            "+z=30 +step +inv +proj=cart +ellps=WGS84 +step +proj=utm +zone=32 +ellps=intl")
            .Forward(45.25, 9.75, 120, expected));
    EXPECT_TRUE(Near(ToPlane(c), expected, 1e-6));
}

// Where the areas of two datum steps meet, the way back may take another one than the way there.
TEST(CConvCoordDatumTest, AWayBackThatLeadsElsewhereIsNoResult) {
    const std::tuple<const char*, double, double> places[] = {
        {"EPSG:3003", 37.8421, 6.9173}, {"EPSG:3004", 37.0526, 15.7143}, {"EPSG:3003", 44.4, 9.0}};
    for (const auto& [crs, lat, lon] : places) {
        CConvCoord c;
        std::string why;
        ASSERT_TRUE(c.GetConvLocal()->SetDefinizione(crs, why)) << why;
        Triple plane, back, again;
        ASSERT_TRUE(c.GrafGpsToPlanAtt(lat, lon, 100, 0, plane.a, plane.b, plane.c)) << crs;
        if (!c.PlanAttToGrafGps(plane.a, plane.b, plane.c, 0, back.a, back.b, back.c)) {
            EXPECT_TRUE(AllUnset(back)) << crs << " at " << lat;
            continue;
        }
        ASSERT_TRUE(c.GrafGpsToPlanAtt(back.a, back.b, back.c, 0, again.a, again.b, again.c));
        EXPECT_TRUE(Near(again, plane, 1e-5)) << crs << " at " << lat;
    }
}

// A height belongs to a system that has one: with 3D source the vertical step is part of the definition.
TEST(CConvCoordDatumTest, ACompoundDefinitionTakesTheHeightThroughItsVerticalStep) {
    const std::string crs = "EPSG:32633+5773";  // EGM96 height; its grid is small and comes with PROJ
    CConvCoord c;
    std::string why;
    ASSERT_TRUE(c.GetConvLocal()->SetDefinizione(crs, why)) << why;
    Triple t, expected;
    ASSERT_TRUE(c.GrafGpsToPlanAtt(45.25, 15.5, 120, 2, t.a, t.b, t.c));
    ASSERT_TRUE(ProjPeer::Systems("EPSG:4979", crs).Forward(45.25, 15.5, 118, expected));
    EXPECT_TRUE(Near(t, expected, 1e-6));
}

}  // namespace
