// gpsbook sync: books that are shared through a store.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <thread>

#include "apps/gpsbook/commands/RunCommand.h"
#include "tests/apps/gpsbook/commands/Journals.h"
#include "tests/apps/gpsbook/commands/Running.h"
#include "tests/apps/gpsbook/commands/SharedSite.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

/// Folders of two people with a store between them, which can move.
std::string InFolder(const Workplace& place, const std::string& name) {
    std::filesystem::create_directories(place.Path(name));
    return place.Path(name);
}

TEST(Sync, FirstTimeNeedsStoreAndProject) {
    const Site site;
    const std::string words = "is not shared yet; give the store with --store";
    site.ExpectRefused({"sync", "site.gpsbook"}, 2, words);
    site.ExpectRefused({"sync", "site.gpsbook", "--store", "shared.sqlite"}, 2, words);
    site.ExpectRefused({"sync", "site.gpsbook", "--project", "Dam"}, 2, words);
    site.ExpectRefused({"sync", "site.gpsbook", "--store", "", "--project", "Dam"}, 2, "--store");
}

TEST(Sync, FirstTimeSendsTheWholeBookAndTellsThatTheProjectIsNew) {
    const SharedSite site;
    std::vector<std::string> words = FirstSync("site.gpsbook");
    words.emplace_back("--json");
    const json done = JsonOf(site.As("anna", words));
    EXPECT_EQ(done["book"], "site.gpsbook");
    EXPECT_EQ(done["store"], "shared.sqlite");
    EXPECT_EQ(done["project"], "Dam");
    EXPECT_EQ(done["key"].get<std::string>().size(), 32U);
    EXPECT_EQ(done["revision"], 1);
    EXPECT_EQ(done["linked_now"], true);
    EXPECT_EQ(done["new_project"], true);
    EXPECT_EQ(done["repeated"], false);
    EXPECT_EQ(done["sent"], json({{"new", 8}, {"changed", 0}, {"deleted", 0}}));
    EXPECT_EQ(done["taken"], json({{"groups", 0}, {"points", 0}, {"deleted", 0}}));
    EXPECT_EQ(done["held"], json::array());
    EXPECT_EQ(done["refused"], json::array());
    EXPECT_EQ(done["conflicts"], json::array());
}

TEST(Sync, TextTellsProjectStoreAndCounts) {
    const SharedSite site;
    const Outcome first = site.As("anna", FirstSync("site.gpsbook"));
    EXPECT_EQ(first.out,
              "site.gpsbook: now shared, project Dam of shared.sqlite, which is new there, revision 1\n"
              "  sent: 8 new, 0 changed, 0 deleted\n"
              "  taken: 0 groups, 0 points, 0 deleted\n");
    EXPECT_EQ(first.err, "");
    const Outcome second = site.As("anna", {"sync", "site.gpsbook"});
    EXPECT_EQ(second.out,
              "site.gpsbook: project Dam of shared.sqlite, revision 1\n"
              "  sent: 0 new, 0 changed, 0 deleted\n"
              "  taken: 0 groups, 0 points, 0 deleted\n");
    EXPECT_EQ(second.exitCode, 0);
}

