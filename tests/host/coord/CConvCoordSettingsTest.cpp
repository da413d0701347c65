// Settings of CConvCoord, readiness, and what copies and assignments take along.
#include <gtest/gtest.h>

#include "platform/coord/CConvCoord.h"
#include "platform/coord/CLibMap.h"
#include "tests/host/coord/CountingItem.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

TEST(CConvCoordSettingsTest, ItIsReadyWhenS1IsNotZero) {
    CConvCoord c;
    EXPECT_FALSE(c.IsConvCoordReady());
    for (const int s1 : {1, -1, 7}) {
        c.SetImp(CConvCoord::impPronta, s1);
        EXPECT_TRUE(c.IsConvCoordReady()) << s1;
    }
    c.SetImp(CConvCoord::impPronta, 0);
    EXPECT_FALSE(c.IsConvCoordReady());
}

// Whatever else is set: a loaded conversion is as ready as the one it was stored from.
TEST(CConvCoordSettingsTest, NothingButS1MakesItReady) {
    CConvCoord c;
    for (int k = 2; k <= CConvCoord::IMP_MAX; ++k) c.SetImp(k, 1);
    c.SetImpFlag(true);
    c.SetImpReal(1, 6378137);
    c.SetTpDtBaseGps(CConvCoord::dtProprio);
    c.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    EXPECT_FALSE(c.IsConvCoordReady());
    CConvCoord bare;  // no projection at all
    bare.SetImp(CConvCoord::impPronta, 1);
    EXPECT_TRUE(bare.IsConvCoordReady());
}

TEST(CConvCoordSettingsTest, SettingsAreKeptByNumber) {
    CConvCoord c;
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k) EXPECT_EQ(c.GetImp(k), 0) << k;
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k) c.SetImp(k, 100 * k);
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k) EXPECT_EQ(c.GetImp(k), 100 * k) << k;
    c.SetImpReal(1, 1.5);
    c.SetImpReal(2, 2.5);
    EXPECT_EQ(c.GetImpReal(1), 1.5);
    EXPECT_EQ(c.GetImpReal(2), 2.5);
    EXPECT_FALSE(c.GetImpFlag());
    c.SetImpFlag(true);
    EXPECT_TRUE(c.GetImpFlag());
}

TEST(CConvCoordSettingsTest, NumbersOutsideHaveNoEffect) {
    CountingItem item;
    CConvCoord c(nullptr, &item);
    for (const int k : {-1, 0, 11, 1000}) {
        c.SetImp(k, 5);
        EXPECT_EQ(c.GetImp(k), 0) << k;
    }
    for (const int k : {-1, 0, 3}) {
        c.SetImpReal(k, 5);
        EXPECT_EQ(c.GetImpReal(k), 0) << k;
    }
    EXPECT_EQ(item.changes, 0);
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k) EXPECT_EQ(c.GetImp(k), 0) << k;
}

TEST(CConvCoordSettingsTest, MessagesAreOnUntilSwitchedOff) {
    CConvCoord c;
    EXPECT_TRUE(c.IsShowMessage());
    c.ShowMessage(false);
    EXPECT_FALSE(c.IsShowMessage());
    c.ShowMessage(true);
    EXPECT_TRUE(c.IsShowMessage());
}

// A conversion with every value different from that of a new one.
void Fill(CConvCoord& c) {
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k) c.SetImp(k, k);
    c.SetImp(CConvCoord::impDatSel1, 0);
    c.SetImp(CConvCoord::impDatSel2, 0);
    c.SetImp(CConvCoord::impDatIndice, 0);
    c.SetImpFlag(true);
    c.SetImpReal(1, 6378388);
    c.SetImpReal(2, 297);
    c.SetTpDtBaseGps(CConvCoord::dtProprio);
    c.GetConvDtBaseGps()->SetCoeffToStd(1, 2, 3, 0.1, 0.2, 0.3, 0.4);
    c.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    c.GetConvLocal()->SetRotoTras(500000, 5000000, 1000, 2000, 1.0001, 3);
    c.GetConvAltez()->SetTpCalcPt(CConvAltez::tpPiano);
    c.GetConvAltez()->SetCoeff(44, 1e-5, 1e-6);
    c.GetConvAltez()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 12, 0, 0, 1);
}

