// gpsbook journal list, verify and replay; and what other commands say of a journal.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Journals.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

bool Says(const std::string& text, const std::string& words) { return text.find(words) != std::string::npos; }

TEST(JournalCommand, BookWithoutAJournalHasNothingToTell) {
    const Site site;
    for (const char* what : {"list", "verify"}) {
        const Outcome outcome = site.Run({"journal", what, "site.gpsbook"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        EXPECT_EQ(outcome.out, "site.gpsbook: journal: there is none: the book is as it was saved\n");
    }
    EXPECT_EQ(JsonOf(site.Run({"journal", "list", "site.gpsbook", "--json"}))["tie"], "none");
    const std::string before = site.Bytes();
    const Outcome replay = site.Run({"journal", "replay", "site.gpsbook"});
    EXPECT_EQ(replay.out, "site.gpsbook: nothing to bring back\n") << replay;
    const Outcome salvage = site.Run({"journal", "salvage", "site.gpsbook"});
    EXPECT_EQ(salvage.out, "site.gpsbook: nothing to salvage, nothing to bring back\n") << salvage;
    EXPECT_TRUE(site.Bytes() == before);
}

TEST(JournalCommand, ListTellsEveryEntry) {
    const JournalSite site;
    const json list = JsonOf(site.Do("list", true));
    EXPECT_EQ(list["tie"], "follows");
    EXPECT_EQ(list["end"], "clean");
    EXPECT_EQ(list["bytes"], site.Journal().size());
    EXPECT_EQ(list["header"]["first"], 1);
    const std::vector<std::size_t> at = FramesOf(site.Journal());
    ASSERT_EQ(list["entries"].size(), 4U);
    const std::vector<json> wanted{
        {{"code", 3002}, {"kind", "point changed"}, {"group", 0}, {"point", 1}},
        {{"code", 3002}, {"kind", "point changed"}, {"group", 0}, {"point", 4}},
        {{"code", 3001}, {"kind", "group changed"}, {"group", 1}, {"point", nullptr}},
        {{"code", 3012}, {"kind", "point deleted"}, {"group", 0}, {"point", 0}}};
    for (std::size_t i = 0; i < 4; ++i) {
        const json& entry = list["entries"][i];
        for (const auto& [key, value] : wanted[i].items()) EXPECT_EQ(entry[key], value) << i << key;
        EXPECT_EQ(entry["sequence"], i + 1);
        EXPECT_EQ(entry["durable"], i) << "each was stored before the next one";
        EXPECT_EQ(entry["offset"], at[i]);
        EXPECT_EQ(entry["edit_ends"], true);
    }
    EXPECT_EQ(list["entries"][3]["bytes"], 2 + 4 + 4);
    const std::vector<std::string> lines = LinesOf(site.Do("list").out);
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_TRUE(Says(lines[0], "it holds edits that the file of the book does not have")) << lines[0];
    EXPECT_TRUE(Says(lines[5], "3001  group changed")) << lines[5];
    EXPECT_TRUE(site.HasJournal());
}

TEST(JournalCommand, EntriesOfOneEditEndOnce) {
    const Site site;
    Session(site.Book(), {[](gpsproject::Project& project) {
                Coded(0, 1, "A")(project);
                Coded(0, 2, "B")(project);
            }});
    const json list = JsonOf(site.Run({"journal", "list", "site.gpsbook", "--json"}));
    ASSERT_EQ(list["entries"].size(), 2U);
    EXPECT_EQ(list["entries"][0]["edit_ends"], false);
    EXPECT_EQ(list["entries"][1]["edit_ends"], true);
}

TEST(JournalCommand, VerifyOfAWholeOneSucceedsAndChangesNothing) {
    const JournalSite site;
    const std::string journal = site.Journal(), book = site.Bytes();
    const Outcome outcome = site.Do("verify");
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_TRUE(Says(outcome.out, "4 edits (1 group stored, 2 points stored, 1 item deleted)")) << outcome;
    const json verified = JsonOf(site.Do("verify", true));
    EXPECT_EQ(verified["whole"], true);
    EXPECT_EQ(verified["edits"], 4);
    EXPECT_TRUE(site.Journal() == journal && site.Bytes() == book);
}

TEST(JournalCommand, TornTailIsToldAndDoesNoHarm) {
    const JournalSite longer;
    const std::string all = longer.Journal();
    longer.PutJournal(all + all.substr(33, 50));  // the beginning of a frame
    const Outcome begun = longer.Do("verify");
    EXPECT_EQ(begun.exitCode, 0) << begun;
    EXPECT_TRUE(Says(begun.out, "torn at byte " + std::to_string(all.size()))) << begun;
    EXPECT_EQ(JsonOf(longer.Do("verify", true))["edits"], 4);

    const JournalSite cut;
    const std::string whole = cut.Journal();
    cut.PutJournal(whole.substr(0, whole.size() - 5));
    const Outcome torn = cut.Do("verify");
    EXPECT_EQ(torn.exitCode, 0) << torn;
    EXPECT_TRUE(Says(torn.out, "torn at byte " + std::to_string(FramesOf(whole)[3]))) << torn;
    EXPECT_EQ(JsonOf(cut.Do("verify", true))["edits"], 3);
    EXPECT_EQ(cut.Run({"journal", "replay", "site.gpsbook"}).exitCode, 0);
    EXPECT_EQ(cut.Points("Quay"), "P1 P2 P3 P4 P5");
}

TEST(JournalCommand, DamageIsToldWithByteAndWhatToDo) {
    const JournalSite site;
    site.Damage(1);
    const std::string at = std::to_string(FramesOf(site.Journal())[1]);
    const Outcome verify = site.Do("verify");
    EXPECT_EQ(verify.exitCode, 4) << verify;
    EXPECT_TRUE(Says(verify.err, "byte " + at + ": ")) << verify;
    EXPECT_TRUE(Says(verify.err, "checksum")) << verify;
    EXPECT_TRUE(Says(verify.err, "gpsbook journal salvage site.gpsbook")) << verify;
    const Outcome list = site.Do("list", true);
    EXPECT_EQ(list.exitCode, 0) << "it is only looked at" << list;
    const json listed = json::parse(list.out);
    EXPECT_EQ(listed["entries"].size(), 1U);
    EXPECT_EQ(listed["behind_damage"].size(), 2U);
    const Outcome info = site.Run({"info", "site.gpsbook"});
    EXPECT_EQ(info.exitCode, 4) << info;
    EXPECT_TRUE(Says(info.err, "gpsbook journal salvage")) << info;
    EXPECT_TRUE(Says(info.err, "byte " + at)) << info;
    const std::string journal = site.Journal();
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"journal", "replay", "site.gpsbook"}, {"set", "site.gpsbook", "Quay/P1", "code=X"}})
        site.ExpectRefused(arguments, 4, "gpsbook journal salvage");
    EXPECT_TRUE(site.Journal() == journal);
}

