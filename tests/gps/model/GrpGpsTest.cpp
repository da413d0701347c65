#include "gps/model/CGrpGps.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/coord/CLibMap.h"
#include "platform/entity/CCloudManager.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/model/Layout.h"
#include "tests/host/entity/CloudParts.h"

namespace {

using test::ChangeWatch;

void ExpectNewBase(const CGrpGps& group) {
    for (const double value :
         {group.GetBaseLat(), group.GetBaseLong(), group.GetBaseElev(), group.GetBaseAltAnt(),
          group.GetBaseSpare1(), group.GetBaseSpare2(), group.GetBaseSpare3()})
        EXPECT_EQ(value, GPS_VAL_UNSET);
    EXPECT_EQ(group.GetGrpFactorA(), 1.0);
    EXPECT_EQ(group.GetGrpFactorB(), 1.0);
    EXPECT_EQ(group.GetTipoRilievo(), 0);
    EXPECT_EQ(group.GetTipoRicevitore(), 0);
}

void Fill(CGrpGps& group) {
    group.SetNome("B1");
    group.SetNomeGrp("quarry");
    group.SetLabels("o", "s", "d", "l");
    group.SetBaseLat(45);
    group.SetBaseLong(12);
    group.SetBaseElev(50);
    group.SetBaseAltAnt(1.5);
    group.SetBaseSpare1(1);
    group.SetBaseSpare2(2);
    group.SetBaseSpare3(3);
    group.SetGrpFactorA(0.9996);
    group.SetGrpFactorB(0.9997);
    group.SetTipoRilievo(3);
    group.SetTipoRicevitore(4);
    group.SetCodeElab(3);
    group.SetGrpFlagRis(true);
    group.SetGrpRis32(8);
    group.GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
}

TEST(GrpGps, NewGroupHasTheDefaults) {
    CCloudManager& manager = *CCloudManager::GetInstance();
    manager.SetDevId(41);
    const int calls = manager.GetDevIdCalls();
    CLibMap map;
    CGrpGps group(nullptr, false, &map, 6);
    EXPECT_EQ(manager.GetDevIdCalls(), calls + 1) << "asked once";
    manager.SetDevId(1);

    ExpectNewBase(group);
    EXPECT_EQ(group.GetCloudCreatorDevId(), 41);
    EXPECT_TRUE(group.IsCloudMine(41));
    EXPECT_EQ(group.GetCodeElab(), 0);
    EXPECT_FALSE(group.GetGrpFlagRis());
    EXPECT_EQ(group.GetGrpRis32(), 0u);
    EXPECT_EQ(group.GetTargetDrawing(), 6);
    for (const std::string& text : {group.GetNomeGrp(), group.GetOper(), group.GetStrum(), group.GetData(),
                                    group.GetLocalita(), group.GetNome()})
        EXPECT_EQ(text, "");
    EXPECT_TRUE(CGrpGpsLayout::IsSpareCursorNull(group));
    EXPECT_TRUE(CGrpGpsLayout::Points(group).empty());
    EXPECT_TRUE(group.GetPunSetSpcEmpty());
    EXPECT_EQ(group.GetPunSetNorBegin(), group.GetPunSetNorEnd());
    EXPECT_EQ(group.GetConvCoord()->GetLibMap(), &map);
    EXPECT_FALSE(group.GetConvCoord()->IsConvCoordReady());
    EXPECT_EQ(group.GetUserType(), 0) << "a group has no type of its own";
}

TEST(GrpGps, ConstructionReportsNothing) {
    ChangeWatch watch;
    test::Table table(CCloudTable::tabGpsBase);
    CGrpGps mine(&table, false, nullptr, 0);
    const CGrpGps theirs(&table, true, nullptr, 0);
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    EXPECT_EQ(table.GetAdded(), test::Items{&mine});
    EXPECT_EQ(theirs.GetTable(), &table);
}

TEST(GrpGps, ResetPutsBaseFactorsAndTypesBackAndNothingElse) {
    CGrpGps group(nullptr, false, nullptr, 6);
    CPunGps point(nullptr, false, &group);
    Fill(group);
    group.SetCloudCreatorDevId(9);
    group.InsInPunSetNor(&point);
    const std::uint32_t mask = group.GetCloudFlag();
    ChangeWatch watch;
    group.AnnullaLeVarGrp();
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    EXPECT_EQ(group.GetCloudFlag(), mask);
    ExpectNewBase(group);
    EXPECT_EQ(group.GetNome(), "B1");
    EXPECT_EQ(group.GetNomeGrp(), "quarry");
    EXPECT_EQ(group.GetOper(), "o");
    EXPECT_EQ(group.GetLocalita(), "l");
    EXPECT_EQ(group.GetCodeElab(), 3);
    EXPECT_TRUE(group.GetGrpFlagRis());
    EXPECT_EQ(group.GetGrpRis32(), 8u);
    EXPECT_TRUE(group.GetConvCoord()->IsConvCoordReady());
    EXPECT_NE(group.GetPunSetNorBegin(), group.GetPunSetNorEnd());
    EXPECT_EQ(group.GetTargetDrawing(), 6);
    EXPECT_EQ(group.GetCloudCreatorDevId(), 9);
}

TEST(GrpGps, FullResetClearsTheEntityTooAndReportsNothing) {
    CGrpGps group(nullptr, false, nullptr, 0);
    Fill(group);
    group.DoSetCoord(1, 2, 3);
    ChangeWatch watch;
    group.AnnullaTutteLeVar();
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    ExpectNewBase(group);
    EXPECT_EQ(group.GetNome(), "");
    EXPECT_EQ(group.GetCoordX(), GPS_VAL_UNSET);
    EXPECT_EQ(group.GetNomeGrp(), "quarry");
    EXPECT_EQ(group.GetCodeElab(), 3);
}

// --- name and labels ---------------------------------------------------------------------------------------

TEST(GrpGps, GroupNameComparesAndReports) {
    CGrpGps group(nullptr, false, nullptr, 0);
    ChangeWatch watch;
    group.SetNomeGrp("");
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    group.SetNomeGrp("quarry");
    EXPECT_EQ(watch.Take(), (ChangeWatch::Calls{{&group, 0x10}}));
    group.SetNomeGrp("quarry");
    group.SetNomeGrp(group.GetNomeGrp());
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    EXPECT_EQ(group.GetNomeGrp(), "quarry");
    EXPECT_EQ(group.GetNome(), "") << "not the entity's name";
}

TEST(GrpGps, LabelsAreStoredWithoutAReport) {
    CGrpGps group(nullptr, false, nullptr, 0);
    ChangeWatch watch;
    group.SetOper("Rossi");
    group.SetStrum("receiver");
    group.SetData("2024-06-24");
    group.SetLocalita("Udine");
    EXPECT_EQ(group.GetOper(), "Rossi");
    EXPECT_EQ(group.GetStrum(), "receiver");
    EXPECT_EQ(group.GetData(), "2024-06-24");
    EXPECT_EQ(group.GetLocalita(), "Udine");
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    EXPECT_EQ(group.GetCloudFlag(), 0u);
}

TEST(GrpGps, FourLabelsGoInAndFiveTextsComeOut) {
    CGrpGps group(nullptr, false, nullptr, 0);
    group.SetNomeGrp("quarry");
    ChangeWatch watch;
    group.SetLabels("o", "s", "d", "l");
    std::string nome, oper, strum, data, localita;
    group.GetLabels(nome, oper, strum, data, localita);
    EXPECT_EQ(nome, "quarry");
    EXPECT_EQ(oper, "o");
    EXPECT_EQ(strum, "s");
    EXPECT_EQ(data, "d");
    EXPECT_EQ(localita, "l");
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
}

TEST(GrpGps, LabelsMayBeGivenInAnotherOrderOfThemselves) {
    CGrpGps group(nullptr, false, nullptr, 0);
    group.SetLabels("o", "s", "d", "l");
    group.SetLabels(group.GetLocalita(), group.GetData(), group.GetStrum(), group.GetOper());
    EXPECT_EQ(group.GetOper(), "l");
    EXPECT_EQ(group.GetStrum(), "d");
    EXPECT_EQ(group.GetData(), "s");
    EXPECT_EQ(group.GetLocalita(), "o");
}

TEST(GrpGps, EqualityIsThatOfTheGroupNames) {
    CGrpGps a(nullptr, false, nullptr, 0), b(nullptr, false, nullptr, 0);
    EXPECT_TRUE(a == b);
    a.SetNomeGrp("quarry");
    EXPECT_FALSE(a == b);
    b.SetNomeGrp("quarry");
    b.SetNome("another entity");
    EXPECT_TRUE(a == b);
    b.SetNomeGrp("Quarry");
    EXPECT_FALSE(a == b);
}

// --- values kept without a report --------------------------------------------------------------------------

TEST(GrpGps, KeptValuesAreStoredWithoutAReport) {
    CGrpGps group(nullptr, false, nullptr, 0);
    ChangeWatch watch;
    group.SetGrpFlagRis(true);
    group.SetGrpFactorA(2);
    group.SetGrpFactorB(3);
    group.SetBaseSpare1(4);
    group.SetBaseSpare2(5);
    group.SetBaseSpare3(6);
    group.SetGrpRis32(7);
    group.SetCloudCreatorDevId(8);
    EXPECT_TRUE(group.GetGrpFlagRis());
    EXPECT_EQ(group.GetGrpFactorA(), 2);
    EXPECT_EQ(group.GetGrpFactorB(), 3);
    EXPECT_EQ(group.GetBaseSpare1(), 4);
    EXPECT_EQ(group.GetBaseSpare2(), 5);
    EXPECT_EQ(group.GetBaseSpare3(), 6);
    EXPECT_EQ(group.GetGrpRis32(), 7u);
    EXPECT_EQ(group.GetCloudCreatorDevId(), 8);
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
}

// --- conversion --------------------------------------------------------------------------------------------

TEST(GrpGps, ConversionIsValidWhenReadyAndBitZeroIsSet) {
    struct Row {
        bool ready;
        short code;
        bool valid;
    };
    const Row rows[] = {{true, 0, false},      {true, 1, true},    {true, 2, false},  {true, 3, true},
                        {true, -1, true},      {true, -2, false},  {false, 1, false}, {false, 3, false},
                        {true, -32768, false}, {true, 32767, true}};
    for (const Row& row : rows) {
        CGrpGps group(nullptr, false, nullptr, 0);
        group.GetConvCoord()->SetImp(CConvCoord::impPronta, row.ready ? 1 : 0);
        group.SetCodeElab(row.code);
        EXPECT_EQ(group.IsCdElabValid(), row.valid) << row.ready << ' ' << row.code;
    }
}

TEST(GrpGps, ChangeOfTheConversionIsAlwaysReported) {
    CGrpGps group(nullptr, false, nullptr, 0);
    ChangeWatch watch;
    CCloudItem& item = group;
    item.ConvCoordChanged();
    item.ConvCoordChanged();
    EXPECT_EQ(watch.Take(), (ChangeWatch::Calls{{&group, 0x1000}, {&group, 0x1000}}));
}

TEST(GrpGps, ConversionReportsItsChangesToTheGroup) {
    CGrpGps group(nullptr, false, nullptr, 0);
    ChangeWatch watch;
    CConvCoord& conversion = *group.GetConvCoord();
    conversion.SetImp(3, 5);
    EXPECT_EQ(watch.Take(), (ChangeWatch::Calls{{&group, 0x1000}}));
    conversion.SetImp(3, 5);
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{}) << "no difference";
    conversion.GetConvDtBaseGps()->SetNome("datum");
    EXPECT_EQ(watch.Take(), (ChangeWatch::Calls{{&group, 0x1000}})) << "a change of a part";
    EXPECT_EQ(group.GetCloudFlag(), 0x1000u);
}

}  // namespace
