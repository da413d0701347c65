// gpsbook journal salvage: what can be used of a journal that is damaged or not the book's own.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/Scale.h"
#include "tests/apps/gpsbook/commands/Journals.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

/// Journals of site.gpsbook that were set aside.
std::vector<std::string> Kept(const Workplace& place) {
    std::vector<std::string> kept;
    for (const std::string& name : place.Names())
        if (name.starts_with("site.gpsbook.journal.damaged-")) kept.push_back(name);
    return kept;
}

TEST(JournalSalvage, WholeJournalIsReplayedAndNothingIsSetAside) {
    const JournalSite site;
    const Outcome outcome = site.Do("salvage");
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(site.Points("Quay"), "P2 P3 P4 P5");
    EXPECT_EQ(site.Groups(), "Quay Mole");
    EXPECT_FALSE(site.HasJournal());
    EXPECT_EQ(Kept(site).size(), 0U);
}

TEST(JournalSalvage, PointsBehindTheDamageGoToAGroupOfTheirOwn) {
    const Site site;
    Session(site.Book(), {Coded(0, 1, "KERB"), Added(0, "P5"), Added(0, "P6"), Renamed(1, "Mole"),
                          Coded(1, 0, "PILE"), Deleted(0, 0)});
    std::string bytes = site.Text("site.gpsbook.journal");
    bytes[FramesOf(bytes).at(1) + 60] ^= 0x10;  // P5
    site.Put("site.gpsbook.journal", bytes);
    const json done = JsonOf(site.Run({"journal", "salvage", "site.gpsbook", "--json"}));
    EXPECT_EQ(done["edits"], 1) << "KERB";
    EXPECT_EQ(done["salvaged"], 2) << "P6, and A with its code";
    ASSERT_EQ(done["salvaged_groups"].size(), 2U);
    EXPECT_EQ(done["salvaged_groups"][0]["group_in_journal"], 0);
    EXPECT_EQ(done["salvaged_groups"][0]["conversion"], true);
    EXPECT_EQ(done["salvaged_groups"][1]["group_in_journal"], 1);
    EXPECT_EQ(done["not_taken"], json::parse(R"([{"code":3001,"kind":"group changed","entries":1},)"
                                             R"({"code":3012,"kind":"point deleted","entries":1}])"));
    EXPECT_EQ(site.Groups(), "Quay Pier SALVAGED SALVAGED-2");
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4");
    EXPECT_EQ(site.Points("SALVAGED"), "P6");
    EXPECT_EQ(site.Points("SALVAGED-2"), "A");
    EXPECT_EQ(site.Field("Quay/P2", "code"), "KERB");
    EXPECT_EQ(site.Field("SALVAGED-2/A", "code"), "PILE");
    const json group = site.Show("SALVAGED");
    EXPECT_EQ(group["conversion"], site.Show("Quay")["conversion"]);
    ASSERT_EQ(Kept(site).size(), 1U);
    EXPECT_TRUE(site.Text(Kept(site)[0]) == bytes);
    EXPECT_EQ(done["kept_journal"].get<std::string>().ends_with(Kept(site)[0]), true);
    EXPECT_EQ(site.Run({"check", "site.gpsbook", "--ignore",
                        "conversion,unset,plane,antenna-differs,antenna-zero,day,name-twice"})
                  .exitCode,
              0);
    EXPECT_EQ(site.Run({"set", "site.gpsbook", "Quay/P1", "code=X"}).exitCode, 0)
        << "it can be written again";
}

TEST(JournalSalvage, PointsThatTheBookHasAreNotDoubled) {
    const Site site;
    Session(site.Book(), {Coded(0, 1, "KERB"), Coded(0, 2, "X"), Coded(0, 2, "Y"), Coded(0, 2, "Z")});
    std::string bytes = site.Text("site.gpsbook.journal");
    const std::string whole = bytes;
    bytes[FramesOf(bytes).at(1) + 60] ^= 0x10;
    site.Put("site.gpsbook.journal", bytes);
    const json first = JsonOf(site.Run({"journal", "salvage", "site.gpsbook", "--json"}));
    EXPECT_EQ(first["salvaged"], 1);
    EXPECT_EQ(first["already_there"], 0);
    EXPECT_EQ(site.Field("SALVAGED/P3", "code"), "Z") << "the last state of the point, and no other";
    // Whoever puts it back has its edits in the book already.
    site.Put("site.gpsbook.journal", whole);
    const json verify = JsonOf(site.Run({"journal", "verify", "site.gpsbook", "--json"}));
    EXPECT_EQ(verify["tie"], "saved");
    JsonOf(site.Run({"journal", "salvage", "site.gpsbook", "--json"}));
    EXPECT_EQ(site.Groups(), "Quay Pier SALVAGED");
    EXPECT_EQ(site.Points("SALVAGED"), "P3");
}

