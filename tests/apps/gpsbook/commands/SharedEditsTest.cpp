// Edits of shared books: what comes in by files and journals is new, and texts that cannot be sent are
// refused where they are entered.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Journals.h"
#include "tests/apps/gpsbook/commands/SharedSite.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

TEST(SharedEdits, WhatIsLoadedIsNew) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.Run({"groups", "save", "site.gpsbook", "all.groups"}).exitCode, 0);
    ASSERT_EQ(site.Run({"points", "save", "site.gpsbook", "some.points", "--group", "Quay"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"groups", "load", "site.gpsbook", "all.groups", "--after", "1"}).exitCode, 0);
    ASSERT_EQ(
        site.As("anna", {"points", "load", "site.gpsbook", "some.points", "--group", "#0", "--after", "3"})
            .exitCode,
        0);
    const json status = site.Status("anna");
    EXPECT_EQ(status["new"].size(), 12U);
    EXPECT_EQ(status["changed"], json::array());
    EXPECT_EQ(site.Sync("anna")["sent"], json({{"new", 12}, {"changed", 0}, {"deleted", 0}}));
    site.Sync("bert");
    site.ExpectSame();
}

TEST(SharedEdits, SalvagedPointsAreNew) {
    const SharedSite site;
    site.Share();
    Session(site.Book(), {Coded(0, 1, "KERB"), Coded(0, 2, "PILE")});
    std::string bytes = site.Text("site.gpsbook.journal");
    bytes[FramesOf(bytes).at(0) + 60] ^= 0x10;
    site.Put("site.gpsbook.journal", bytes);
    const json done = JsonOf(site.As("anna", {"journal", "salvage", "site.gpsbook", "--json"}));
    EXPECT_EQ(done["salvaged"], 1);
    const json status = site.Status("anna");
    ASSERT_EQ(status["new"].size(), 2U);
    EXPECT_EQ(status["new"][1]["name"], "SALVAGED/P3");
    EXPECT_EQ(status["changed"], json::array());
    site.Sync("anna");
    site.Sync("bert");
    site.ExpectSame();
    EXPECT_EQ(site.Table("bert").size(), 8U) << "P3 of the group Quay is still there";
}

TEST(SharedEdits, SalvageTakesNoIdOfTheJournal) {
    const SharedSite site;
    site.Share();
    // The journal is of a copy that had the group; here it is deleted, and the project does not know that
    // yet.
    site.Put("copy.gpsbook", site.Bytes());
    ASSERT_EQ(site.As("anna", {"delete", "site.gpsbook", "Quay"}).exitCode, 0);
    Session(site.Path("copy.gpsbook"), {Renamed(0, "Kai"), Coded(0, 2, "PILE")});
    site.Put("site.gpsbook.journal", site.Text("copy.gpsbook.journal"));
    const json done = JsonOf(site.As("anna", {"journal", "salvage", "site.gpsbook", "--json"}));
    EXPECT_EQ(done["salvaged"], 1);
    EXPECT_EQ(done["salvaged_groups"][0]["conversion"], true) << "the group's own entry is taken";
    const json status = site.Status("anna");
    EXPECT_EQ(status["new"].size(), 2U);
    EXPECT_EQ(status["deleted"], json({{"groups", {1}}, {"points", {3, 4, 5, 6}}}));
    EXPECT_EQ(site.Sync("anna")["sent"], json({{"new", 2}, {"changed", 0}, {"deleted", 5}}));
    site.Sync("bert");
    site.ExpectSame();
}

TEST(SharedEdits, SalvageTellsOfACommitThatItCannotTake) {
    const SharedSite site;
    site.Share();
    Session(site.Book(), {Coded(0, 1, "KERB"), [](gpsproject::Project& project) {
                              EXPECT_TRUE(project.GetCloud().BeginCommit(std::string(32, 'a')));
                          }});
    std::string bytes = site.Text("site.gpsbook.journal");
    bytes[FramesOf(bytes).at(0) + 60] ^= 0x10;
    site.Put("site.gpsbook.journal", bytes);
    const Outcome outcome = site.As("anna", {"journal", "salvage", "site.gpsbook", "--json"});
    EXPECT_NE(outcome.err.find("steps of a sync that cannot be taken"), std::string::npos) << outcome;
    EXPECT_EQ(JsonOf(outcome)["not_taken"],
              json::parse(R"([{"code": 9009, "kind": "commit begun", "entries": 1}])"));
}

TEST(SharedEdits, TextsThatNoRecordCarriesAreRefusedWhereTheyAreEntered) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.Run({"simulate", "--base", "45.65,13.76,60", "--epochs", "3", "-o", "walk.nmea"}).exitCode,
              0);
    for (const std::string& bad : {std::string("A;B"), std::string("A\nB"), std::string("A\rB"),
                                   std::string("A\xff"), std::string("\xed\xa0\x80")}) {
        const std::vector<std::string> rows[] = {
            {"set", "site.gpsbook", "Quay", "name=" + bad},
            {"set", "site.gpsbook", "Quay", "code=" + bad},
            {"set", "site.gpsbook", "Quay", "operator=" + bad},
            {"set", "site.gpsbook", "Quay/P1", "name=" + bad},
            {"set", "site.gpsbook", "Quay/P1", "code=" + bad},
            {"add", "site.gpsbook", "name=" + bad},
            {"add", "site.gpsbook", "name=Mole", "code=" + bad},
            {"add", "site.gpsbook", "Quay", "name=" + bad},
            {"add", "site.gpsbook", "Quay", "name=P9", "code=" + bad},
            {"import", "site.gpsbook", "walk.nmea", "--group", bad},
            {"import", "site.gpsbook", "walk.nmea", "--prefix", bad},
            {"import", "site.gpsbook", "walk.nmea", "--code", bad},
            {"import", "site.gpsbook", "walk.nmea", "--live", "--group", bad},
            {"import", "site.gpsbook", "walk.nmea", "--live", "--prefix", bad},
            {"import", "site.gpsbook", "walk.nmea", "--live", "--code", bad},
            {"new", "other.gpsbook", "--crs", "EPSG:32633", "--name", bad},
        };
        for (const std::vector<std::string>& words : rows) site.ExpectRefused(words, 2, "text");
    }
    for (const char* bad : {"A;B.nmea", "A\nB.nmea"}) {
        site.Put(bad, site.Text("walk.nmea"));
        site.ExpectRefused({"import", "site.gpsbook", bad}, 2, "gives no name of a group");
    }
    EXPECT_EQ(site.Status("anna")["held"], json::array());
}

// A name with a byte that is no UTF-8 can come from the name of a log: it is taken with a '?' in its place.
TEST(SharedEdits, NameOfALogThatIsNotUtf8IsMadeSo) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.Run({"simulate", "--base", "45.65,13.76,60", "--epochs", "3", "-o", "walk.nmea"}).exitCode,
              0);
    site.Put("w\xe4lk.nmea", site.Text("walk.nmea"));
    const Outcome outcome =
        site.As("anna", {"import", "site.gpsbook", "w\xe4lk.nmea", "--crs", "EPSG:32633"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(site.Status("anna")["held"], json::array());
}

}  // namespace
}  // namespace gpsbook::test
