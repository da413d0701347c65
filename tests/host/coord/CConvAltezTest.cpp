#include "platform/coord/CConvAltez.h"

#include <gtest/gtest.h>

#include "tests/host/coord/CountingItem.h"
#include "tests/host/coord/ProjPeer.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

TEST(CConvAltezTest, ANewPartHasNoDifference) {
    const CConvAltez c;
    EXPECT_EQ(c.GetTpCalcPt(), CConvAltez::tpNessuno);
    EXPECT_EQ(c.GetTpProiezPla(), TpProiezPla::nessuna);
    double dh = kUntouched;
    EXPECT_TRUE(c.GetDifferenzaAt(45, 9, 500000, 5000000, dh));
    EXPECT_EQ(dh, 0);
}

TEST(CConvAltezTest, EachTypeTakesItsOwnCoefficients) {
    CConvAltez c;
    c.SetCoeff(44.8, 2e-5, -3e-6);
    double dh = kUntouched;
    c.SetTpCalcPt(CConvAltez::tpNessuno);
    EXPECT_TRUE(c.GetDifferenzaAt(45, 9, 1000, 2000, dh));
    EXPECT_EQ(dh, 0);
    c.SetTpCalcPt(CConvAltez::tpCostante);
    EXPECT_TRUE(c.GetDifferenzaAt(45, 9, 1000, 2000, dh));
    EXPECT_EQ(dh, 44.8);
    c.SetTpCalcPt(CConvAltez::tpPiano);
    EXPECT_TRUE(c.GetDifferenzaAt(45, 9, 1000, 2000, dh));
    EXPECT_DOUBLE_EQ(dh, 44.8 + 0.02 - 0.006);
}

TEST(CConvAltezTest, AnUnknownTypeHasNoDifference) {
    for (const int type : {-1, 3, 99}) {
        CConvAltez c;
        c.SetTpCalcPt(type);
        double dh = 0;
        EXPECT_FALSE(c.GetDifferenzaAt(45, 9, 1000, 2000, dh)) << type;
    }
}

TEST(CConvAltezTest, ItsOwnProjectionTakesThePlaceOfTheGivenCoordinates) {
    CConvAltez c;
    c.SetTpCalcPt(CConvAltez::tpPiano);
    c.SetCoeff(10, 1e-5, 2e-6);
    c.SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    Triple en;
    ASSERT_TRUE(ProjPeer::Operation("+proj=utm +zone=32 +ellps=WGS84").Forward(45.25, 9.75, 0, en));
    double dh = kUntouched;
    ASSERT_TRUE(c.GetDifferenzaAt(45.25, 9.75, 1, 2, dh));
    EXPECT_NEAR(dh, 10 + 1e-5 * en.a + 2e-6 * en.b, 1e-9);
    EXPECT_FALSE(c.GetDifferenzaAt(91, 9.75, 1, 2, dh)) << "a position that has no plane coordinates";
}

TEST(CConvAltezTest, ProjectionValuesAreHandedBackAsGiven) {
    CConvAltez c;
    c.SetTpProiezPlaEx(TpProiezPla::lambert2SP, 1, 2, 3, 4, 5);
    double h[5];
    c.GetDatiProiezPlaEx(h[0], h[1], h[2], h[3], h[4]);
    EXPECT_EQ(c.GetTpProiezPla(), TpProiezPla::lambert2SP);
    for (int k = 0; k < 5; ++k) EXPECT_EQ(h[k], k + 1) << k;
}

TEST(CConvAltezTest, EveryRealChangeIsToldOnceAndTheSameValuesNever) {
    CountingWhole whole;
    CConvAltez c;
    c.BindTo(&whole);
    c.SetTpCalcPt(CConvAltez::tpPiano);
    EXPECT_EQ(whole.changes, 1);
    c.SetTpCalcPt(CConvAltez::tpPiano);
    EXPECT_EQ(whole.changes, 1);
    c.SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    EXPECT_EQ(whole.changes, 2);
    c.SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    EXPECT_EQ(whole.changes, 2);
    c.SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 1, 0.9996);
    EXPECT_EQ(whole.changes, 3);
}

}  // namespace