void ExpectSameValues(const CConvCoord& a, const CConvCoord& b) {
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k) EXPECT_EQ(a.GetImp(k), b.GetImp(k)) << k;
    EXPECT_EQ(a.GetImpFlag(), b.GetImpFlag());
    EXPECT_EQ(a.GetImpReal(1), b.GetImpReal(1));
    EXPECT_EQ(a.GetImpReal(2), b.GetImpReal(2));
    EXPECT_EQ(a.GetTpDtBaseGps(), b.GetTpDtBaseGps());
    EXPECT_TRUE(*a.GetConvDtBaseGps() == *b.GetConvDtBaseGps());
    EXPECT_EQ(a.GetConvLocal()->GetProiezPla().GetValues(), b.GetConvLocal()->GetProiezPla().GetValues());
    EXPECT_EQ(a.GetConvLocal()->GetScala(), b.GetConvLocal()->GetScala());
    EXPECT_EQ(a.GetConvAltez()->GetTpCalcPt(), b.GetConvAltez()->GetTpCalcPt());
    Triple t, u;
    EXPECT_TRUE(a.GrafGpsToPlanAtt(45, 9.5, 100, 1, t.a, t.b, t.c));
    EXPECT_TRUE(b.GrafGpsToPlanAtt(45, 9.5, 100, 1, u.a, u.b, u.c));
    EXPECT_EQ(Distance(t, u), 0);
}

TEST(CConvCoordSettingsTest, ACopyTakesTheValuesAndTheMapLibraryButNoItem) {
    CLibMap map;
    CountingItem item;
    CConvCoord c(&map, &item);
    Fill(c);
    item.changes = 0;
    CConvCoord copy(c);
    EXPECT_EQ(copy.GetLibMap(), &map);
    ExpectSameValues(copy, c);
    copy.SetImp(9, 99);
    copy.GetConvLocal()->SetRotoTras(1, 2, 3, 4, 5, 6);
    copy.GetConvAltez()->SetCoeff(9, 9, 9);
    copy.GetConvDtBaseGps()->SetNome("copy");
    EXPECT_EQ(item.changes, 0) << "the copy reports to nobody";
    EXPECT_EQ(c.GetImp(9), 9) << "and is independent";
    c.SetImp(9, 98);
    EXPECT_EQ(item.changes, 1) << "the original still reports";
}

TEST(CConvCoordSettingsTest, AnAssignmentTakesTheValuesAndKeepsTheTargetsBindings) {
    CLibMap map, otherMap;
    CountingItem item, otherItem;
    CConvCoord c(&map, &item), target(&otherMap, &otherItem);
    Fill(c);
    item.changes = 0;
    target = c;
    EXPECT_EQ(otherItem.changes, 0) << "an assignment is no report";
    EXPECT_EQ(target.GetLibMap(), &otherMap);
    ExpectSameValues(target, c);
    target.SetImp(9, 99);
    target.GetConvLocal()->SetRotoTras(1, 2, 3, 4, 5, 6);
    target.GetConvAltez()->SetCoeff(9, 9, 9);
    target.GetConvDtBaseGps()->SetNome("target");
    EXPECT_EQ(otherItem.changes, 4);
    EXPECT_EQ(item.changes, 0);
}

TEST(CConvCoordSettingsTest, AnAssignmentTakesEffectOnAConversionInUse) {
    CConvCoord c, target;
    c.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    target.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 12, 500000, 0, 1);
    Triple t, u;
    ASSERT_TRUE(target.GrafGpsToPlanAtt(45, 9.5, 100, 1, t.a, t.b, t.c));
    c.SetTpDtBaseGps(CConvCoord::dtProprio);
    c.GetConvDtBaseGps()->SetCoeffToStd(100, 0, 0, 0, 0, 0, 0);
    target = c;
    ASSERT_TRUE(target.GrafGpsToPlanAtt(45, 9.5, 100, 1, t.a, t.b, t.c));
    ASSERT_TRUE(c.GrafGpsToPlanAtt(45, 9.5, 100, 1, u.a, u.b, u.c));
    EXPECT_EQ(Distance(t, u), 0);
}

// The datum that a copied chain points at must be the copy's own, not that of the one it was copied from.
TEST(CConvCoordSettingsTest, ACopyOfAConversionInUseWorksWithItsOwnDatum) {
    CConvCoord c;
    c.SetTpDtBaseGps(CConvCoord::dtProprio);
    c.GetConvDtBaseGps()->SetCoeffToStd(100, 0, 0, 0, 0, 0, 0);
    Triple x;
    ASSERT_TRUE(c.GeocBaseToGeocWgs(4e6, 1e6, 4e6, x.a, x.b, x.c));  // now its chain is prepared
    CConvCoord copy(c), assigned;
    assigned = c;
    c.GetConvDtBaseGps()->SetCoeffToStd(7, 0, 0, 0, 0, 0, 0);
    ASSERT_TRUE(copy.GeocBaseToGeocWgs(4e6, 1e6, 4e6, x.a, x.b, x.c));
    EXPECT_EQ(x.a, 4e6 + 100);
    ASSERT_TRUE(assigned.GeocBaseToGeocWgs(4e6, 1e6, 4e6, x.a, x.b, x.c));
    EXPECT_EQ(x.a, 4e6 + 100);
}

TEST(CConvCoordSettingsTest, SelfAssignmentChangesNothing) {
    CLibMap map;
    CConvCoord c(&map), before(&map);
    Fill(c);
    Fill(before);
    const CConvCoord& self = c;
    c = self;
    ExpectSameValues(c, before);
}

}  // namespace