TEST(JournalSalvage, JournalOfAnotherBookGivesAllItsPointsWithTheirConversion) {
    const Site site([](gpsproject::Project& project) {
        // The group at the position is one in another zone.
        std::string why;
        project.GetBook().GetGrpAt(0)->GetConvCoord()->GetConvLocal()->SetDefinizione("EPSG:32632", why);
        project.GetBook().GetGrpAt(0)->SetNomeGrp("Other");
    });
    const Site source;
    Session(source.Book(), {Added(0, "P5")});
    site.Put("site.gpsbook.journal", source.Text("site.gpsbook.journal"));
    const json plain = JsonOf(site.Run({"journal", "salvage", "site.gpsbook", "--json"}));
    EXPECT_EQ(plain["edits"], 0);
    EXPECT_EQ(plain["salvaged"], 1);
    EXPECT_EQ(plain["salvaged_groups"][0]["conversion"], false) << "that of zone 32 gives other coordinates";
    EXPECT_EQ(site.Field("SALVAGED/P5", "east"), [&] {
        JsonOf(source.Run({"journal", "replay", "site.gpsbook", "--json"}));
        return source.Field("Quay/P5", "east");
    }());

    Session(source.Book(), {Renamed(0, "Kai"), Added(0, "P6")});
    site.Put("site.gpsbook.journal", source.Text("site.gpsbook.journal"));
    const json told = JsonOf(site.Run({"journal", "salvage", "site.gpsbook", "--json"}));
    EXPECT_EQ(told["salvaged"], 1);
    EXPECT_EQ(told["salvaged_groups"][0]["name"], "SALVAGED-2");
    EXPECT_EQ(told["salvaged_groups"][0]["conversion"], true) << "its own group is in the journal";
    EXPECT_EQ(site.Show("SALVAGED-2")["conversion"], source.Show("Kai")["conversion"]);
    EXPECT_EQ(Kept(site).size(), 2U);
}

TEST(JournalSalvage, BackupThatTookThePlaceOfTheBookGetsThePointsAndTheConversion) {
    const Site site;
    ASSERT_EQ(site.Run({"set", "site.gpsbook", "Quay/P1", "code=X"}).exitCode, 0);  // the backup is older now
    Session(site.Book(), {Added(0, "P5"), Added(0, "P6")});
    site.Put("site.gpsbook", site.Text("site.gpsbook.bak"));
    const json done = JsonOf(site.Run({"journal", "salvage", "site.gpsbook", "--json"}));
    EXPECT_EQ(done["salvaged"], 2);
    EXPECT_EQ(done["salvaged_groups"][0]["conversion"], true) << "it gives the coordinates of the points";
    EXPECT_EQ(site.Points("SALVAGED"), "P5 P6");
}

TEST(JournalSalvage, EditThatIsTornIsTakenPointByPoint) {
    const Site site;
    Session(site.Book(), {Coded(0, 0, "A"), [](gpsproject::Project& project) {
                              Added(0, "P5")(project);
                              Added(0, "P6")(project);
                          }});
    std::string bytes = site.Text("site.gpsbook.journal");
    bytes.resize(bytes.size() - 3);  // of P6
    site.Put("site.gpsbook.journal", bytes);
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4") << "an edit comes back whole or not at all";
    const json done = JsonOf(site.Run({"journal", "salvage", "site.gpsbook", "--json"}));
    EXPECT_EQ(done["salvaged"], 1);
    EXPECT_EQ(site.Points("SALVAGED"), "P5");
    EXPECT_EQ(Kept(site).size(), 1U);
}

TEST(JournalSalvage, EveryByteOfTheJournalIsKeptWhateverIsFlipped) {
    const JournalSite original;
    const std::string book = original.Bytes(), journal = original.Journal();
    const Site site;
    const std::size_t step = journal.size() / static_cast<std::size_t>(Scaled(300)) + 1;
    for (std::size_t at = 0; at < journal.size(); at += step) {
        for (const std::string& name : site.Names()) std::filesystem::remove(site.Path(name));
        std::string bytes = journal;
        bytes[at] ^= 0x20;
        site.Put("site.gpsbook", book);
        site.Put("site.gpsbook.journal", bytes);
        const json done = JsonOf(site.Run({"journal", "salvage", "site.gpsbook", "--json"}));
        const std::vector<std::string> kept = Kept(site);
        ASSERT_EQ(kept.size(), 1U) << "byte " << at;
        ASSERT_TRUE(site.Text(kept[0]) == bytes) << "byte " << at;
        // Of the two points at most the one in the flipped frame is lost.
        const int there = done["points"].get<int>() + done["salvaged"].get<int>();
        ASSERT_GE(there, 1) << "byte " << at;
        ASSERT_LE(there, 2) << "byte " << at;
    }
}

TEST(JournalSalvage, BookThatCannotBeSavedStaysWithItsJournal) {
    const JournalSite site;
    site.Damage(1);
    const std::string book = site.Bytes(), journal = site.Journal();
    const FileSizeLimit full(book.size() / 2);
    const Outcome outcome = site.Do("salvage");
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_TRUE(site.Bytes() == book && site.Journal() == journal);
}

}  // namespace
}  // namespace gpsbook::test