TEST(Sync, SecondPersonGetsGroupsAndPoints) {
    const SharedSite site;
    site.MakeBertsBook();
    ASSERT_EQ(site.As("anna", FirstSync("site.gpsbook")).exitCode, 0);
    const Outcome outcome = site.As("bert", FirstSync("bert.gpsbook"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.out.find("project Dam of shared.sqlite, revision 1\n"), std::string::npos) << outcome;
    EXPECT_NE(outcome.out.find("taken: 2 groups, 6 points, 0 deleted"), std::string::npos) << outcome;
    site.ExpectSame();
    EXPECT_EQ(site.FieldOf("bert", "Quay", "crs"), "EPSG:32633");
    EXPECT_EQ(site.FieldOf("bert", "Quay/P3", "quality"), 5);
}

TEST(Sync, BookThatIsFilledJoinsAProjectWithANote) {
    const SharedSite site;
    site.Share();
    const Outcome copied = site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"});
    ASSERT_EQ(copied.exitCode, 0) << copied;
    ASSERT_EQ(site.Run({"section", "read", "s.bin", "carl.gpsbook", "--version", "1400"}).exitCode, 0);
    const Outcome outcome = site.As("carl", FirstSync("carl.gpsbook"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("its 2 groups come into the project beside those that are there"),
              std::string::npos)
        << outcome;
    EXPECT_NE(outcome.out.find("sent: 8 new"), std::string::npos)
        << "its ids are another book's, and mean nothing here\n"
        << outcome;
}

TEST(Sync, DifferentFieldsOfOnePointMeet) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P1", "antenna=1.8"}).exitCode, 0);
    EXPECT_EQ(site.Sync("anna")["sent"]["changed"], 1);
    const json bert = site.Sync("bert");
    EXPECT_EQ(bert["sent"]["changed"], 1);
    EXPECT_EQ(bert["taken"]["points"], 1);
    EXPECT_EQ(bert["conflicts"], json::array());
    site.Sync("anna");
    site.ExpectSame();
    EXPECT_EQ(site.FieldOf("anna", "Quay/P1", "antenna"), 1.8);
    EXPECT_EQ(site.FieldOf("bert", "Quay/P1", "code"), "FENCE");
}

TEST(Sync, NewPointsGroupsAndDeletionsReachTheOther) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "name=Mole"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Mole", "name=M1", "lat=45.65", "lon=13.76", "h=63"})
                  .exitCode,
              0);
    ASSERT_EQ(site.As("bert", {"delete", "bert.gpsbook", "Pier", "Quay/P2"}).exitCode, 0);
    EXPECT_EQ(site.Sync("anna")["sent"]["new"], 2);
    const json bert = site.Sync("bert");
    EXPECT_EQ(bert["sent"]["deleted"], 4) << "a group, its two points, and one point more";
    EXPECT_EQ(bert["taken"], json({{"groups", 1}, {"points", 1}, {"deleted", 0}}));
    EXPECT_EQ(site.Sync("anna")["taken"]["deleted"], 2) << "points go with their group";
    site.ExpectSame();
    EXPECT_EQ(site.Groups(), "Quay Mole");
    EXPECT_EQ(site.Points("Quay"), "P1 P3 P4");
}

TEST(Sync, MovedPointIsAnotherOneInTheOtherGroup) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"move", "site.gpsbook", "Quay/P2", "--group", "Pier"}).exitCode, 0);
    const json status = site.Status("anna");
    EXPECT_EQ(status["new"].size(), 1U);
    EXPECT_EQ(status["new"][0]["name"], "Pier/P2");
    EXPECT_EQ(status["deleted"]["points"].size(), 1U);
    const json sent = site.Sync("anna")["sent"];
    EXPECT_EQ(sent, json({{"new", 1}, {"changed", 0}, {"deleted", 1}}));
    site.Sync("bert");
    site.ExpectSame();
    const Outcome list = site.Run({"list", "bert.gpsbook", "Pier", "--json"});
    EXPECT_EQ(JsonOf(list)["groups"][0]["points"][2]["name"], "P2");
}

TEST(Sync, SameFieldIsAConflictAndTheLastOneHolds) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P1", "code=WALL"}).exitCode, 0);
    site.Sync("anna");
    const Outcome outcome = site.As("bert", {"sync", "bert.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_NE(outcome.out.find("  conflict 1: point Quay/P1 (id 3), code-text: here \"WALL\", there "
                               "\"FENCE\", set by anna in revision 2\n"),
              std::string::npos)
        << outcome;
    EXPECT_NE(outcome.err.find("1 new conflict; gpsbook cloud resolve"), std::string::npos) << outcome;
    EXPECT_EQ(site.As("bert", {"sync", "bert.gpsbook"}).exitCode, 0) << "it is not a new one any more";
    site.Sync("anna");
    EXPECT_EQ(site.FieldOf("anna", "Quay/P1", "code"), "WALL");
    site.ExpectSame();
}

TEST(Sync, AuthorIsTheOneOfTheSyncThatSentIt) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"sync", "site.gpsbook", "--author", "Anna"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P2", "code=KERB"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"sync", "site.gpsbook", "--author", "Carla"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P1", "code=WALL"}).exitCode, 0);
    const Outcome outcome = site.As("bert", {"sync", "bert.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_NE(outcome.out.find("there \"FENCE\", set by Anna in revision 2\n"), std::string::npos) << outcome;
}

// --- what nobody else has seen ---------------------------------------------------------------------------

TEST(Sync, PointThatDiedWithAGroupUnseenIsKept) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Quay", "name=A5"}).exitCode, 0);
    site.Sync("anna");
    ASSERT_EQ(site.As("bert", {"delete", "bert.gpsbook", "Quay"}).exitCode, 0);
    site.Sync("bert", 3);
    site.Sync("anna", 3);
    const json conflicts = site.Status("anna")["conflicts"];
    ASSERT_EQ(conflicts.size(), 1U);
    EXPECT_EQ(conflicts[0]["what"], "kept");
    EXPECT_EQ(conflicts[0]["why"], json({"unseen", "unsent"})) << "Quay has texts of its own";
    ASSERT_EQ(site.As("anna", {"cloud", "resolve", "site.gpsbook", "--all", "--add-again"}).exitCode, 0);
    EXPECT_EQ(site.FieldOf("anna", "Quay/A5", "name"), "A5");
    site.Sync("anna");
    site.Sync("bert");
    EXPECT_EQ(site.FieldOf("bert", "Quay/A5", "name"), "A5");
}

