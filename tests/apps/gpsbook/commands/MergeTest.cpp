// gpsbook merge and gpsbook import-book: groups and points of other books.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <thread>

#include "tests/apps/gpsbook/commands/Journals.h"
#include "tests/apps/gpsbook/commands/Running.h"
#include "tests/apps/gpsbook/commands/SharedSite.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

/// A copy of anna's shared book.
void Copy(const SharedSite& site, const std::string& to) { site.Put(to, site.Bytes()); }

// --- merge -------------------------------------------------------------------------------------------------

TEST(Merge, FillsGapsAndKeepsWhatIsThere) {
    const SharedSite site;
    site.Share();
    // Place, operator and notes are in no record: only copies of the book carry them.
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay", "place=Muggia", "operator=Verdi"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay", "place=Trieste"}).exitCode, 0);
    const json done = JsonOf(site.As("bert", {"merge", "bert.gpsbook", "site.gpsbook", "--json"}));
    EXPECT_EQ(done["book"], "bert.gpsbook");
    EXPECT_EQ(done["other"], "site.gpsbook");
    EXPECT_EQ(done["groups"], 0);
    EXPECT_EQ(done["points"], 0);
    EXPECT_TRUE(done["first"].is_null());
    EXPECT_EQ(done["filled"], json({{"groups", 1}, {"points", 4}}))
        << "points got their validity, which no record carries either";
    EXPECT_EQ(done["unknown_to_project"], 0);
    EXPECT_EQ(done["not_taken"], 0);
    EXPECT_EQ(site.FieldOf("bert", "Quay", "place"), "Trieste");
    EXPECT_EQ(site.FieldOf("bert", "Quay", "operator"), "Verdi");
    EXPECT_EQ(site.Status("bert")["changed"], json::array()) << "nothing of it is to be sent";
}

TEST(Merge, AddsWhatOnlyTheCopyHasWithItsIds) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "name=Mole"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Mole", "name=M1"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    site.Sync("anna");
    const Outcome outcome = site.As("bert", {"merge", "bert.gpsbook", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "bert.gpsbook: added 1 group and 2 points, filled gaps of 1 group and 4 points\n");
    EXPECT_EQ(outcome.err, "");
    site.ExpectSame();
    EXPECT_EQ(site.Status("bert")["new"], json::array());
    const json bert = site.Sync("bert");
    EXPECT_EQ(bert["sent"], json({{"new", 0}, {"changed", 0}, {"deleted", 0}}));
    EXPECT_EQ(site.Sync("anna")["taken"]["points"], 0);
    site.ExpectSame();
}

TEST(Merge, WhatOthersDeletedMeanwhileGoesAgain) {
    const SharedSite site;
    site.Share();
    Copy(site, "old.gpsbook");
    ASSERT_EQ(site.As("anna", {"delete", "site.gpsbook", "Quay/P2", "Pier"}).exitCode, 0);
    site.Sync("anna");
    site.Sync("bert");
    ASSERT_EQ(site.As("bert", {"merge", "bert.gpsbook", "old.gpsbook"}).exitCode, 0);
    EXPECT_EQ(site.Table("bert").size(), 7U) << "the copy still had them";
    EXPECT_EQ(site.Sync("bert")["taken"]["deleted"], 2);
    site.ExpectSame();
}

// A record carries covariances up to 1 square metre: what came back as a reply would cut those here.
TEST(Merge, MeasurementsStayWhatTheyAreWhenTheCopyAddsNothing) {
    const SharedSite site([](gpsproject::Project& project) {
        project.GetBook().GetPunAt(0, 0)->SetPosCov_xx(2.5F);
        project.GetBook().GetGrpAt(0)->SetTipoRilievo(7);
    });
    site.MakeBertsBook();
    ASSERT_EQ(site.As("bert", FirstSync("bert.gpsbook")).exitCode, 0);
    site.Put("old.gpsbook", site.Text("bert.gpsbook"));  // knows nothing yet
    ASSERT_EQ(site.As("anna", FirstSync("site.gpsbook")).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"merge", "site.gpsbook", "old.gpsbook"}).exitCode, 0);
    site.Sync("anna");
    const auto project = gpsproject::Project::Open(site.Book(), gpsproject::Project::Mode::read);
    EXPECT_EQ(project->GetBook().GetPunAt(0, 0)->GetPosCov_xx(), 2.5F);
    EXPECT_EQ(project->GetBook().GetGrpAt(0)->GetTipoRilievo(), 7);
}

