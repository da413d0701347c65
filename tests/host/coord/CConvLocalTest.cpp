#include "platform/coord/CConvCoord.h"
#include "platform/coord/CConvLocal.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/host/coord/CountingItem.h"
#include "tests/host/coord/ProjPeer.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

CConvLocal Utm32() {
    CConvLocal c;
    c.SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    return c;
}

TEST(CConvLocalTest, PlaneCoordinatesOfTheOriginBecomeGeographicOnes) {
    const CConvLocal c = Utm32();
    const ProjPeer peer = ProjPeer::Operation("+proj=utm +zone=32 +ellps=WGS84");
    Triple expected;
    ASSERT_TRUE(peer.Inverse(531234.567, 4987654.321, 0, expected));
    double g1 = kUntouched, g2 = kUntouched;
    ASSERT_TRUE(c.GetCoordGraf(531234.567, 4987654.321, g1, g2));
    EXPECT_NEAR(g1, expected.a, 1e-12);
    EXPECT_NEAR(g2, expected.b, 1e-12);
}

TEST(CConvLocalTest, AnOriginReturnsThroughLatitudeAndLongitudeToDoublePrecision) {
    CConvLocal c = Utm32();
    for (const double x : {312345.6789, 500000.0, 687654.321})
        for (const double y : {4321098.7654, 5055597.17}) {
            double g1 = 0, g2 = 0, o[4];
            ASSERT_TRUE(c.GetCoordGraf(x, y, g1, g2));
            c.SetCoeffLatLon(g1, g2, 1000, 2000, 1.0001, 30);
            c.GetOrigin(o[0], o[1], o[2], o[3]);
            EXPECT_NEAR(o[0], x, 1e-8);
            EXPECT_NEAR(o[1], y, 1e-8);
            EXPECT_EQ(o[2], 1000);
            EXPECT_EQ(o[3], 2000);
            EXPECT_EQ(c.GetScala(), 1.0001);
            EXPECT_EQ(c.GetAngRot(), 30);
            EXPECT_TRUE(c.IsRotoTrasSet());
            double h1 = 0, h2 = 0;
            ASSERT_TRUE(c.GetCoordGraf(o[0], o[1], h1, h2));
            EXPECT_NEAR(h1, g1, 1e-13);
            EXPECT_NEAR(h2, g2, 1e-13);
        }
}

TEST(CConvLocalTest, UnsetValuesPassThroughAsUnset) {
    CConvLocal c = Utm32();
    for (const Special& s : kNoMeasurement) {
        double g1 = kUntouched, g2 = kUntouched;
        EXPECT_FALSE(c.GetCoordGraf(s.value, 5e6, g1, g2)) << s.name;
        EXPECT_EQ(g1, GPS_VAL_UNSET) << s.name;
        EXPECT_EQ(g2, GPS_VAL_UNSET) << s.name;
        EXPECT_FALSE(c.GetCoordGraf(5e5, s.value, g1, g2)) << s.name;
    }
    c.SetCoeffLatLon(45, 9, 1, 2, 1, 0);
    ASSERT_TRUE(c.IsRotoTrasSet());
    c.SetCoeffLatLon(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET,
                     GPS_VAL_UNSET);
    double o[4];
    c.GetOrigin(o[0], o[1], o[2], o[3]);
    for (const double v : {o[0], o[1], o[2], o[3], c.GetScala(), c.GetAngRot()}) EXPECT_EQ(v, GPS_VAL_UNSET);
    EXPECT_FALSE(c.IsRotoTrasSet());
}

TEST(CConvLocalTest, ANeverSetPartStaysUnsetOnTheWayThereAndBack) {
    const CConvLocal c = Utm32();
    double o[4], g1 = 0, g2 = 0;
    c.GetOrigin(o[0], o[1], o[2], o[3]);
    EXPECT_FALSE(c.GetCoordGraf(o[0], o[1], g1, g2));
    CConvLocal other = Utm32();
    CountingWhole whole;
    other.BindTo(&whole);
    other.SetCoeffLatLon(g1, g2, o[2], o[3], c.GetScala(), c.GetAngRot());
    EXPECT_FALSE(other.IsRotoTrasSet());
    EXPECT_EQ(whole.changes, 0) << "nothing differs";
}

