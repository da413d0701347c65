// gpsbook import --live: a log that is still being written.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <thread>

#include "tests/Scale.h"
#include "tests/apps/gpsbook/commands/Logs.h"
#include "tests/apps/gpsbook/commands/Running.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;
using std::chrono::milliseconds;

const std::vector<std::string> kFromPipe{"import", "site.gpsbook", "-", "--live", "--group", "walk"};
const std::vector<std::string> kFromFile{"import", "site.gpsbook", "walk.nmea", "--live"};

/// A new book in UTM zone 33, and an NMEA log of many epochs with dates and precisions.
class LiveSite : public Workplace {
public:
    LiveSite() {
        EXPECT_EQ(Run({"new", "site.gpsbook", "--crs", "EPSG:32633"}).exitCode, 0);
        const Outcome log = Run({"simulate", "--base", "45.65,13.76,60", "--epochs", "300", "--seed", "7"});
        EXPECT_EQ(log.exitCode, 0) << log;
        log_ = log.out;
        EXPECT_EQ(Run({"new", "other.gpsbook", "--crs", "EPSG:32633"}).exitCode, 0);
        Put("walk.nmea", log_);
        EXPECT_EQ(Run({"import", "other.gpsbook", "walk.nmea"}).exitCode, 0);
        wanted_ = TableOf("other.gpsbook");
        EXPECT_EQ(LinesOf(wanted_).size(), 301U);
        std::filesystem::remove(Path("walk.nmea"));
    }

    const std::string& Log() const { return log_; }

    /// The table that a plain import of the whole log makes.
    const std::string& Wanted() const { return wanted_; }

    std::string TableOf(const std::string& book) const {
        const Outcome outcome = Run({"export", book});
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        return outcome.out;
    }
    std::string Table() const { return TableOf("site.gpsbook"); }

    bool HasJournal() const { return std::filesystem::exists(Path("site.gpsbook.journal")); }

    void Append(const std::string& name, const std::string& text) const {
        std::ofstream(Path(name), std::ios::app | std::ios::binary) << text;
    }

private:
    std::string log_, wanted_;
};

/// "GROUP/POINT TIME" of every point that was called stored; a line that is cut is none.
std::vector<std::string> StoredIn(const std::string& out) {
    const std::string word = "stored ";
    std::vector<std::string> stored;
    for (std::size_t at = 0, end = 0; (end = out.find('\n', at)) != std::string::npos; at = end + 1)
        if (out.compare(at, word.size(), word) == 0)
            stored.push_back(out.substr(at + word.size(), end - at - word.size()));
    return stored;
}

std::function<bool(const std::string&)> Stored(std::size_t n) {
    return [n](const std::string& out) { return StoredIn(out).size() >= n; };
}

/// The first lines of a log, as many as there are epochs wanted, and the rest of it.
std::pair<std::string, std::string> SplitBefore(const std::string& log, const std::string& time) {
    const std::size_t at = log.find(time);
    EXPECT_NE(at, std::string::npos);
    const std::size_t line = log.rfind('$', at);
    return {log.substr(0, line), log.substr(line)};
}

TEST(ImportLive, StandardInputGivesWhatAPlainImportGives) {
    const LiveSite site;
    Running run(site, kFromPipe, true);
    run.Feed(site.Log());
    run.CloseInput();
    const Outcome outcome = run.End();
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(site.Table(), site.Wanted());
    EXPECT_FALSE(site.HasJournal()) << "the book is saved at the end";
    const std::vector<std::string> stored = StoredIn(outcome.out);
    ASSERT_EQ(stored.size(), 300U);
    EXPECT_EQ(stored.front(), "walk/P1 2024-05-01T08:00:00.000Z");
    EXPECT_EQ(stored.back(), "walk/P300 2024-05-01T08:04:59.000Z");
    EXPECT_NE(outcome.out.find("300 points added, 300 points in 1 group now\n"), std::string::npos)
        << outcome;
}

TEST(ImportLive, EpochIsStoredAndToldWhenTheNextOneBegins) {
    const LiveSite site;
    const auto [first, rest] = SplitBefore(site.Log(), "GGA,080003.");
    Running run(site, kFromPipe, true);
    run.Feed(first + rest.substr(0, rest.find('\n') + 1));
    run.WaitFor(Stored(3));
    EXPECT_EQ(StoredIn(run.Out()).size(), 3U) << "the fourth may not be complete";
    EXPECT_TRUE(site.HasJournal());
    const Outcome list = site.Run({"info", "site.gpsbook", "--json"});
    EXPECT_EQ(JsonOf(list)["points"], 3) << "a reader sees what is stored";
    EXPECT_NE(list.err.find("3 edits (1 group stored, 3 points stored)"), std::string::npos) << list;
    run.CloseInput();
    EXPECT_EQ(run.End().exitCode, 0);
    EXPECT_EQ(LinesOf(site.Table()).size(), 5U);
}