// What the copy adds is asked for once more, and with it comes what this book has sent itself.
TEST(Merge, MeasurementsStayWhatTheyAreWhenTheCopyAddsSomething) {
    const SharedSite site;
    site.Share();
    Copy(site, "old.gpsbook");
    {
        const auto project = gpsproject::Project::Open(site.Book(), gpsproject::Project::Mode::write);
        project->GetBook().GetPunAt(0, 0)->SetPosCov_xx(2.5F);
        project->GetBook().GetGrpAt(0)->SetTipoRilievo(7);
        project->Save();
    }
    ASSERT_EQ(site.As("anna", {"delete", "site.gpsbook", "Quay/P4"}).exitCode, 0);
    EXPECT_EQ(site.Sync("anna")["sent"], json({{"new", 0}, {"changed", 2}, {"deleted", 1}}));
    const json merged = JsonOf(site.As("anna", {"merge", "site.gpsbook", "old.gpsbook", "--json"}));
    ASSERT_EQ(merged["points"], 1);
    EXPECT_EQ(site.Sync("anna")["taken"], json({{"groups", 0}, {"points", 0}, {"deleted", 1}}));
    const auto here = gpsproject::Project::Open(site.Book(), gpsproject::Project::Mode::read);
    EXPECT_EQ(here->GetBook().GetPunAt(0, 0)->GetPosCov_xx(), 2.5F);
    EXPECT_EQ(here->GetBook().GetGrpAt(0)->GetTipoRilievo(), 7);
    site.Sync("bert");
    const auto there = gpsproject::Project::Open(site.Path("bert.gpsbook"), gpsproject::Project::Mode::read);
    EXPECT_EQ(there->GetBook().GetPunAt(0, 0)->GetPosCov_xx(), 1.0F) << "as far as a record can tell";
    EXPECT_EQ(there->GetBook().GetGrpAt(0)->GetTipoRilievo(), 1);
}

