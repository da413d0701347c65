// What CConvCoord reports to its cloud item: once on a real difference, and nothing else.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/coord/CConvCoord.h"
#include "platform/coord/CLibMap.h"
#include "tests/host/coord/CountingItem.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

struct Setter {
    std::string name;
    std::function<void(CConvCoord&)> set;
};

std::vector<Setter> Setters() {
    std::vector<Setter> all;
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k)
        all.push_back({"S" + std::to_string(k), [k](CConvCoord& c) { c.SetImp(k, 1); }});
    for (int k = 1; k <= 2; ++k)
        all.push_back({"R" + std::to_string(k), [k](CConvCoord& c) { c.SetImpReal(k, 297); }});
    all.push_back({"B", [](CConvCoord& c) { c.SetImpFlag(true); }});
    all.push_back({"measured datum type", [](CConvCoord& c) { c.SetTpDtBaseGps(1); }});
    all.push_back({"datum name", [](CConvCoord& c) { c.GetConvDtBaseGps()->SetNome("n"); }});
    all.push_back({"datum origin", [](CConvCoord& c) { c.GetConvDtBaseGps()->SetGrafOrigine(45, 9); }});
    all.push_back({"datum coefficients to standard",
                   [](CConvCoord& c) { c.GetConvDtBaseGps()->SetCoeffToStd(1, 2, 3, 4, 5, 6, 7); }});
    all.push_back({"datum coefficients from standard",
                   [](CConvCoord& c) { c.GetConvDtBaseGps()->SetCoeffFromStd(1, 2, 3, 4, 5, 6, 7); }});
    all.push_back(
        {"projection", [](CConvCoord& c) { c.GetConvLocal()->SetTpProiezPlaEx(1, 0, 9, 5, 0, 1); }});
    all.push_back({"two parallels",
                   [](CConvCoord& c) { EXPECT_TRUE(c.GetConvLocal()->SetLambert2SP(46, 3, 44, 49, 0, 0)); }});
    all.push_back({"definition", [](CConvCoord& c) {
                       std::string why;
                       EXPECT_TRUE(c.GetConvLocal()->SetDefinizione("EPSG:32633", why)) << why;
                   }});
    all.push_back({"local values", [](CConvCoord& c) { c.GetConvLocal()->SetRotoTras(1, 2, 3, 4, 5, 6); }});
    all.push_back({"local values by latitude and longitude",
                   [](CConvCoord& c) { c.GetConvLocal()->SetCoeffLatLon(45, 9, 3, 4, 5, 6); }});
    all.push_back(
        {"local fit", [](CConvCoord& c) {
             EXPECT_TRUE(c.GetConvLocal()->CalcolaDaPunti({{0, 0, 5, 5}, {1, 0, 6, 5}}, false, nullptr));
         }});
    all.push_back({"height type", [](CConvCoord& c) { c.GetConvAltez()->SetTpCalcPt(2); }});
    all.push_back({"height coefficients", [](CConvCoord& c) { c.GetConvAltez()->SetCoeff(1, 2, 3); }});
    all.push_back(
        {"height projection", [](CConvCoord& c) { c.GetConvAltez()->SetTpProiezPlaEx(1, 0, 9, 5, 0, 1); }});
    all.push_back(
        {"height fit", [](CConvCoord& c) {
             EXPECT_TRUE(c.GetConvAltez()->CalcolaDaPunti({{0, 0, 1}, {9, 0, 2}, {0, 9, 3}}, nullptr));
         }});
    return all;
}

TEST(CConvCoordReportTest, EverySetterReportsOnceOnADifferenceAndNotOnTheSameValue) {
    for (const Setter& s : Setters()) {
        CountingItem item;
        CConvCoord c(nullptr, &item);
        s.set(c);
        EXPECT_EQ(item.changes, 1) << s.name;
        s.set(c);
        EXPECT_EQ(item.changes, 1) << s.name << ", the same again";
    }
}

TEST(CConvCoordReportTest, WithoutAnItemEverySetterWorks) {
    for (const Setter& s : Setters()) {
        CConvCoord c;
        s.set(c);
        CConvCoord copy(c);
        s.set(copy);
    }
    CConvCoord c;
    c.SetImp(3, 9);
    EXPECT_EQ(c.GetImp(3), 9);
}

TEST(CConvCoordReportTest, ConstructionCopyAndAssignmentReportNothing) {
    CountingItem item;
    CLibMap map;
    CConvCoord c(&map, &item);
    EXPECT_EQ(item.changes, 0);
    CConvCoord other;
    for (const Setter& s : Setters()) s.set(other);
    c = other;
    EXPECT_EQ(item.changes, 0);
    CConvCoord copy(c);
    EXPECT_EQ(item.changes, 0);
}

TEST(CConvCoordReportTest, TheMapLibraryReportsNothing) {
    CountingItem item;
    CLibMap map;
    CConvCoord c(&map, &item);
    c.SetImpFlag(true);
    c.SetTpDtBaseGps(CConvCoord::dtLibreria);
    item.changes = 0;
    map.GetDatAt(0, 0, 0)->SetCoeffToStd(1, 2, 3, 0, 0, 0, 0);
    map.AddDat(0, 0);
    map.SetTpDtBaseGps(1);
    map.GetConvDtBaseGps()->SetNome("n");
    EXPECT_EQ(item.changes, 0);
}

TEST(CConvCoordReportTest, ComputingAndMessagesReportNothing) {
    CountingItem item;
    CConvCoord c(nullptr, &item);
    c.GetConvLocal()->SetTpProiezPlaEx(1, 0, 9, 5, 0, 1);
    item.changes = 0;
    Triple t;
    c.GrafGpsToPlanAtt(45, 9, 100, 1, t.a, t.b, t.c);
    c.PlanAttToGrafGps(5, 5e6, 100, 1, t.a, t.b, t.c);
    c.GrafBaseToGrafWgs(45, 9, 100, t.a, t.b, t.c);
    c.GeocBaseToGeocWgs(4e6, 1e6, 4e6, t.a, t.b, t.c);
    c.ShowMessage(false);
    c.SetMotore(nullptr);
    EXPECT_EQ(item.changes, 0);
}

TEST(CConvCoordReportTest, ANanIsAChangeEveryTimeAndMinusZeroOverZeroNone) {
    CountingItem item;
    CConvCoord c(nullptr, &item);
    c.SetImpReal(1, kNan);
    c.SetImpReal(1, kNan);
    EXPECT_EQ(item.changes, 2);
    c.SetImpReal(2, -0.0);
    EXPECT_EQ(item.changes, 2);
    EXPECT_FALSE(std::signbit(c.GetImpReal(2))) << "nor is it stored";
}

}  // namespace