TEST(CConvLocalTest, AnOriginThatHasNoPlaneCoordinatesIsUnset) {
    CConvLocal c = Utm32();
    c.SetCoeffLatLon(90.1, 9, 1, 2, 1, 0);
    double o[4];
    c.GetOrigin(o[0], o[1], o[2], o[3]);
    EXPECT_EQ(o[0], GPS_VAL_UNSET);
    EXPECT_EQ(o[1], GPS_VAL_UNSET);
    EXPECT_EQ(o[2], 1);
    CConvLocal none;  // no projection
    none.SetCoeffLatLon(45, 9, 1, 2, 1, 0);
    none.GetOrigin(o[0], o[1], o[2], o[3]);
    EXPECT_EQ(o[0], GPS_VAL_UNSET);
    EXPECT_FALSE(none.IsRotoTrasSet());
}

TEST(CConvLocalTest, TheOriginLiesOnTheEllipsoidOfTheConversion) {
    CConvCoord whole;
    *whole.GetConvLocal() = Utm32();
    whole.SetImp(CConvCoord::impEllissoide, CConvCoord::ellInternazionale1924);
    CConvLocal& c = *whole.GetConvLocal();
    c.SetCoeffLatLon(45, 10, 0, 0, 1, 0);
    Triple expected;
    ASSERT_TRUE(ProjPeer::Operation("+proj=utm +zone=32 +ellps=intl").Forward(45, 10, 0, expected));
    double o[4];
    c.GetOrigin(o[0], o[1], o[2], o[3]);
    EXPECT_NEAR(o[0], expected.a, 1e-8);
    EXPECT_NEAR(o[1], expected.b, 1e-8);
}

TEST(CConvLocalTest, ProjectionValuesAreHandedBackAsGiven) {
    CConvLocal c;
    c.SetTpProiezPlaEx(TpProiezPla::lambert1SP, 1, 2, 3, 4, 5);
    double p[5];
    c.GetDatiProiezPlaEx(p[0], p[1], p[2], p[3], p[4]);
    EXPECT_EQ(c.GetTpProiezPla(), TpProiezPla::lambert1SP);
    for (int k = 0; k < 5; ++k) EXPECT_EQ(p[k], k + 1) << k;
}

TEST(CConvLocalTest, EveryRealChangeIsToldOnceAndTheSameValuesNever) {
    CountingWhole whole;
    CConvLocal c;
    c.BindTo(&whole);
    std::string why;
    const auto changes = [&whole] { return std::exchange(whole.changes, 0); };
    c.SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    EXPECT_EQ(changes(), 1);
    c.SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    EXPECT_EQ(changes(), 0);
    EXPECT_TRUE(c.SetLambert2SP(46.5, 3, 44, 49, 700000, 6600000));
    EXPECT_EQ(changes(), 1);
    EXPECT_TRUE(c.SetLambert2SP(46.5, 3, 44, 49, 700000, 6600000));
    EXPECT_EQ(changes(), 0);
    EXPECT_FALSE(c.SetLambert2SP(46.5, 3, 44, -44, 700000, 6600000));
    EXPECT_EQ(changes(), 0) << "refused";
    EXPECT_TRUE(c.SetDefinizione("EPSG:32632", why));
    EXPECT_EQ(changes(), 1);
    EXPECT_TRUE(c.SetDefinizione("EPSG:32632", why));
    EXPECT_EQ(changes(), 0);
    EXPECT_TRUE(c.SetDefinizione("+proj=utm +zone=32 +datum=WGS84", why));
    EXPECT_EQ(changes(), 1);
    EXPECT_TRUE(c.SetDefinizione("+proj=utm +zone=32 +datum=WGS84", why));
    EXPECT_EQ(changes(), 0);
    EXPECT_TRUE(c.SetDefinizione("+proj=utm +zone=33 +datum=WGS84", why));
    EXPECT_EQ(changes(), 1) << "one text after another";
    EXPECT_FALSE(c.SetDefinizione("EPSG:4326", why));
    EXPECT_EQ(changes(), 0) << "refused";
    EXPECT_EQ(c.GetProiezPla().GetDefinizione(), "+proj=utm +zone=33 +datum=WGS84");
    c.SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    EXPECT_EQ(changes(), 1);
    c.SetCoeffLatLon(45, 9, 1, 2, 1, 0);
    EXPECT_EQ(changes(), 1);
    c.SetCoeffLatLon(45, 9, 1, 2, 1, 0);
    EXPECT_EQ(changes(), 0);
}

}  // namespace