TEST(Merge, ItemsThatTheProjectDoesNotKnowAreTold) {
    const SharedSite site;
    site.Share();
    Copy(site, "stick.gpsbook");
    ASSERT_EQ(site.As("anna", {"add", "stick.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    const Outcome outcome = site.As("anna", {"merge", "site.gpsbook", "stick.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("stick.gpsbook: 1 item that the project does not know became new ones of "
                               "site.gpsbook; when stick.gpsbook is merged once more, or is synced itself, "
                               "they are there once more"),
              std::string::npos)
        << outcome;
    EXPECT_EQ(site.Sync("anna")["sent"]["new"], 1);
    site.Sync("bert");
    site.ExpectSame();
}

// Intended: what has no id in the project cannot be known again. The note says so.
TEST(Merge, ItemsThatTheProjectDoesNotKnowComeWithEachMerge) {
    const SharedSite site;
    site.Share();
    Copy(site, "stick.gpsbook");
    ASSERT_EQ(site.As("anna", {"add", "stick.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(site.As("anna", {"merge", "site.gpsbook", "stick.gpsbook"}).exitCode, 0);
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4 P5 P5");
}

TEST(Merge, SecondOneFillsNothingMore) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay", "place=Muggia"}).exitCode, 0);
    EXPECT_EQ(JsonOf(site.As("bert", {"merge", "bert.gpsbook", "site.gpsbook", "--json"}))["filled"],
              json({{"groups", 1}, {"points", 4}}));
    EXPECT_EQ(JsonOf(site.As("bert", {"merge", "bert.gpsbook", "site.gpsbook", "--json"}))["filled"],
              json({{"groups", 0}, {"points", 0}}));
}

// Each by itself. The GIS handle fills the descriptor.
TEST(Merge, EveryFieldThatIsFilledIsCounted) {
    using Change = std::function<void(CLibGps&)>;
    const std::vector<Change> groups{[](CLibGps& b) { b.GetGrpAt(1)->SetTerScri("third"); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetNote("note"); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetNomiFoto_Raw("a.jpg"); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetAttribDis("red"); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetGisHandle(7); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetOper("Verdi"); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetStrum("GX"); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetData("2024-05-02"); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetLocalita("Muggia"); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetGrpFlagRis(true); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetGrpFactorA(1.5); },
                                     [](CLibGps& b) { b.GetGrpAt(1)->SetGrpFactorB(1.5); }};
    const std::vector<Change> points{[](CLibGps& b) { b.GetPunAt(1, 0)->SetTerScri("third"); },
                                     [](CLibGps& b) { b.GetPunAt(1, 0)->SetNote("note"); },
                                     [](CLibGps& b) { b.GetPunAt(1, 0)->SetNomiFoto_Raw("a.jpg"); },
                                     [](CLibGps& b) { b.GetPunAt(1, 0)->SetAttribDis("red"); },
                                     [](CLibGps& b) { b.GetPunAt(1, 0)->SetVldtEgn(5); },
                                     [](CLibGps& b) { b.GetPunAt(1, 0)->SetGisHandle(7); },
                                     [](CLibGps& b) { b.GetPunAt(1, 0)->SetIsPrimaryPtDup(true); },
                                     [](CLibGps& b) { b.GetPunAt(1, 0)->SetIsSecondaryPtDup(true); }};
    const SharedSite site;
    site.Share();
    const std::string before = site.Bytes();
    const auto filled = [&](const Change& change) {
        site.Put("stick.gpsbook", before);
        {
            const auto project =
                gpsproject::Project::Open(site.Path("stick.gpsbook"), gpsproject::Project::Mode::write);
            change(project->GetBook());
            project->GetBook().SetModifiedFlag(true);
            project->Save();
        }
        site.Put("site.gpsbook", before);
        return JsonOf(site.As("anna", {"merge", "site.gpsbook", "stick.gpsbook", "--json"}))["filled"];
    };
    for (std::size_t i = 0; i < groups.size(); ++i)
        EXPECT_EQ(filled(groups[i]), json({{"groups", 1}, {"points", 0}})) << "group field " << i;
    for (std::size_t i = 0; i < points.size(); ++i)
        EXPECT_EQ(filled(points[i]), json({{"groups", 0}, {"points", 1}})) << "point field " << i;
    EXPECT_EQ(filled([](CLibGps&) {}), json({{"groups", 0}, {"points", 0}}));
}

TEST(Merge, DamagedBookIsNeitherFilledNorTakenOver) {
    const SharedSite site;
    site.Share();
    const std::string whole = site.Bytes();
    std::string damaged = whole;
    damaged[damaged.size() / 2] = static_cast<char>(damaged[damaged.size() / 2] ^ 0x40);
    site.Put("stick.gpsbook", damaged);
    site.ExpectRefused({"merge", "site.gpsbook", "stick.gpsbook"}, 4,
                       "stick.gpsbook: damaged; nothing is taken over; ");
    site.Put("site.gpsbook", damaged);
    site.Put("stick.gpsbook", whole);
    site.ExpectRefused({"merge", "site.gpsbook", "stick.gpsbook"}, 4,
                       "site.gpsbook: damaged, and not written over");
}

TEST(Merge, CopyWithADamagedJournalIsNotTakenOver) {
    const SharedSite site;
    site.Share();
    Copy(site, "stick.gpsbook");
    Session(site.Path("stick.gpsbook"), {Coded(0, 1, "KERB"), Coded(0, 2, "PILE")});
    std::string journal = site.Text("stick.gpsbook.journal");
    journal[FramesOf(journal).at(0) + 60] ^= 0x10;
    site.Put("stick.gpsbook.journal", journal);
    site.ExpectRefused({"merge", "site.gpsbook", "stick.gpsbook"}, 4,
                       "stick.gpsbook: its journal is damaged or not its own; nothing is taken over");
}

TEST(Merge, BookThatSomebodyWritesIsLocked) {
    const SharedSite site;
    site.Share();
    Running writer(site, {"import", "bert.gpsbook", "-", "--live", "--group", "walk"}, true);
    for (int i = 0; i < 400 && !std::filesystem::exists(site.Path("bert.gpsbook.lock")); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    const Outcome outcome = site.As("bert", {"merge", "bert.gpsbook", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_EQ(outcome.out, "");
    writer.CloseInput();
    writer.End();
}

TEST(Merge, ChangesThatTheCopyHasNotSentAreTold) {
    const SharedSite site;
    site.Share();
    Copy(site, "stick.gpsbook");
    ASSERT_EQ(site.As("anna", {"set", "stick.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"delete", "stick.gpsbook", "Quay/P4"}).exitCode, 0);
    const Outcome outcome = site.As("anna", {"merge", "site.gpsbook", "stick.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("stick.gpsbook: 2 items changed or deleted there and not sent stay"),
              std::string::npos)
        << outcome;
    EXPECT_EQ(site.FieldOf("anna", "Quay/P1", "code"), "");
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4");
}

TEST(Merge, DeletionThatTheProjectDoesNotKnowIsNotUndone) {
    const SharedSite site;
    site.Share();
    Copy(site, "stick.gpsbook");
    ASSERT_EQ(site.As("anna", {"delete", "site.gpsbook", "Pier", "Quay/P4"}).exitCode, 0);
    site.ExpectRefused(
        {"merge", "site.gpsbook", "stick.gpsbook"}, 3,
        "site.gpsbook: 4 items deleted here, which the project does not know yet, would come back");
    site.Sync("anna");
    ASSERT_EQ(site.As("anna", {"merge", "site.gpsbook", "stick.gpsbook"}).exitCode, 0);
    site.Sync("anna");
    EXPECT_EQ(site.Groups(), "Quay");
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3") << "the project knows that they are deleted";
}

TEST(Merge, OnlyCopiesOfTheSameSharedBook) {
    const SharedSite site;
    site.MakeBertsBook();
    site.ExpectRefused({"merge", "site.gpsbook", "bert.gpsbook"}, 3,
                       "site.gpsbook: is not shared, and merged are copies of a shared book; gpsbook "
                       "import-book takes the groups of bert.gpsbook");
    ASSERT_EQ(site.As("anna", FirstSync("site.gpsbook")).exitCode, 0);
    site.ExpectRefused({"merge", "site.gpsbook", "bert.gpsbook"}, 3, "bert.gpsbook: is not shared");
    ASSERT_EQ(
        site.As("bert", {"sync", "bert.gpsbook", "--store", "shared.sqlite", "--project", "Quarry"}).exitCode,
        0);
    site.ExpectRefused({"merge", "site.gpsbook", "bert.gpsbook"}, 3,
                       "belongs to the project 'Quarry' of shared.sqlite, and site.gpsbook to 'Dam'");
    site.ExpectRefused({"merge", "site.gpsbook", "site.gpsbook"}, 2, "is the book itself");
    site.ExpectRefused({"merge", "site.gpsbook", "none.gpsbook"}, 5, "none.gpsbook");
    site.ExpectRefused({"merge", "site.gpsbook"}, 2, "OTHER");
}

TEST(Merge, NotWhileACommitIsUnanswered) {
    const SharedSite site([](gpsproject::Project&) {});
    site.Share();
    Copy(site, "stick.gpsbook");
    ASSERT_EQ(site.As("anna", {"set", "stick.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    {
        const auto project =
            gpsproject::Project::Open(site.Path("stick.gpsbook"), gpsproject::Project::Mode::write);
        ASSERT_TRUE(project->GetCloud().BeginCommit(std::string(32, 'a')));
        project->GetBook().SetModifiedFlag(true);
        project->Save();
    }
    site.ExpectRefused({"merge", "site.gpsbook", "stick.gpsbook"}, 3, "stick.gpsbook: has sent what");
    const Outcome other = site.As("anna", {"merge", "stick.gpsbook", "site.gpsbook"});
    EXPECT_EQ(other.exitCode, 3) << other;
    const json status = JsonOf(site.Run({"cloud", "status", "stick.gpsbook", "--json"}));
    EXPECT_EQ(status["commit"], json({{"id", std::string(32, 'a')}, {"revision", 1}}));
    const json sent = JsonOf(site.As("anna", {"sync", "stick.gpsbook", "--json"}));
    EXPECT_EQ(sent["repeated"], true);
    EXPECT_EQ(sent["sent"]["changed"], 1);
    EXPECT_EQ(site.As("anna", {"merge", "site.gpsbook", "stick.gpsbook"}).exitCode, 0);
}

// --- import-book -------------------------------------------------------------------------------------------

TEST(ImportBook, AppendsGroupsWithTheirPoints) {
    const Site site;
    const Site other;
    site.Put("other.gpsbook", other.Bytes());
    const Outcome outcome = site.Run({"import-book", "site.gpsbook", "other.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "site.gpsbook: 2 groups with 6 points added, from #2 on\n");
    EXPECT_EQ(site.Groups(), "Quay Pier Quay Pier");
    EXPECT_EQ(site.Field("#2/P3", "east"), site.Field("#0/P3", "east"));
    EXPECT_EQ(site.Field("#2", "crs"), "EPSG:32633");
    EXPECT_EQ(other.Bytes(), site.Text("other.gpsbook")) << "the other book stays as it is";
}

TEST(ImportBook, SettingsAndOptionsStay) {
    const Site site;
    ASSERT_EQ(site.Run({"new", "other.gpsbook", "--crs", "EPSG:32632", "--name", "Quarry"}).exitCode, 0);
    ASSERT_EQ(site.Run({"add", "other.gpsbook", "name=Mole"}).exitCode, 0);
    const json before = JsonOf(site.Run({"info", "site.gpsbook", "--json"}))["settings"];
    const json done = JsonOf(site.Run({"import-book", "site.gpsbook", "other.gpsbook", "--json"}));
    EXPECT_EQ(done["first"], 2);
    EXPECT_EQ(done["groups"], 1);
    EXPECT_EQ(done["points"], 0);
    EXPECT_EQ(done["other_datums"], 0);
    EXPECT_EQ(done["saved"], true);
    EXPECT_EQ(JsonOf(site.Run({"info", "site.gpsbook", "--json"}))["settings"], before);
}

TEST(ImportBook, EmptyBookAddsNothing) {
    const Site site;
    ASSERT_EQ(site.Run({"new", "other.gpsbook", "--crs", "EPSG:32632"}).exitCode, 0);
    const std::string bytes = site.Bytes();
    const Outcome outcome = site.Run({"import-book", "site.gpsbook", "other.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "other.gpsbook: holds no group, nothing is added\n");
    EXPECT_EQ(site.Bytes(), bytes);
}

TEST(ImportBook, IntoASharedBookAllAreNew) {
    const SharedSite site;
    site.Share();
    site.Put("other.gpsbook", Site().Bytes());
    ASSERT_EQ(site.As("anna", {"import-book", "site.gpsbook", "other.gpsbook"}).exitCode, 0);
    EXPECT_EQ(site.Status("anna")["new"].size(), 8U);
    EXPECT_EQ(site.Sync("anna")["sent"]["new"], 8);
    EXPECT_EQ(site.Sync("bert")["taken"]["groups"], 2);
    site.ExpectSame();
}

TEST(ImportBook, IdsOfAnotherProjectMeanNothing) {
    const SharedSite site;
    site.Share();
    const SharedSite quarry;
    ASSERT_EQ(quarry.As("carl", {"sync", "site.gpsbook", "--store", "shared.sqlite", "--project", "Quarry"})
                  .exitCode,
              0);
    site.Put("other.gpsbook", quarry.Bytes());
    ASSERT_EQ(site.As("anna", {"import-book", "site.gpsbook", "other.gpsbook"}).exitCode, 0);
    EXPECT_EQ(site.Status("anna")["changed"], json::array());
    EXPECT_EQ(site.Sync("anna")["sent"]["new"], 8);
    site.Sync("bert");
    EXPECT_EQ(site.Table("bert").size(), 13U);
    site.ExpectSame();
}

TEST(ImportBook, CopyOfTheSameSharedBookNeedsAsNew) {
    const SharedSite site;
    site.Share();
    site.ExpectRefused({"import-book", "site.gpsbook", "bert.gpsbook"}, 3, "gpsbook merge fills gaps");
    const Outcome outcome = site.As("anna", {"import-book", "site.gpsbook", "bert.gpsbook", "--as-new"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(site.Sync("anna")["sent"]["new"], 8);
}

// The groups' datum is none of the book's: coordinates stay what they were, and it is told.
TEST(ImportBook, GroupsOfAnotherDatumAreTold) {
    const Site site;
    const Site other([](gpsproject::Project& project) {
        CConvCoord& conversion = *project.GetBook().GetGrpAt(0)->GetConvCoord();
        conversion.SetImpFlag(true);
        CDatumConv* const datum = project.GetMap().AddDat(0, 0);
        ASSERT_NE(datum, nullptr);
        datum->SetNome("local datum");
        conversion.SetImp(CConvCoord::impDatSel1, 0);
        conversion.SetImp(CConvCoord::impDatSel2, 0);
        conversion.SetImp(CConvCoord::impDatIndice, 1);
    });
    site.Put("other.gpsbook", other.Bytes());
    const double east = other.Field("Quay/P1", "east");
    const Outcome outcome = site.Run({"import-book", "site.gpsbook", "other.gpsbook", "--json"});
    EXPECT_EQ(JsonOf(outcome)["other_datums"], 1);
    EXPECT_NE(outcome.err.find("the datum of 1 new group is none of this book's"), std::string::npos)
        << outcome;
    EXPECT_EQ(site.Field("#2/P1", "east"), east);
}

TEST(ImportBook, RefusesWhatItCannotRead) {
    const Site site;
    site.Put("other.gpsbook", site.Bytes());
    site.ExpectRefused({"import-book", "site.gpsbook", "site.gpsbook"}, 2, "is the book itself");
    site.ExpectRefused({"import-book", "site.gpsbook", "none.gpsbook"}, 5, "none.gpsbook");
    site.ExpectRefused({"import-book", "site.gpsbook"}, 2, "OTHER");
    std::string bytes = site.Bytes();
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 0x40);
    site.Put("other.gpsbook", bytes);
    site.ExpectRefused({"import-book", "site.gpsbook", "other.gpsbook"}, 4, "other.gpsbook");
}

}  // namespace
}  // namespace gpsbook::test