// Somebody takes the files beside the book for leftovers.
TEST(ImportLive, JournalThatIsTakenAwayEndsTheImportAndEverythingIsSaved) {
    const LiveSite site;
    const auto [first, rest] = SplitBefore(site.Log(), "GGA,080200.");
    Running run(site, kFromPipe, true);
    run.Feed(first);
    run.WaitFor(Stored(100));
    std::filesystem::remove(site.Path("site.gpsbook.journal"));
    run.Feed(rest);
    run.CloseInput();
    const Outcome outcome = run.End();
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_NE(outcome.err.find("site.gpsbook is saved all the same"), std::string::npos) << outcome;
    const std::string table = site.Table();
    for (const std::string& stored : StoredIn(outcome.out)) {
        const std::string name = stored.substr(stored.find('/') + 1, stored.find(' ') - stored.find('/') - 1);
        EXPECT_NE(table.find("," + name + ","), std::string::npos) << stored;
    }
}

TEST(ImportLive, BookThatAnotherProgramChangedIsSavedUnderAnotherName) {
    const LiveSite site;
    const auto [first, rest] = SplitBefore(site.Log(), "GGA,080200.");
    Running run(site, kFromPipe, true);
    run.Feed(first);
    run.WaitFor(Stored(100));
    // Without the lock another program takes the journal in, and the book is another one.
    std::filesystem::remove(site.Path("site.gpsbook.lock"));
    EXPECT_EQ(site.Run({"add", "site.gpsbook", "name=Other"}).exitCode, 0);
    run.Feed(rest);
    run.CloseInput();
    const Outcome outcome = run.End();
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_NE(outcome.err.find("is saved as "), std::string::npos) << outcome;
    const std::string both = site.Table() + site.TableOf("site-live-1.gpsbook");
    for (const std::string& stored : StoredIn(outcome.out)) {
        const std::string name = stored.substr(stored.find('/') + 1, stored.find(' ') - stored.find('/') - 1);
        EXPECT_NE(both.find("," + name + ","), std::string::npos) << stored;
    }
}

TEST(ImportLive, GrowingFileIsFollowedUntilItIsInterrupted) {
    const LiveSite site;
    const auto [first, rest] = SplitBefore(site.Log(), "GGA,080100.");
    const auto [second, third] = SplitBefore(rest, "GGA,080200.");
    for (const int signal : {SIGINT, SIGTERM}) {
        site.Run({"new", "site.gpsbook", "--crs", "EPSG:32633", "--overwrite"});
        site.Put("walk.nmea", first.substr(0, first.size() - 7));
        Running run(site, kFromFile, false);
        run.WaitFor(Stored(59));
        site.Append("walk.nmea", first.substr(first.size() - 7) + second);
        run.WaitFor(Stored(119));
        site.Append("walk.nmea", third);
        run.WaitFor(Stored(299));
        run.Signal(signal);
        const Outcome outcome = run.End();
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        EXPECT_EQ(StoredIn(outcome.out).size(), 300U) << "the last one ends with the log";
        EXPECT_FALSE(site.HasJournal());
        EXPECT_EQ(site.Table(), site.Wanted());
    }
}

TEST(ImportLive, FileThatDoesNotGrowAnyMoreEndsAfterIdle) {
    const LiveSite site;
    site.Put("walk.nmea", site.Log());
    auto arguments = kFromFile;
    arguments.insert(arguments.end(), {"--idle", "0.3"});
    const auto begin = std::chrono::steady_clock::now();
    const Outcome outcome = site.Run(arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(300));
    EXPECT_EQ(site.Table(), site.Wanted());
}

TEST(ImportLive, JsonIsOneObjectALine) {
    const LiveSite site;
    const std::string log = site.Log().substr(0, site.Log().find("$GNRMC,080002"));
    auto arguments = kFromPipe;
    arguments.insert(arguments.end(), {"--json", "--each"});
    Surroundings around;
    around.input = SplitBefore(site.Log(), "GGA,080002.").first;
    const Outcome outcome = site.Run(arguments, around);
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    const std::vector<std::string> lines = LinesOf(outcome.out);
    ASSERT_EQ(lines.size(), 3U) << outcome;
    EXPECT_EQ(json::parse(lines[0]), json::parse(R"({"stored":{"group":"walk","point":"P1","index":0,)"
                                                 R"("time":"2024-05-01T08:00:00.000Z"}})"));
    EXPECT_EQ(json::parse(lines[1])["stored"]["point"], "P2");
    const json summary = json::parse(lines[2])["imported"];
    EXPECT_EQ(summary["points"], 2);
    EXPECT_EQ(summary["groups"][0]["new"], true);
}