TEST(Sync, StoreThatWasPutBackAfterAMergeIsRefused) {
    const SharedSite site;
    site.Share();
    std::filesystem::copy_file(site.Path("site.gpsbook"), site.Path("copy.gpsbook"));
    std::filesystem::copy_file(site.Path("shared.sqlite"), site.Path("old.sqlite"));
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Quay", "name=A5"}).exitCode, 0);
    site.Sync("anna");
    ASSERT_EQ(site.As("anna", {"merge", "site.gpsbook", "copy.gpsbook"}).exitCode, 0);
    std::filesystem::rename(site.Path("old.sqlite"), site.Path("shared.sqlite"));
    ASSERT_EQ(site.As("bert", {"add", "bert.gpsbook", "Quay", "name=B5"}).exitCode, 0);
    site.Sync("bert");
    const Outcome outcome = site.As("anna", {"sync", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_NE(outcome.err.find("put back"), std::string::npos) << outcome;
    EXPECT_EQ(site.FieldOf("anna", "Quay/A5", "name"), "A5");
}

// --- what others did -------------------------------------------------------------------------------------

TEST(Sync, TellsWhatOthersAddedChangedAndDeleted) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE", "antenna=1.8"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Pier", "name=C"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"delete", "site.gpsbook", "Quay/P3"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Pier", "name=Mole"}).exitCode, 0);
    site.Sync("anna");
    site.Put("copy.gpsbook", site.Text("bert.gpsbook"));
    const Outcome outcome = site.As("bert", {"sync", "bert.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.out.find("  taken: 1 group, 2 points, 1 deleted\n"
                               "    group Mole (id 2): name, group-name, by anna\n"
                               "    point Quay/P1 (id 3): code-text, position, antenna, by anna\n"
                               "    point Mole/C (id 9): added, by anna\n"
                               "    point Quay/P3 (id 5): deleted, by anna\n"),
              std::string::npos)
        << outcome;
    const json done = JsonOf(site.As("bert", {"sync", "copy.gpsbook", "--json"}));
    const json& items = done["taken_items"];
    ASSERT_EQ(items.size(), 4U) << items;
    EXPECT_EQ(items[1]["what"], "changed");
    EXPECT_EQ(items[1]["kind"], "point");
    EXPECT_EQ(items[1]["id"], 3);
    EXPECT_EQ(items[1]["name"], "Quay/P1");
    EXPECT_EQ(items[1]["fields"], json({"code-text", "position", "antenna"}));
    EXPECT_EQ(items[1]["author"], "anna");
    EXPECT_EQ(items[2]["what"], "added");
    EXPECT_EQ(items[2]["fields"], json::array());
    EXPECT_EQ(items[3]["what"], "deleted");
    EXPECT_EQ(items[3]["name"], "Quay/P3");
}

TEST(Sync, LongListsStopAfterTwentyLines) {
    const SharedSite site([](gpsproject::Project& project) {
        for (int i = 0; i < 19; ++i) project.GetBook().AddPun(1, false)->SetNome("N" + std::to_string(i));
    });
    site.Share();
    const auto lines = [](const std::string& text, const std::string& part) {
        std::size_t count = 0;
        for (const std::string& line : LinesOf(text)) count += line.find(part) != std::string::npos ? 1 : 0;
        return count;
    };
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Pier/#0..", "code=FENCE"}).exitCode, 0);
    site.Sync("anna");
    const Outcome taken = site.As("bert", {"sync", "bert.gpsbook"});
    EXPECT_EQ(taken.exitCode, 0) << taken;
    EXPECT_EQ(lines(taken.out, "code-text, by anna"), 20U) << taken;
    EXPECT_NE(taken.out.find("\n    ... and 1 more; --json tells all\n"), std::string::npos) << taken;

    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Pier/#0..", "code=GATE"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Pier/#0..", "code=WALL"}).exitCode, 0);
    site.Sync("anna");
    const Outcome met = site.As("bert", {"sync", "bert.gpsbook"});
    EXPECT_EQ(met.exitCode, 3) << met;
    EXPECT_EQ(lines(met.out, "  conflict "), 20U) << met;
    EXPECT_NE(met.out.find("\n  ... and 1 more; gpsbook cloud status --json tells all\n"), std::string::npos)
        << met;
    EXPECT_NE(met.err.find("21 new conflicts"), std::string::npos) << met;
}

TEST(Sync, RecordThatTheProjectRefusesIsTold) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"delete", "site.gpsbook", "Pier"}).exitCode, 0);
    site.Sync("anna");
    ASSERT_EQ(site.As("bert", {"add", "bert.gpsbook", "Pier", "name=C"}).exitCode, 0);
    const Outcome outcome = site.As("bert", {"sync", "bert.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_NE(outcome.out.find("  sent: 0 new, 0 changed, 0 deleted\n"), std::string::npos) << outcome;
    EXPECT_NE(outcome.out.find("\n  refused: point C: its group 2 was deleted by anna"), std::string::npos)
        << outcome;
}

// --- store and project -----------------------------------------------------------------------------------

TEST(Sync, RelativeStoreMovesWithTheBook) {
    const SharedSite site;
    const std::string office = InFolder(site, "office/books");
    std::filesystem::rename(site.Book(), office + "/site.gpsbook");
    const Outcome first = site.As("anna", {"sync", "office/books/site.gpsbook", "--store",
                                           "office/shared.sqlite", "--project", "Dam", "--json"});
    EXPECT_EQ(JsonOf(first)["store"], "../shared.sqlite");
    std::filesystem::rename(site.Path("office"), site.Path("field"));
    const Outcome later = site.As("anna", {"sync", "field/books/site.gpsbook"});
    EXPECT_EQ(later.exitCode, 0) << later;
}

TEST(Sync, AbsoluteStoreStaysWhereItIs) {
    const SharedSite site;
    InFolder(site, "office");
    const std::string store = site.Path("office/shared.sqlite");
    const Outcome first =
        site.As("anna", {"sync", "site.gpsbook", "--store", store, "--project", "Dam", "--json"});
    EXPECT_EQ(JsonOf(first)["store"], store);
    InFolder(site, "field");
    std::filesystem::rename(site.Book(), site.Path("field/site.gpsbook"));
    EXPECT_EQ(site.As("anna", {"sync", "field/site.gpsbook"}).exitCode, 0);
}

TEST(Sync, BookBehindALinkFindsTheStoreBesideTheFile) {
    const SharedSite site;
    ASSERT_EQ(site.As("anna", FirstSync("site.gpsbook")).exitCode, 0);
    InFolder(site, "desk");
    std::filesystem::create_symlink("../site.gpsbook", site.Path("desk/today.gpsbook"));
    const Outcome outcome = site.As("anna", {"sync", "desk/today.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
}

TEST(Sync, StoreThatMovedIsGivenAlone) {
    const SharedSite site;
    site.Share();
    std::filesystem::rename(site.Path("shared.sqlite"), site.Path("other.sqlite"));
    site.ExpectRefused({"sync", "site.gpsbook"}, 5, "shared.sqlite: there is no such store");
    const Outcome moved = site.As("anna", {"sync", "site.gpsbook", "--store", "other.sqlite"});
    EXPECT_EQ(moved.exitCode, 0) << moved;
    EXPECT_EQ(site.Sync("anna")["store"], "other.sqlite") << "it is remembered";
}

TEST(Sync, AnotherProjectIsRefused) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.Run({"new", "carl.gpsbook", "--crs", "EPSG:32633"}).exitCode, 0);
    ASSERT_EQ(
        site.As("carl", {"sync", "carl.gpsbook", "--store", "shared.sqlite", "--project", "Quarry"}).exitCode,
        0);
    ASSERT_EQ(site.As("carl", {"new", "dora.gpsbook", "--crs", "EPSG:32633"}).exitCode, 0);
    ASSERT_EQ(
        site.As("dora", {"sync", "dora.gpsbook", "--store", "second.sqlite", "--project", "Dam"}).exitCode,
        0);
    site.ExpectRefused({"sync", "site.gpsbook", "--project", "Quarry"}, 3, "make a new book");
    site.ExpectRefused({"sync", "site.gpsbook", "--store", "second.sqlite"}, 3, "import-book");
    site.ExpectRefused({"sync", "site.gpsbook", "--project", "Nowhere"}, 5,
                       "shared.sqlite: holds no project 'Nowhere'; --store names another store, --project "
                       "another project");
}

TEST(Sync, ProjectNameThatCannotBeToldIsAWrongCommandLine) {
    const SharedSite site;
    for (const std::string& name :
         {std::string(201, 'x'), std::string("two\nlines"), std::string("\xff"), std::string("tab\there")})
        site.ExpectRefused({"sync", "site.gpsbook", "--store", "shared.sqlite", "--project", name}, 2,
                           "--project: the name ");
}

TEST(Sync, FileThatIsNoStoreIsRefused) {
    const SharedSite site;
    site.Put("notes.txt", std::string(5000, 'x'));
    site.ExpectRefused({"sync", "site.gpsbook", "--store", "notes.txt", "--project", "Dam"}, 4, "notes.txt");
    EXPECT_EQ(site.Text("notes.txt"), std::string(5000, 'x'));
}

TEST(Sync, EveryKindOfErrorHasItsExitCode) {
    using Kind = gpssync::TransportError::Kind;
    EXPECT_EQ(ExitCodeOf(Kind::noAnswer), 6);
    EXPECT_EQ(ExitCodeOf(Kind::notFound), 5);
    EXPECT_EQ(ExitCodeOf(Kind::older), 3);
    EXPECT_EQ(ExitCodeOf(Kind::refused), 3);
    EXPECT_EQ(ExitCodeOf(Kind::damaged), 4);
}

TEST(Sync, StoreOfAnEarlierStateIsRefused) {
    const SharedSite site;
    site.Share();
    const std::string earlier = site.Text("shared.sqlite");
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    site.Sync("anna");
    site.Put("shared.sqlite", earlier);
    const Outcome outcome = site.As("anna", {"sync", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_NE(outcome.err.find("put back to an earlier state"), std::string::npos) << outcome;
    EXPECT_EQ(outcome.err.find("the next sync goes on"), std::string::npos) << outcome;
    EXPECT_EQ(site.FieldOf("anna", "Quay/P1", "code"), "FENCE");
}

TEST(Sync, OlderCopyOfTheStoreDoesNotTakeTheRightOnesPlace) {
    const SharedSite site;
    site.Share();
    site.Put("copy.sqlite", site.Text("shared.sqlite"));
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    site.Sync("anna");
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    const std::string before = site.Bytes();
    const Outcome outcome = site.As("anna", {"sync", "site.gpsbook", "--store", "copy.sqlite"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_NE(outcome.err.find("put back to an earlier state"), std::string::npos) << outcome;
    EXPECT_TRUE(site.Bytes() == before);
    EXPECT_EQ(site.Status("anna")["store"], "shared.sqlite");
    EXPECT_EQ(site.Sync("anna")["sent"]["new"], 1);
    site.Sync("bert");
    site.ExpectSame();
}

TEST(Sync, CopyOfTheStoreThatHasGoneAnotherWayIsNotRemembered) {
    const SharedSite site;
    site.Share();
    site.Put("copy.sqlite", site.Text("shared.sqlite"));
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    site.Sync("anna");
    for (const char* code : {"WALL", "KERB"}) {
        ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P1", std::string("code=") + code}).exitCode,
                  0);
        const Outcome sent = site.As("bert", {"sync", "bert.gpsbook", "--store", "copy.sqlite"});
        ASSERT_EQ(sent.exitCode, 0) << sent;
    }
    site.Sync("anna");  // takes its own revision into what it knows
    const Outcome outcome = site.As("anna", {"sync", "site.gpsbook", "--store", "copy.sqlite"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_EQ(site.Status("anna")["store"], "shared.sqlite");
    EXPECT_EQ(site.FieldOf("anna", "Quay/P1", "code"), "FENCE");
}

TEST(Sync, StoreThatCannotBeOpenedOrWrittenIsTriedAgain) {
    const SharedSite site;
    InFolder(site, "stick");
    const Outcome folder = site.As("anna", {"sync", "site.gpsbook", "--store", "stick", "--project", "Dam"});
    EXPECT_EQ(folder.exitCode, 6) << folder;
    EXPECT_NE(folder.err.find("stick"), std::string::npos) << folder;
    site.Share();
    if (::geteuid() == 0) return;  // who may write everything
    namespace fs = std::filesystem;
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    fs::permissions(site.Path("shared.sqlite"), fs::perms::owner_read);
    const Outcome readable = site.As("anna", {"sync", "site.gpsbook"});
    EXPECT_EQ(readable.exitCode, 6) << readable;
    EXPECT_NE(readable.err.find("it can only be read"), std::string::npos) << readable;
    fs::permissions(site.Path("shared.sqlite"), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(site.Sync("anna")["repeated"], true);
}

TEST(Sync, BookThatSomebodyWritesIsLocked) {
    const SharedSite site;
    site.Share();
    Running writer(site, {"import", "bert.gpsbook", "-", "--live", "--group", "walk"}, true);
    for (int i = 0; i < 400 && !std::filesystem::exists(site.Path("bert.gpsbook.lock")); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    const Outcome outcome = site.As("bert", {"sync", "bert.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    writer.CloseInput();
    writer.End();
}

/// Another program that is at work with the store.
class HeldStore {
public:
    explicit HeldStore(const std::string& file) {
        EXPECT_EQ(::sqlite3_open(file.c_str(), &store_), SQLITE_OK);
        Do("BEGIN EXCLUSIVE");
    }
    ~HeldStore() { ::sqlite3_close(store_); }
    HeldStore(const HeldStore&) = delete;
    HeldStore& operator=(const HeldStore&) = delete;

    void LetGo() { Do("ROLLBACK"); }

private:
    void Do(const char* what) {
        EXPECT_EQ(::sqlite3_exec(store_, what, nullptr, nullptr, nullptr), SQLITE_OK) << what;
    }

    sqlite3* store_ = nullptr;
};

TEST(Sync, StoreThatStaysBusyIsTriedAgainByTheNext) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    {
        const HeldStore held(site.Path("shared.sqlite"));
        const Outcome outcome = site.As("anna", {"sync", "site.gpsbook"});
        EXPECT_EQ(outcome.exitCode, 6) << outcome;
        EXPECT_NE(outcome.err.find("what was sent and taken until then is saved"), std::string::npos)
            << outcome;
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_FALSE(site.Status("anna")["commit"].is_null());
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=WALL"}).exitCode, 0);
    const json next = site.Sync("anna");
    EXPECT_EQ(next["repeated"], true);
    EXPECT_EQ(next["sent"]["changed"], 2) << "as it was sent, and what was changed since";
    site.Sync("bert");
    site.ExpectSame();
    EXPECT_EQ(site.FieldOf("bert", "Quay/P1", "code"), "WALL");
}

TEST(Sync, InterruptedOneIsSavedAndTheNextGoesOn) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    const std::string before = site.Bytes();
    HeldStore held(site.Path("shared.sqlite"));
    Running run(site, {"sync", "site.gpsbook"}, false);
    // The book is saved with its commit before that is sent.
    for (int i = 0; i < 1600 && site.Bytes() == before; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    ASSERT_NE(site.Bytes(), before);
    run.Signal(SIGINT);
    held.LetGo();
    const Outcome outcome = run.End();
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_NE(outcome.err.find("site.gpsbook: interrupted; what was sent and taken until then is saved"),
              std::string::npos)
        << outcome;
    EXPECT_FALSE(std::filesystem::exists(site.Path("site.gpsbook.journal")));
    EXPECT_EQ(site.Sync("anna")["repeated"], true);
    site.Sync("bert");
    site.ExpectSame();
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4 P5");
}

// --- what cannot be sent -----------------------------------------------------------------------------------

TEST(Sync, TextThatNoRecordCarriesIsHeldBackUntilItIsCorrected) {
    const SharedSite site(
        [](gpsproject::Project& project) { project.GetBook().GetPunAt(0, 1)->SetNome("P;2"); });
    const Outcome first = site.As("anna", FirstSync("site.gpsbook"));
    EXPECT_EQ(first.exitCode, 0) << first;
    EXPECT_NE(first.out.find("  sent: 7 new, 0 changed, 0 deleted\n"), std::string::npos) << first;
    EXPECT_NE(first.out.find("  held back: 1 item; gpsbook cloud status tells why\n"), std::string::npos);
    const json held = site.Status("anna")["held"];
    ASSERT_EQ(held.size(), 1U);
    EXPECT_EQ(held[0]["name"], "Quay/P;2");
    EXPECT_EQ(held[0]["why"], "the name holds a ';'");
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/#1", "name=P2"}).exitCode, 0);
    const json later = site.Sync("anna");
    EXPECT_EQ(later["sent"]["new"], 1);
    EXPECT_EQ(later["held"], json::array());
}

constexpr char kByText[] =
    "the conversion's projection is defined by a text, of which a record has no place; give it by its EPSG "
    "code";
constexpr char kUtm33[] = "crs=+proj=tmerc +lat_0=0 +lon_0=15 +k=0.9996 +x_0=500000 +y_0=0 +ellps=WGS84";

TEST(Sync, GroupWhoseProjectionIsATextIsHeldBackUntilItHasACode) {
    const SharedSite site;
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay", kUtm33}).exitCode, 0);
    const std::vector<std::string> before = site.Table("anna");
    site.MakeBertsBook();
    const Outcome first = site.As("anna", FirstSync("site.gpsbook"));
    EXPECT_EQ(first.exitCode, 0) << first;
    EXPECT_NE(first.out.find("  sent: 3 new, 0 changed, 0 deleted\n"), std::string::npos) << first;
    EXPECT_NE(first.out.find("  held back: 5 items; gpsbook cloud status tells why\n"), std::string::npos);
    const json held = site.Status("anna")["held"];
    ASSERT_EQ(held.size(), 5U);
    EXPECT_EQ(held[0]["name"], "Quay");
    EXPECT_EQ(held[0]["why"], kByText);
    EXPECT_EQ(held[4]["name"], "Quay/P4");
    EXPECT_EQ(held[4]["why"], "its group is held back");
    EXPECT_EQ(site.Table("anna"), before);
    ASSERT_EQ(site.As("bert", FirstSync("bert.gpsbook")).exitCode, 0);
    EXPECT_EQ(site.Table("bert").size(), 3U) << "head, A and B";

    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay", "crs=EPSG:32633"}).exitCode, 0);
    const json later = site.Sync("anna");
    EXPECT_EQ(later["sent"], json({{"new", 5}, {"changed", 0}, {"deleted", 0}}));
    EXPECT_EQ(later["held"], json::array());
    site.Sync("bert");
    site.ExpectSame();
}

TEST(Sync, KnownGroupThatGetsAProjectionByATextIsHeldBackWithThePositionsInIt) {
    const SharedSite site;
    site.Share();
    const std::vector<std::string> before = site.Table("bert");
    constexpr char further[] = "crs=+proj=tmerc +lat_0=0 +lon_0=12 +k=0.9996 +x_0=500000 +y_0=0 +ellps=WGS84";
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay", further}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    const json done = site.Sync("anna");
    const json& held = done["held"];
    EXPECT_EQ(held, site.Status("anna")["held"]);
    EXPECT_EQ(done["sent"]["new"], 0);
    ASSERT_EQ(held.size(), 6U);
    EXPECT_EQ(held[0]["name"], "Quay");
    EXPECT_EQ(held[0]["why"], kByText);
    EXPECT_EQ(held[5]["name"], "Quay/P5");
    EXPECT_EQ(held[5]["why"], "its group's conversion is held back, and its position belongs to that");
    site.Sync("bert");
    EXPECT_EQ(site.FieldOf("bert", "Quay", "crs"), "EPSG:32633") << "as it was";
    EXPECT_EQ(site.Table("bert"), before) << "coordinates, too";
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay", "crs=EPSG:32632"}).exitCode, 0);
    EXPECT_EQ(site.Sync("anna")["held"], json::array());
    site.Sync("bert");
    EXPECT_EQ(site.FieldOf("bert", "Quay", "crs"), "EPSG:32632");
    site.ExpectSame();
}

// --- positions ----------------------------------------------------------------------------------------

TEST(Sync, PointOfTheFormerPlaneSystemIsComputedAndSent) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay", "crs=EPSG:32632"}).exitCode, 0);
    site.Sync("anna");
    ASSERT_EQ(site.As("bert", {"add", "bert.gpsbook", "Quay", "name=P5", "lat=45.651", "lon=13.761", "h=63",
                               "antenna=2"})
                  .exitCode,
              0);
    const json done = site.Sync("bert");
    EXPECT_EQ(done["sent"], json({{"new", 1}, {"changed", 1}, {"deleted", 0}}));
    EXPECT_EQ(site.Status("bert")["changed"], json::array());
    site.Sync("anna");
    site.ExpectSame();
    for (const char* book : {"site.gpsbook", "bert.gpsbook"})
        EXPECT_EQ(site.Run({"check", book}).out.find("[plane]"), std::string::npos) << book;
}

// --- the backup ----------------------------------------------------------------------------------------

TEST(Sync, BackupThatIsPutBackDoesNotSendItsPointsOnceMore) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    EXPECT_EQ(site.Sync("anna")["sent"]["new"], 1);
    site.Put("site.gpsbook", site.Text("site.gpsbook.bak"));
    const json again = site.Sync("anna");
    EXPECT_EQ(again["repeated"], true);
    EXPECT_EQ(again["revision"], 2);
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4 P5");
    EXPECT_EQ(site.Sync("bert")["taken"]["points"], 1);
    site.ExpectSame();
}

TEST(Sync, BackupOfTheFirstSyncThatIsPutBackDoesNotSendItsPointsOnceMore) {
    const SharedSite site;
    site.Share();
    site.Put("site.gpsbook", site.Text("site.gpsbook.bak"));
    const json again = site.Sync("anna");
    EXPECT_EQ(again["repeated"], true);
    EXPECT_EQ(again["revision"], 1);
    EXPECT_EQ(site.Sync("bert")["taken"]["points"], 0);
    site.ExpectSame();
}

TEST(Sync, BackupThatIsPutBackBesideALaterJournalDoesNotSendItsPointsOnceMore) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    site.Sync("anna");
    Session(site.Book(), {Coded(0, 1, "KERB")});
    ASSERT_TRUE(std::filesystem::exists(site.Path("site.gpsbook.journal")));
    site.Put("site.gpsbook", site.Text("site.gpsbook.bak"));
    const Outcome refused = site.As("anna", {"sync", "site.gpsbook"});
    EXPECT_EQ(refused.exitCode, 4) << refused;
    EXPECT_NE(refused.err.find("gpsbook journal salvage"), std::string::npos) << refused;
    const json done = JsonOf(site.As("anna", {"journal", "salvage", "site.gpsbook", "--json"}));
    EXPECT_EQ(done["salvaged"], 1);
    const json again = site.Sync("anna");
    EXPECT_EQ(again["repeated"], true);
    EXPECT_EQ(again["sent"]["new"], 3) << "P5, as it was answered, and the group of what was salvaged";
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4 P5");
    EXPECT_EQ(site.Sync("bert")["taken"], json({{"groups", 1}, {"points", 2}, {"deleted", 0}}));
    site.ExpectSame();
}

// --- who -----------------------------------------------------------------------------------------------

TEST(Sync, AuthorIsOptionThenEnvironment) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P1", "code=WALL"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"sync", "site.gpsbook", "--author", "Anna B."}).exitCode, 0);
    EXPECT_EQ(site.Sync("bert", 3)["conflicts"][0]["author"], "Anna B.");
}

TEST(Sync, AuthorThatCannotBeToldIsRefused) {
    const SharedSite site;
    site.Share();
    for (const std::string& author :
         {std::string(201, 'x'), std::string("two\nlines"), std::string("\xff"), std::string("tab\there")}) {
        site.ExpectRefused({"sync", "site.gpsbook", "--author", author}, 2, "--author");
        Surroundings around;
        around.environment = {{"GPS_SURVEY_AUTHOR", author}};
        const Outcome outcome = site.Run({"sync", "site.gpsbook"}, around);
        EXPECT_EQ(outcome.exitCode, 2) << outcome;
        EXPECT_NE(outcome.err.find("GPS_SURVEY_AUTHOR: "), std::string::npos) << outcome;
    }
}

TEST(Sync, DamagedDeviceFileEndsWhatIsSharedAndNothingElse) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.Run({"new", "own.gpsbook", "--crs", "EPSG:32633"}).exitCode, 0);
    site.Put("anna.device", "device 12");
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"sync", "site.gpsbook"}, {"add", "site.gpsbook", "name=Mole"}}) {
        const Outcome outcome = site.As("anna", words);
        EXPECT_EQ(outcome.exitCode, 4) << outcome;
        EXPECT_NE(outcome.err.find("anna.device: does not hold the id of this installation"),
                  std::string::npos)
            << outcome;
    }
    EXPECT_EQ(site.Text("anna.device"), "device 12") << "no new id in silence";
    EXPECT_EQ(site.As("anna", {"add", "own.gpsbook", "name=Mole"}).exitCode, 0);
    EXPECT_EQ(site.As("anna", {"info", "site.gpsbook"}).exitCode, 0) << "who reads needs none";
}

TEST(Sync, DeviceFileIsNotMadeForBooksOfOnesOwn) {
    const SharedSite site;
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "name=Mole"}).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(site.DeviceOf("anna")));
    ASSERT_EQ(site.As("anna", FirstSync("site.gpsbook")).exitCode, 0);
    EXPECT_TRUE(std::filesystem::exists(site.DeviceOf("anna")));
}

