// What a commit cannot carry.
#include <gtest/gtest.h>

#include "host/project/HeldBack.h"
#include "platform/coord/CLibMap.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpsproject::FindHeld;
using gpsproject::Holding;
using gpsproject::WhyNotCarried;
using test::Project;

TEST(WhyNotCarried, SaysWhatNoRecordCanCarry) {
    EXPECT_EQ(WhyNotCarried("a;b"), "holds a ';'");
    EXPECT_EQ(WhyNotCarried("a\nb"), "holds a line break");
    EXPECT_EQ(WhyNotCarried("a\r"), "holds a line break");
    EXPECT_EQ(WhyNotCarried("\r\n"), "holds a line break");
    EXPECT_EQ(WhyNotCarried(std::string_view("a\0b", 3)), "holds a zero byte");
    EXPECT_EQ(WhyNotCarried("caf\xE9"), "is not UTF-8");
    EXPECT_EQ(WhyNotCarried("\xC3"), "is not UTF-8") << "a character that is cut";
    EXPECT_EQ(WhyNotCarried("\xC0\xAF"), "is not UTF-8") << "longer than it has to be";
    EXPECT_EQ(WhyNotCarried("\xED\xA0\x80"), "is not UTF-8") << "half a pair";
}

TEST(WhyNotCarried, EverythingElseIsCarried) {
    for (const char* text : {"", " ", "P 1, \"x\" | \t", "caf\xC3\xA9", "\xE6\xB8\xAC\xE9\x87\x8F",
                             "\xF0\x9F\x93\x8D", "\x7F\x01"})
        EXPECT_EQ(WhyNotCarried(text), "") << text;
    EXPECT_EQ(WhyNotCarried(std::string(100'000, 'x')), "");
}

/// A linked book in memory, everything new; `Settle` gives everything its id.
class Held : public testing::Test {
protected:
    Held() { project_.GetCloud().Link(test::kLink); }

    /// "A: why", "A/A1: why"
    std::vector<std::string> Texts() {
        std::vector<std::string> texts;
        for (const auto& held : FindHeld(book_, project_.GetCloud().GetTables())) {
            EXPECT_EQ(held.isGroup, held.p < 0);
            EXPECT_EQ(held.item, held.isGroup ? CGrpGps::CloudItemOf(book_.GetGrpAt(held.g))
                                              : CPunGps::CloudItemOf(book_.GetPunAt(held.g, held.p)));
            texts.push_back(std::to_string(held.g) + (held.isGroup ? "" : "/" + std::to_string(held.p)) +
                            ": " + held.why);
        }
        return texts;
    }
    using Texts_ = std::vector<std::string>;

    static CLibGps& Filled(Project& project) {
        test::FillSmall(project);
        return project.GetBook();
    }

    Project project_;
    CLibGps& book_ = Filled(project_);
    CGrpGps& group_ = *book_.AddGrp(false);
};

TEST_F(Held, NothingOfAnOrdinaryBookIsHeld) { EXPECT_EQ(Texts(), Texts_{}); }

TEST_F(Held, EveryTextOfANewGroupHoldsIt) {
    group_.SetNome("a;");
    EXPECT_EQ(Texts(), Texts_{"2: the name holds a ';'"});
    group_.SetNome("");
    group_.SetSecScri("a\n");
    EXPECT_EQ(Texts(), Texts_{"2: the code text holds a line break"});
    group_.SetSecScri("");
    group_.SetNomeGrp(std::string("a\0", 2));
    EXPECT_EQ(Texts(), Texts_{"2: the group name holds a zero byte"});
    group_.SetNomeGrp("C");
    group_.GetConvCoord()->GetConvDtBaseGps()->SetNome("\xFF");
    EXPECT_EQ(Texts(), Texts_{"2: the name of the conversion's datum is not UTF-8"});
    group_.GetConvCoord()->GetConvDtBaseGps()->SetNome("");
    EXPECT_EQ(Texts(), Texts_{});
}

TEST_F(Held, TextsThatNoRecordHasHoldNothing) {
    group_.SetLabels("a;", "b\n", "c;", "d;");
    group_.SetNote("e;\r\n");
    book_.AddPun(2, false)->SetNote("f;");
    EXPECT_EQ(Texts(), Texts_{});
}

TEST_F(Held, NameOfTheSelectedDatumHoldsTheGroupsThatSelectIt) {
    CDatumConv& datum = *project_.GetMap().AddDat(4, 5);
    group_.GetConvCoord()->SetImp(CConvCoord::impDatSel1, 4);
    group_.GetConvCoord()->SetImp(CConvCoord::impDatSel2, 5);
    group_.GetConvCoord()->SetImp(CConvCoord::impDatIndice, 0);
    datum.SetNome("a;b");
    EXPECT_EQ(Texts(), Texts_{"2: the name of the project's datum holds a ';'"});
    datum.SetNome("ab");
    EXPECT_EQ(Texts(), Texts_{});
}

TEST_F(Held, NameOfTheMapLibraryHoldsEveryNewGroupAndItsPoints) {
    project_.GetMap().GetConvDtBaseGps()->SetNome("a\r");
    const std::string why = "the name of the map library's datum holds a line break";
    EXPECT_EQ(Texts(), (Texts_{"0: " + why, "0/0: its group is held back", "0/1: its group is held back",
                               "1: " + why, "1/0: its group is held back", "2: " + why}));
}

TEST_F(Held, EveryTextOfANewPointHoldsIt) {
    CPunGps& point = *book_.GetPunAt(0, 1);
    point.SetNome("a;");
    EXPECT_EQ(Texts(), Texts_{"0/1: the name holds a ';'"});
    point.SetNome("A2");
    point.SetSecScri("\x80");
    EXPECT_EQ(Texts(), Texts_{"0/1: the code text is not UTF-8"});
}

TEST_F(Held, NewGroupTakesItsNewPointsWithIt) {
    book_.GetGrpAt(0)->SetNomeGrp("A;");
    book_.GetPunAt(0, 1)->SetNome("a;");
    EXPECT_EQ(Texts(), (Texts_{"0: the group name holds a ';'", "0/0: its group is held back",
                               "0/1: the name holds a ';'"}));
}

TEST_F(Held, KnownGroupLeavesItsNewPointsAlone) {
    test::Settle(project_);
    book_.GetGrpAt(0)->SetNomeGrp("A;");
    book_.AddPun(0, false)->SetNome("new");
    EXPECT_EQ(Texts(), Texts_{"0: the group name holds a ';'"});
}

TEST_F(Held, OfAKnownItemOnlyWhatIsToBeSentCounts) {
    test::Settle(project_);
    CPunGps& point = *book_.GetPunAt(0, 0);
    // As it may have come from elsewhere: it is not to be sent.
    point.SetCloudNotify(false);
    point.SetNome("a;");
    point.SetCloudNotify(true);
    EXPECT_EQ(Texts(), Texts_{});
    point.SetQua(4);
    EXPECT_EQ(Texts(), Texts_{}) << "the quality can be sent";
    point.SetNome("b;");
    EXPECT_EQ(Texts(), Texts_{"0/0: the name holds a ';'"});
    point.SetNome("b");
    EXPECT_EQ(Texts(), Texts_{});
}

TEST_F(Held, DatumOfAKnownGroupCountsOnlyWithAChangedConversion) {
    test::Settle(project_);
    project_.GetMap().GetConvDtBaseGps()->SetNome("a;");
    EXPECT_EQ(Texts(), Texts_{});
    book_.GetGrpAt(1)->GetConvCoord()->SetImp(1, 9);
    EXPECT_EQ(Texts(), Texts_{"1: the name of the map library's datum holds a ';'"});
}

void Define(CGrpGps& group, const std::string& definition) {
    std::string why;
    EXPECT_TRUE(group.GetConvCoord()->GetConvLocal()->SetDefinizione(definition, why)) << why;
}

const std::string kByText =
    "the conversion's projection is defined by a text, of which a record has no place; give it by its EPSG "
    "code";

TEST_F(Held, ProjectionThatIsDefinedByATextHoldsANewGroupAndItsPoints) {
    Define(*book_.GetGrpAt(1), "+proj=tmerc +lat_0=0 +lon_0=15 +k=0.9996 +x_0=500000 +ellps=GRS80");
    EXPECT_EQ(Texts(), (Texts_{"1: " + kByText, "1/0: its group is held back"}));
    Define(*book_.GetGrpAt(1), "EPSG:32633");
    EXPECT_EQ(Texts(), Texts_{}) << "a code has its place";
}

TEST_F(Held, ProjectionThatIsDefinedByATextHoldsAKnownGroupWhenTheConversionChanged) {
    test::Settle(project_);
    CGrpGps& group = *book_.GetGrpAt(1);
    group.SetCloudNotify(false);
    Define(group, "+proj=tmerc +lat_0=0 +lon_0=15 +k=0.9996 +x_0=500000 +ellps=GRS80");
    group.SetCloudNotify(true);
    ASSERT_EQ(group.GetCloudFlag(), 0U);
    EXPECT_EQ(Texts(), Texts_{});
    group.SetNomeGrp("B*");
    EXPECT_EQ(Texts(), Texts_{}) << "the name can be sent";
    group.GetConvCoord()->SetImp(1, 9);
    EXPECT_EQ(Texts(), Texts_{"1: " + kByText});
}

TEST_F(Held, KnownGroupWhoseConversionIsHeldHoldsThePositionsInIt) {
    test::Settle(project_);
    CGrpGps& group = *book_.GetGrpAt(1);
    Define(group, "+proj=tmerc +lat_0=0 +lon_0=15 +k=0.9996 +x_0=500000 +ellps=GRS80");
    book_.GetPunAt(1, 0)->SetQua(4);
    EXPECT_EQ(Texts(), Texts_{"1: " + kByText}) << "a quality is the same in any plane system";
    book_.GetPunAt(1, 0)->SetCoord(1, 2, 3);
    book_.GetPunAt(0, 0)->SetCoord(1, 2, 3);
    book_.AddPun(1, false)->SetNome("B2");
    const std::string why = "its group's conversion is held back, and its position belongs to that";
    EXPECT_EQ(Texts(), (Texts_{"1: " + kByText, "1/0: " + why, "1/1: " + why}));
    Define(group, "EPSG:32633");
    EXPECT_EQ(Texts(), Texts_{});
    group.SetNomeGrp("B;");
    EXPECT_EQ(Texts(), (Texts_{"1: the group name holds a ';'", "1/0: " + why, "1/1: " + why}))
        << "with the group its conversion waits";
}

TEST_F(Held, HoldingKeepsThemOutAsLongAsItLives) {
    book_.GetPunAt(0, 0)->SetNome("a;");
    auto& tables = project_.GetCloud().GetTables();
    const auto added = tables.points.GetAdded();
    {
        const Holding holding(tables, FindHeld(book_, tables));
        EXPECT_EQ(tables.points.GetAdded(), std::vector<CCloudItem*>(added.begin() + 1, added.end()));
    }
    EXPECT_EQ(tables.points.GetAdded(), added);
}

TEST_F(Held, HoldingKeepsChangesOutAndPutsThemBack) {
    test::Settle(project_);
    book_.GetGrpAt(0)->SetNomeGrp("a;");
    book_.GetGrpAt(1)->SetNomeGrp("b");
    auto& tables = project_.GetCloud().GetTables();
    const auto changed = tables.base.GetChanged();
    ASSERT_EQ(changed.size(), 2U);
    {
        const Holding holding(tables, FindHeld(book_, tables));
        EXPECT_EQ(tables.base.GetChanged(), std::set<CCloudItem*>{CGrpGps::CloudItemOf(book_.GetGrpAt(1))});
    }
    EXPECT_EQ(tables.base.GetChanged(), changed);
}

}  // namespace