TEST(JournalCommand, JournalsOfTwoBooksThatChangedPlacesAreForeign) {
    const JournalSite site;
    const Site other(
        [](gpsproject::Project& project) { project.GetBook().GetGrpAt(0)->SetNomeGrp("Other"); });
    Session(other.Book(), {Coded(0, 0, "OTHER")});
    const std::string its = other.Text("site.gpsbook.journal");
    other.Put("site.gpsbook.journal", site.Journal());
    site.PutJournal(its);
    for (const Site* one : {static_cast<const Site*>(&site), &other}) {
        const Outcome verify = one->Run({"journal", "verify", "site.gpsbook", "--json"});
        EXPECT_EQ(verify.exitCode, 4) << verify;
        EXPECT_EQ(json::parse(verify.out)["tie"], "foreign");
        EXPECT_EQ(json::parse(verify.out)["offset"], 0);
        one->ExpectRefused({"delete", "site.gpsbook", "#0"}, 4, "begun on another save");
        const Outcome shown = one->Run({"show", "site.gpsbook", "#0/#0", "--json"});
        EXPECT_EQ(shown.exitCode, 4) << shown;
        EXPECT_EQ(json::parse(shown.out)["fields"]["code"], "") << "nothing of it is applied";
    }
}

TEST(JournalCommand, FilesThatAreNoJournalAreToldAndKept) {
    for (const std::string& bytes :
         {std::string("this is no journal at all, but longer than a header"), std::string(5000, '\xFF')}) {
        const Site site;
        site.Put("site.gpsbook.journal", bytes);
        const Outcome verify = site.Run({"journal", "verify", "site.gpsbook"});
        EXPECT_EQ(verify.exitCode, 4) << verify;
        EXPECT_TRUE(Says(verify.err, "byte 0")) << verify;
        EXPECT_TRUE(Says(verify.err, "this is no journal, or its header is damaged")) << verify;
        EXPECT_EQ(site.Run({"journal", "list", "site.gpsbook"}).exitCode, 0);
        site.ExpectRefused({"set", "site.gpsbook", "Quay/P1", "code=X"}, 4, "journal salvage");
        const Outcome salvage = site.Run({"journal", "salvage", "site.gpsbook"});
        EXPECT_EQ(salvage.exitCode, 0) << salvage;
        EXPECT_TRUE(site.Text("site.gpsbook.journal.damaged-1") == bytes);
        EXPECT_EQ(site.Run({"set", "site.gpsbook", "Quay/P1", "code=X"}).exitCode, 0);
    }
    for (const std::string& bytes : {std::string(), std::string(100, '\0')}) {
        const Site site;
        site.Put("site.gpsbook.journal", bytes);
        const Outcome verify = site.Run({"journal", "verify", "site.gpsbook", "--json"});
        EXPECT_EQ(verify.exitCode, 0) << verify;
        EXPECT_EQ(json::parse(verify.out)["tie"], "empty");
        EXPECT_EQ(site.Run({"set", "site.gpsbook", "Quay/P1", "code=X"}).exitCode, 0);
    }
}