TEST(Sync, GroupsOfASharedBookAreTheirDevices) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("bert", {"add", "bert.gpsbook", "name=Mole"}).exitCode, 0);
    const auto project =
        gpsproject::Project::Open(site.Path("bert.gpsbook"), gpsproject::Project::Mode::read);
    const auto deviceIn = [&](const std::string& who) {
        const std::string text = site.Text(who + ".device");
        return text.substr(text.rfind(' ') + 1);
    };
    CLibGps& book = project->GetBook();
    EXPECT_EQ(std::to_string(book.GetGrpAt(0)->GetCloudCreatorDevId()) + '\n', deviceIn("anna"));
    EXPECT_EQ(std::to_string(book.GetGrpAt(2)->GetCloudCreatorDevId()) + '\n', deviceIn("bert"));
}

TEST(Sync, NothingIsSentOfABookThatIsDamaged) {
    const SharedSite site;
    site.Share();
    std::string bytes = site.Bytes();
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 0x40);
    site.Put("site.gpsbook", bytes);
    const Outcome outcome = site.As("anna", {"sync", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 4) << outcome;
    EXPECT_EQ(site.Bytes(), bytes);
}

TEST(Sync, StepsAreShownOnATerminalAlone) {
    const SharedSite site;
    site.Share();
    EXPECT_EQ(site.As("anna", {"sync", "site.gpsbook"}).err, "");
    const Outcome outcome = site.RunOnTerminal({"sync", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("pull ..."), std::string::npos) << outcome;
}

}  // namespace
}  // namespace gpsbook::test