TEST(ImportLive, SameCommandStartedAgainGoesOn) {
    const LiveSite site;
    const auto [first, rest] = SplitBefore(site.Log(), "GGA,080130.");
    auto arguments = kFromFile;
    arguments.insert(arguments.end(), {"--idle", "0.1", "--crs", "EPSG:32633", "--start", "1"});
    site.Put("walk.nmea", first);
    EXPECT_EQ(site.Run(arguments).exitCode, 0);
    site.Append("walk.nmea", rest);
    const Outcome again = site.Run(arguments);
    EXPECT_EQ(again.exitCode, 0) << again;
    EXPECT_EQ(StoredIn(again.out).size(), 210U);
    EXPECT_NE(again.out.find("  90 epochs left out: "), std::string::npos) << again;
    EXPECT_EQ(site.Table(), site.Wanted());
    const Outcome third = site.Run(arguments);
    EXPECT_EQ(third.exitCode, 0) << third;
    EXPECT_NE(third.out.find("nothing to add, 300 points in 1 group now"), std::string::npos) << third;
    EXPECT_EQ(site.Table(), site.Wanted());
}

TEST(ImportLive, BaseOfAPosLogIsStoredWithItsFirstPoint) {
    const LiveSite site;
    const std::string log =
        PosFile("lat/lon/height=WGS84/ellipsoidal", "latitude(deg) longitude(deg)  height(m)",
                "45.650000000 13.760000000   60.0000",
                "2018/10/04 12:00:00.000   45.650100000   13.760100000    61.5000   1   9   0.0010   "
                "0.0020   0.0030   0.0000   0.0000   0.0000   0.00    0.0\n");
    site.Put("a.pos", log);
    {
        Running run(site, {"import", "site.gpsbook", "a.pos", "--live"}, false);
        run.WaitFor(Stored(1));
        run.Signal(SIGKILL);
        EXPECT_EQ(run.End().exitCode, -1);
    }
    EXPECT_EQ(site.Run({"import", "other.gpsbook", "a.pos"}).exitCode, 0);
    json live = JsonOf(site.Run({"show", "site.gpsbook", "a", "--json"}));
    json plain = JsonOf(site.Run({"show", "other.gpsbook", "a", "--json"}));
    EXPECT_FALSE(live["fields"]["base_lat"].is_null());
    for (json* group : {&live, &plain}) group->erase("group");
    EXPECT_EQ(live, plain);
}

TEST(ImportLive, KilledAtAnyMomentKeepsWhatWasCalledStoredAndGoesOn) {
    const LiveSite site;
    const std::vector<std::string> wanted = LinesOf(site.Wanted());
    std::map<std::string, std::string> byTime;  // rows without group and name
    for (const auto& row : RowsOf(site.Wanted())) byTime[row.at("time")] = row.at("lat") + row.at("east");
    std::mt19937 random(20240501);
    const std::string fresh = site.Text("site.gpsbook");
    const long rounds = Scaled(300);
    std::size_t told = 0, cutShort = 0;
    for (long i = 0; i < rounds; ++i) {
        for (const std::string& name : site.Names())
            if (name.starts_with("site.gpsbook")) std::filesystem::remove(site.Path(name));
        site.Put("site.gpsbook", fresh);
        std::filesystem::remove(site.Path("walk.nmea"));
        const bool pipe = random() % 2 == 0;
        std::vector<std::string> arguments = pipe ? kFromPipe : kFromFile;
        if (random() % 2 == 0) arguments.push_back("--each");
        if (!pipe) site.Put("walk.nmea", "");
        const auto moment = std::chrono::microseconds(20'000 + random() % 130'000);
        std::vector<std::string> stored;
        {
            Running run(site, arguments, pipe);
            // It comes in pieces, so that there is something to wait for now and then.
            std::jthread feeder([&, pace = random() % 4, piece = 200 + random() % 4000] {
                const auto end = std::chrono::steady_clock::now() + moment;
                for (std::size_t at = 0; at < site.Log().size() && std::chrono::steady_clock::now() < end;
                     at += piece) {
                    if (pipe)
                        run.Feed(site.Log().substr(at, piece));
                    else
                        site.Append("walk.nmea", site.Log().substr(at, piece));
                    std::this_thread::sleep_for(milliseconds(pace));
                }
            });
            std::this_thread::sleep_for(moment);
            run.Signal(SIGKILL);
            const Outcome killed = run.End();
            ASSERT_EQ(killed.exitCode, -1) << killed;
            feeder.join();
            stored = StoredIn(killed.out);
        }
        told += stored.size();
        if (!stored.empty() && stored.size() < 300) ++cutShort;
        const Outcome table = site.Run({"export", "site.gpsbook"});
        ASSERT_EQ(table.exitCode, 0) << table;
        std::set<std::string> there, times;
        for (const auto& row : RowsOf(table.out)) {
            there.insert(row.at("group") + "/" + row.at("name") + " " + row.at("time"));
            EXPECT_TRUE(times.insert(row.at("time")).second) << "twice: " << row.at("time");
            EXPECT_EQ(byTime[row.at("time")], row.at("lat") + row.at("east"));
        }
        for (const std::string& point : stored) EXPECT_TRUE(there.contains(point)) << point;
        ASSERT_FALSE(HasFailure()) << "round " << i;
        // The same log again, whole.
        site.Put("walk.nmea", site.Log());
        std::vector<std::string> again = kFromFile;
        again.insert(again.end(), {"--idle", "0.001"});
        const Outcome rest = site.Run(again);
        ASSERT_EQ(rest.exitCode, 0) << rest;
        ASSERT_EQ(site.Table(), site.Wanted()) << "round " << i;
    }
    EXPECT_GT(told, 0U);
    EXPECT_GT(cutShort, 0U) << "no moment was in the midst of it";
}

