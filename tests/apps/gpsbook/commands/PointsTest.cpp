// gpsbook points: points of a group into a file, and out of one.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/apps/gpsbook/book/ExchangeSample.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using gpsproject::Project;
using nlohmann::json;
using ::test::Bytes;
using ::test::Dump;
using ::test::ExchangeHead;

/// A book that a cloud knows, with two points whose every field has a value.
struct CloudSite : Site {
    CloudSite()
        : Site([](Project& project) {
              for (const int p : {1, 2}) {
                  ::test::FillGoldenPoint(*project.GetBook().GetPunAt(0, p));
                  project.GetBook().GetPunAt(0, p)->SetCloudId(77);
              }
          }) {}
};

/// Points that only have names, as a file.
std::string Named(std::initializer_list<const char*> names) {
    Bytes bytes = ExchangeHead(static_cast<std::int32_t>(names.size()));
    for (const char* name : names) {
        CPunGps point(nullptr, false, nullptr);
        point.SetNome(name);
        bytes.Raw(::test::Saved(point, 1400, true));
    }
    return bytes.I32(0);
}

TEST(Points, FileHoldsHeadRecordsWithoutCloudStateAndZero) {
    const CloudSite site;
    const Outcome outcome = site.Run(
        {"points", "save", "site.gpsbook", "p.fcp", "--group", "Quay", "--first", "1", "--last", "3"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "p.fcp: 2 points of group Quay\n");
    const std::string point = SamplePoint();
    EXPECT_EQ(Dump(site.Text("p.fcp")), Dump(ExchangeHead(2).Raw(point).Raw(point).I32(0).Get()));
}

TEST(Points, RangeOfNothingIs22Bytes) {
    const Site site;
    ASSERT_EQ(site.Run({"points", "save", "site.gpsbook", "p.fcp", "--group", "#1", "--first", "2"}).exitCode,
              0);
    EXPECT_EQ(Dump(site.Text("p.fcp")),
              Dump(Bytes().Hex("3a01010000 03000000 464350 7805 00000000 00000000").Get()));
}

TEST(Points, SavedPointsCanBeLoadedIntoAnotherBook) {
    const Site site;
    const json saved =
        JsonOf(site.Run({"points", "save", "site.gpsbook", "p.fcp", "--group", "Quay", "--json"}));
    EXPECT_EQ(saved, (json{{"book", "site.gpsbook"},
                           {"file", "p.fcp"},
                           {"group", 0},
                           {"first", 0},
                           {"last", 4},
                           {"points", 4},
                           {"result", 0},
                           {"resultText", "done"}}));
    ASSERT_EQ(site.Run({"new", "other.gpsbook", "--crs", "EPSG:32633"}).exitCode, 0);
    ASSERT_EQ(site.Run({"add", "other.gpsbook", "name=Quay"}).exitCode, 0);
    const Outcome load = site.Run({"points", "load", "other", "p.fcp", "--group", "Quay", "--after", "-1"});
    EXPECT_EQ(load.exitCode, 0) << load;
    EXPECT_EQ(load.out, "4 points loaded into group Quay, from #0 on\n");
    EXPECT_EQ(load.err, "");
    EXPECT_EQ(site.Run({"export", "other.gpsbook"}).out, site.Run({"export", "site.gpsbook", "Quay"}).out);
}

TEST(Points, LoadedPointsStandBehindThePosition) {
    const Site site;
    site.Put("p.fcp", Named({"X", "Y"}));
    const auto load = [&](const char* after) {
        return site.Run({"points", "load", "site.gpsbook", "p.fcp", "--group", "Pier", "--after", after});
    };
    EXPECT_EQ(load("0").out, "2 points loaded into group Pier, from #1 on\n");
    EXPECT_EQ(site.Points("Pier"), "A X Y B");
    EXPECT_EQ(load("-1").out, "2 points loaded into group Pier, from #0 on\n");
    EXPECT_EQ(load("#5").out, "2 points loaded into group Pier, from #6 on\n");
    EXPECT_EQ(site.Points("Pier"), "X Y A X Y B X Y");
    site.Put("p.fcp", Named({"Z"}));
    EXPECT_EQ(load("7").out, "1 point loaded into group Pier, to #8\n");
}

TEST(Points, TryingLoadsNothing) {
    const Site site;
    site.Put("p.fcp", Named({"X", "Y"}));
    const std::string bytes = site.Bytes();
    const std::vector<std::string> arguments{"points",  "load", "site.gpsbook", "p.fcp", "--group", "Pier",
                                             "--after", "0",    "--dry-run"};
    const Outcome outcome = site.Run(arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "2 points would be loaded into group Pier, from #1 on\n");
    std::vector<std::string> asJson = arguments;
    asJson.emplace_back("--json");
    EXPECT_EQ(JsonOf(site.Run(asJson)), (json{{"book", "site.gpsbook"},
                                              {"file", "p.fcp"},
                                              {"group", 1},
                                              {"saved", false},
                                              {"first", 1},
                                              {"points", 2},
                                              {"version", 1400},
                                              {"without_plane", 2},
                                              {"lost_plane", 0},
                                              {"lost_fix", 0},
                                              {"result", 0},
                                              {"resultText", "done"}}));
    EXPECT_TRUE(site.Bytes() == bytes);
}

TEST(Points, EmptyFileLeavesTheBookAsItWas) {
    const Site site;
    site.Put("p.fcp", Named({}));
    const std::string bytes = site.Bytes();
    const Outcome outcome =
        site.Run({"points", "load", "site.gpsbook", "p.fcp", "--group", "Pier", "--after", "0"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "nothing loaded into group Pier\n");
    EXPECT_TRUE(site.Bytes() == bytes);
}

TEST(Points, FixesFollowFromPlaneCoordinatesWhereItIsAskedFor) {
    const Site site;
    CPunGps plane(nullptr, false, nullptr);
    plane.SetNome("X");
    plane.SetCoord(500000, 5000000, 100);  // on the central meridian, 15 degrees
    plane.SetAltAnt(2);
    site.Put("p.fcp", ExchangeHead(1).Raw(::test::Saved(plane, 1400, true)).I32(0));
    const Outcome outcome = site.Run(
        {"points", "load", "site.gpsbook", "p.fcp", "--group", "Quay", "--after", "3", "--from-plane"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NEAR(site.Field("Quay/X", "lon").get<double>(), 15, 1e-9);
    EXPECT_NEAR(site.Field("Quay/X", "h").get<double>(), 102, 1e-6);
}

TEST(Points, PointWithoutPlaneCoordinatesIsLoadedAndTold) {
    const Site site;
    site.Put("p.fcp", Named({"X"}));
    const std::vector<std::string> arguments{"points",  "load", "site.gpsbook", "p.fcp", "--group", "Quay",
                                             "--after", "0",    "--from-plane"};
    const Outcome outcome = site.Run(arguments);
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_NE(outcome.err.find("p.fcp: a point has no plane coordinates (result 4)"), std::string::npos)
        << outcome;
    EXPECT_NE(outcome.err.find("The book is saved"), std::string::npos) << outcome;
    EXPECT_EQ(site.Points("Quay"), "P1 X P2 P3 P4");
    std::vector<std::string> asJson = arguments;
    asJson.emplace_back("--json");
    const json told = json::parse(site.Run(asJson).out);
    EXPECT_EQ(told["result"], 4);
    EXPECT_EQ(told["resultText"], "a point has no plane coordinates");
    EXPECT_EQ(told["saved"], true);
}

TEST(Points, PlaneCoordinatesThatGetLostAreTold) {
    const Site site;
    ASSERT_EQ(site.Run({"points", "save", "site.gpsbook", "p.fcp", "--group", "Quay"}).exitCode, 0);
    const Outcome outcome =
        site.Run({"points", "load", "site.gpsbook", "p.fcp", "--group", "Pier", "--after", "-1"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("note: plane coordinates that the file has are lost for 4 points"),
              std::string::npos)
        << outcome;
}

TEST(Points, DamagedFileIsRefusedWithItsPlace) {
    const Site site;
    site.Put("p.fcp", ExchangeHead(2).Raw(SamplePoint()).Raw(SamplePoint().substr(0, 50)));
    const std::string problem = ", point 1: the record wants more from here on than there is";
    site.ExpectRefused({"points", "load", "site.gpsbook", "p.fcp", "--group", "Quay", "--after", "0"}, 4,
                       problem);
    const Outcome forced =
        site.Run({"points", "load", "site.gpsbook", "p.fcp", "--group", "Quay", "--after", "0", "--force"});
    EXPECT_EQ(forced.exitCode, 0) << forced;
    EXPECT_NE(forced.err.find("warning: the file is damaged: byte "), std::string::npos) << forced;
    EXPECT_NE(forced.err.find(problem), std::string::npos) << forced;
    EXPECT_EQ(site.Points("Quay"), "P1 P1 P1 P2 P3 P4");
}

TEST(Points, ForcedFileOfARangeThatDoesNotExistSaysSo) {
    const Site site;
    const Outcome outcome =
        site.Run({"points", "save", "site.gpsbook", "p.fcp", "--group", "Quay", "--last", "6", "--force"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "p.fcp: 4 points of group Quay\n");
    EXPECT_EQ(outcome.err,
              "note: p.fcp: promises 6 points and holds 4; gpsbook points load takes it only with --force\n");
    EXPECT_EQ(Dump(site.Text("p.fcp").substr(0, 18)), Dump(ExchangeHead(6).Get()));
    site.ExpectRefused({"points", "load", "site.gpsbook", "p.fcp", "--group", "Pier", "--after", "0"}, 4,
                       "point 4: the record wants more");
}

TEST(Points, ForcedPlaceThatDoesNotExistGivesItsResult) {
    const Site site;
    site.Put("p.fcp", Named({"X", "Y"}));
    const Outcome outcome = site.Run(
        {"points", "load", "site.gpsbook", "p.fcp", "--group", "Pier", "--after", "-2", "--force", "--json"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    const json told = json::parse(outcome.out);
    EXPECT_EQ(told["result"], 3);
    EXPECT_EQ(told["resultText"], "a group or point found no place");
    EXPECT_EQ(told["points"], 1);
    EXPECT_EQ(site.Points("Pier"), "X A B");
    const Outcome nothing =
        site.Run({"points", "load", "site.gpsbook", "p.fcp", "--group", "Pier", "--after", "9", "--force"});
    EXPECT_EQ(nothing.exitCode, 3) << nothing;
    EXPECT_NE(nothing.err.find("Nothing is saved"), std::string::npos) << nothing;
}

TEST(Points, JournalOfALoadIsGoneWithItsSave) {
    const Site site;
    site.Put("p.fcp", Named({"X"}));
    ASSERT_EQ(
        site.Run({"points", "load", "site.gpsbook", "p.fcp", "--group", "Pier", "--after", "0"}).exitCode, 0);
    EXPECT_EQ(site.Names(), (std::vector<std::string>{"p.fcp", "site.gpsbook", "site.gpsbook.bak"}));
}

TEST(Points, WhatCannotBeIsRefusedAndNothingIsWritten) {
    const Site site;
    site.Put("p.fcp", Named({"X"}));
    site.Put("groups.fcg", SampleFile(ExchangeKind::groups));
    site.Put("text.txt", "no such file at all, but a text of some length\n");
    ASSERT_EQ(::mkdir(site.Path("folder").c_str(), 0700), 0);
    struct Row {
        std::vector<std::string> arguments;
        int code;
        const char* words;
    };
    const std::string book = "site.gpsbook";
    const Row rows[] = {
        {{}, 2, "required"},
        {{"save", book, "q.fcp"}, 2, "--group is required"},
        {{"save", book, "q.fcp", "--group", "Dam"}, 5, "there is no group \"Dam\""},
        {{"save", book, "q.fcp", "--group", "Quay/P1"}, 2, "Quay/P1"},
        {{"save", "gone", "q.fcp", "--group", "Quay"}, 5, "gone"},
        {{"save", book, "p.fcp", "--group", "Quay"}, 1, "p.fcp: exists already; use --overwrite"},
        {{"save", book, "none/q.fcp", "--group", "Quay"}, 1, "the folder none does not exist"},
        {{"save", book, "folder", "--group", "Quay"}, 1, "is a folder"},
        {{"save", book, book, "--group", "Quay", "--overwrite"}, 2, "is the book itself"},
        {{"save", book, "q.fcp", "--group", "Quay", "--last", "5"},
         2,
         "--last: 5 is too much, give 0 to 4; group Quay has 4 points"},
        {{"save", book, "q.fcp", "--group", "Quay", "--first", "-1"}, 2, "--first: -1 is no position here"},
        {{"save", book, "q.fcp", "--group", "Quay", "--first", "3", "--last", "1"},
         2,
         "--last: 1 stands before --first 3"},
        {{"save", book, "q.fcp", "--group", "Quay", "--first", "x"}, 2, "--first: \"x\" is no position"},
        {{"save", book, "q.fcp", "--group", "Quay", "--last", "99999999999"}, 2, "is no position"},
        {{"save", book, "q.fcp", "--group", "Quay", "--last", "2000000", "--force"},
         2,
         "even with --force it can be 1000000 at most"},
        {{"load", book, "p.fcp", "--group", "Quay"}, 2, "--after is required"},
        {{"load", book, "p.fcp", "--after", "0"}, 2, "--group is required"},
        {{"load", book, "gone.fcp", "--group", "Quay", "--after", "0"}, 5, "gone.fcp: there is no such file"},
        {{"load", "gone", "p.fcp", "--group", "Quay", "--after", "0"}, 5, "gone"},
        {{"load", book, "p.fcp", "--group", "Dam", "--after", "0"}, 5, "there is no group \"Dam\""},
        {{"load", book, "p.fcp", "--group", "Quay", "--after", "4"},
         2,
         "--after: 4 is no position here, group Quay has 4 points; give -1 to 3"},
        {{"load", book, "p.fcp", "--group", "Quay", "--after", "-2"}, 2, "--after: -2"},
        {{"load", book, "folder", "--group", "Quay", "--after", "0"}, 4, "folder: is no ordinary file"},
        {{"load", book, "text.txt", "--group", "Quay", "--after", "0"},
         4,
         "text.txt: byte 0: it does not begin as an exchange file; nothing is loaded"},
        {{"load", book, "groups.fcg", "--group", "Quay", "--after", "0"},
         4,
         "it is a file of groups: gpsbook groups load reads it"},
        {{"load", book, book, "--group", "Quay", "--after", "0", "--force"}, 2, "is the book itself"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> arguments{"points"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        site.ExpectRefused(arguments, row.code, row.words);
    }
}

TEST(Points, FileThatExistsIsReplacedOnlyWhenAsked) {
    const Site site;
    site.Put("p.fcp", "before");
    ASSERT_EQ(site.Run({"points", "save", "site.gpsbook", "p.fcp", "--group", "Quay"}).exitCode, 1);
    EXPECT_EQ(site.Text("p.fcp"), "before");
    ASSERT_EQ(
        site.Run({"points", "save", "site.gpsbook", "p.fcp", "--group", "Quay", "--overwrite"}).exitCode, 0);
    EXPECT_EQ(Dump(site.Text("p.fcp").substr(0, 18)), Dump(ExchangeHead(4).Get()));
}

TEST(Points, DamagedBookIsNotHandedOn) {
    const Site site;
    std::string bytes = site.Bytes();
    bytes[bytes.find("P3")] = 'X';
    site.Put("site.gpsbook", bytes);
    site.Put("p.fcp", Named({"X"}));
    const Outcome save = site.Run({"points", "save", "site.gpsbook", "q.fcp", "--group", "#0"});
    EXPECT_EQ(save.exitCode, 4) << save;
    const Outcome load =
        site.Run({"points", "load", "site.gpsbook", "p.fcp", "--group", "#0", "--after", "-1"});
    EXPECT_EQ(load.exitCode, 4) << load;
    EXPECT_EQ(site.Names(), (std::vector<std::string>{"p.fcp", "site.gpsbook"}));
    EXPECT_TRUE(site.Bytes() == bytes);
}

}  // namespace
}  // namespace gpsbook::test