TEST(JournalCommand, JournalBesideADamagedBookIsListedAllTheSame) {
    const JournalSite site;
    std::string bytes = site.Bytes();
    bytes[bytes.find("P3")] = 'X';
    site.Put("site.gpsbook", bytes);
    for (const char* what : {"list", "verify"}) {
        const Outcome outcome = site.Do(what, true);
        EXPECT_EQ(outcome.exitCode, 4) << outcome;
        EXPECT_EQ(json::parse(outcome.out)["tie"], "unknown");
        EXPECT_TRUE(Says(outcome.err, "bring the book back first")) << outcome;
    }
    EXPECT_EQ(json::parse(site.Do("list", true).out)["entries"].size(), 4U);
    const Outcome salvage = site.Do("salvage");
    EXPECT_EQ(salvage.exitCode, 4) << salvage;
    EXPECT_TRUE(site.Bytes() == bytes && site.HasJournal());
}

TEST(JournalCommand, ReplayBringsBackAndSaves) {
    const JournalSite site;
    const json replay = JsonOf(site.Do("replay", true));
    EXPECT_EQ(replay["edits"], 4);
    EXPECT_EQ(replay["points"], 2);
    EXPECT_EQ(replay["groups"], 1);
    EXPECT_EQ(replay["deleted"], 1);
    EXPECT_FALSE(site.HasJournal());
    EXPECT_EQ(site.Groups(), "Quay Mole");
    EXPECT_EQ(site.Points("Quay"), "P2 P3 P4 P5");
    EXPECT_EQ(site.Field("Quay/P2", "code"), "KERB");
}

TEST(JournalCommand, WhatComesBackIsToldByReadersAndWriters) {
    const JournalSite site;
    const std::string what = "4 edits (1 group stored, 2 points stored, 1 item deleted)";
    const Outcome info = site.Run({"info", "site.gpsbook"});
    EXPECT_EQ(info.exitCode, 0) << info;
    EXPECT_TRUE(Says(info.err, "note: site.gpsbook: " + what)) << info;
    EXPECT_TRUE(site.HasJournal()) << "who reads changes nothing";
    const Outcome set = site.Run({"set", "site.gpsbook", "Quay/P2", "name=N"});
    EXPECT_EQ(set.exitCode, 0) << set;
    EXPECT_TRUE(Says(set.err, "note: site.gpsbook: " + what)) << set;
    EXPECT_FALSE(site.HasJournal());
    EXPECT_EQ(site.Run({"info", "site.gpsbook"}).err, "") << "told once";
}

TEST(JournalCommand, BookThatDoesNotExistIsNotFound) {
    const Site site;
    for (const char* what : {"list", "verify", "replay", "salvage"})
        site.ExpectRefused({"journal", what, "none.gpsbook"}, 5, "none.gpsbook");
    EXPECT_EQ(site.Run({"journal"}).exitCode, 2);
    EXPECT_EQ(site.Run({"journal", "list"}).exitCode, 2);
}

TEST(JournalCommand, BookThatIsBeingWrittenIsListedButNotReplayed) {
    const JournalSite site;
    const auto other = gpsproject::Project::Open(site.Book(), gpsproject::Project::Mode::write);
    EXPECT_EQ(site.Do("list").exitCode, 0);
    EXPECT_EQ(site.Do("replay").exitCode, 3);
    EXPECT_EQ(site.Do("salvage").exitCode, 3);
}

}  // namespace
}  // namespace gpsbook::test