TEST(ImportLive, FullDiskEndsItAndWhatWasStoredStays) {
    const LiveSite site;
    Running run(site, kFromPipe, true, 20'000);
    run.Feed(site.Log());
    run.CloseInput();
    const Outcome outcome = run.End();
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_NE(outcome.err.find("its journal cannot be written"), std::string::npos) << outcome;
    EXPECT_NE(outcome.err.find("what was told to be stored is in the journal"), std::string::npos) << outcome;
    const std::vector<std::string> stored = StoredIn(outcome.out);
    EXPECT_GT(stored.size(), 0U);
    EXPECT_LT(stored.size(), 300U);
    std::set<std::string> there;
    for (const auto& row : RowsOf(site.Table()))
        there.insert("walk/" + row.at("name") + " " + row.at("time"));
    for (const std::string& point : stored) EXPECT_TRUE(there.contains(point)) << point;
}

TEST(ImportLive, LogThatBecomesShorterEndsItAndTheBookIsSaved) {
    const LiveSite site;
    site.Put("walk.nmea", SplitBefore(site.Log(), "GGA,080010.").first);
    Running run(site, kFromFile, false);
    run.WaitFor(Stored(9));
    site.Put("walk.nmea", "$GP");
    const Outcome outcome = run.End();
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_NE(outcome.err.find("walk.nmea: has become shorter"), std::string::npos) << outcome;
    EXPECT_FALSE(site.HasJournal());
    EXPECT_GE(LinesOf(site.Table()).size(), 10U);
}

TEST(ImportLive, LogThatIsNoneLeavesTheBookAsItWas) {
    const LiveSite site;
    const std::string before = site.Text("site.gpsbook");
    Surroundings around;
    around.input = "nothing that is measured\n";
    const Outcome outcome = site.Run(kFromPipe, around);
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_NE(outcome.err.find("no usable epoch"), std::string::npos) << outcome;
    EXPECT_TRUE(site.Text("site.gpsbook") == before);
    EXPECT_FALSE(site.HasJournal());
}

TEST(ImportLive, OptionsThatDoNotGoTogetherAreRefused) {
    const LiveSite site;
    site.Put("walk.nmea", site.Log());
    site.Put("b.nmea", site.Log());
    const std::vector<std::vector<std::string>> wrong{
        {"import", "site.gpsbook", "walk.nmea", "b.nmea", "--live"},
        {"import", "site.gpsbook", "walk.nmea", "--each"},
        {"import", "site.gpsbook", "walk.nmea", "--idle", "3"},
        {"import", "site.gpsbook", "walk.nmea", "--live", "--idle", "0"},
        {"import", "site.gpsbook", "walk.nmea", "--live", "--idle", "soon"}};
    for (const auto& arguments : wrong) EXPECT_EQ(site.Run(arguments).exitCode, 2) << arguments.back();
    EXPECT_EQ(site.Run({"import", "site.gpsbook", "none.nmea", "--live"}).exitCode, 5);
    EXPECT_EQ(site.Run({"import", "site.gpsbook", "walk.nmea"}).exitCode, 0);
    const Outcome other = site.Run({"import", "site.gpsbook", "walk.nmea", "--live", "--crs", "EPSG:32632"});
    EXPECT_EQ(other.exitCode, 2) << other;
    EXPECT_NE(other.err.find("has another system"), std::string::npos) << other;
}

}  // namespace
}  // namespace gpsbook::test
