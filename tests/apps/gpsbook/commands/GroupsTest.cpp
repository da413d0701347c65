// gpsbook groups: groups with their points into a file, and out of one.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/book/ExchangeSample.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using gpsproject::Project;
using nlohmann::json;
using ::test::Dump;
using ::test::ExchangeHead;

TEST(Groups, FileHoldsEachGroupWithItsPointsAndNoCloudState) {
    const Site site([](Project& project) {
        CLibGps& book = project.GetBook();
        ::test::FillGoldenGroup(*book.GetGrpAt(1));
        book.GetGrpAt(1)->SetCloudId(5);
        ::test::FillGoldenPoint(*book.GetPunAt(1, 0));
        ::test::FillGoldenPoint(*book.GetPunAt(1, 1));
        book.AddGrp(false)->SetNomeGrp("last");
    });
    const Outcome outcome =
        site.Run({"groups", "save", "site.gpsbook", "g.fcg", "--first", "1", "--last", "2"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "g.fcg: 1 group with 2 points\n");
    const std::string point = SamplePoint();
    EXPECT_EQ(Dump(site.Text("g.fcg")),
              Dump(ExchangeHead(1).Raw(SampleGroup()).I32(2).Raw(point).Raw(point).I32(0).Get()));
}

TEST(Groups, SavedGroupsCanBeLoadedIntoAnotherBook) {
    const Site site;
    EXPECT_EQ(JsonOf(site.Run({"groups", "save", "site.gpsbook", "g.fcg", "--json"})),
              (json{{"book", "site.gpsbook"},
                    {"file", "g.fcg"},
                    {"first", 0},
                    {"last", 2},
                    {"groups", 2},
                    {"points", 6},
                    {"result", 0},
                    {"resultText", "done"}}));
    ASSERT_EQ(site.Run({"new", "other.gpsbook", "--crs", "EPSG:32633"}).exitCode, 0);
    EXPECT_EQ(JsonOf(site.Run({"groups", "load", "other", "g.fcg", "--after", "-1", "--json"})),
              (json{{"book", "other.gpsbook"},
                    {"file", "g.fcg"},
                    {"saved", true},
                    {"first", 0},
                    {"groups", 2},
                    {"other_datums", 0},
                    {"points", 6},
                    {"version", 1400},
                    {"without_plane", 2},
                    {"lost_plane", 0},
                    {"lost_fix", 0},
                    {"result", 0},
                    {"resultText", "done"}}));
    EXPECT_EQ(site.Run({"export", "other.gpsbook"}).out, site.Run({"export", "site.gpsbook"}).out);
}

TEST(Groups, LoadedGroupsStandBehindThePosition) {
    const Site site;
    ASSERT_EQ(site.Run({"groups", "save", "site.gpsbook", "g.fcg", "--last", "1"}).exitCode, 0);
    const Outcome outcome = site.Run({"groups", "load", "site.gpsbook", "g.fcg", "--after", "0"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "1 group with 4 points loaded, to #1\n");
    EXPECT_EQ(site.Groups(), "Quay Quay Pier");
    ASSERT_EQ(site.Run({"groups", "save", "site.gpsbook", "g.fcg", "--overwrite"}).exitCode, 0);
    EXPECT_EQ(site.Run({"groups", "load", "site.gpsbook", "g.fcg", "--after", "2", "--dry-run"}).out,
              "3 groups with 10 points would be loaded, from #3 on\n");
    EXPECT_EQ(site.Groups(), "Quay Quay Pier");
    EXPECT_EQ(site.Run({"groups", "load", "site.gpsbook", "g.fcg", "--after", "-1"}).exitCode, 0);
    EXPECT_EQ(site.Groups(), "Quay Quay Pier Quay Quay Pier");
}

TEST(Groups, ForcedModeLoadsNothingAndIsDone) {
    const Site site;
    const std::string bytes = site.Bytes();
    ASSERT_EQ(site.Run({"groups", "save", "site.gpsbook", "g.fcg"}).exitCode, 0);
    const json told = JsonOf(site.Run(
        {"groups", "load", "site.gpsbook", "g.fcg", "--after", "0", "--mode", "1", "--force", "--json"}));
    EXPECT_EQ(told["result"], 0);
    EXPECT_EQ(told["groups"], 0);
    EXPECT_EQ(told["saved"], false);
    EXPECT_TRUE(site.Bytes() == bytes);
    EXPECT_EQ(site.Run({"groups", "load", "site.gpsbook", "g.fcg", "--after", "0", "--mode", "0"}).out,
              "2 groups with 6 points loaded, from #1 on\n");
}

TEST(Groups, DamagedFileIsRefusedWithItsPlace) {
    const Site site;
    const std::string group = SampleGroup(), point = SamplePoint();
    site.Put("g.fcg", ExchangeHead(2).Raw(group).I32(2).Raw(point).I32(0));
    const std::string place =
        "g.fcg: byte " + std::to_string(18 + group.size() + 4 + point.size() + 4) + ", group 0, point 1: ";
    site.ExpectRefused({"groups", "load", "site.gpsbook", "g.fcg", "--after", "0"}, 4, place);
    const Outcome forced = site.Run({"groups", "load", "site.gpsbook", "g.fcg", "--after", "0", "--force"});
    EXPECT_EQ(forced.exitCode, 0) << forced;
    EXPECT_NE(forced.err.find("warning: the file is damaged"), std::string::npos) << forced;
    EXPECT_EQ(forced.out, "2 groups with 2 points loaded, from #1 on\n");
}

TEST(Groups, WhatCannotBeIsRefusedAndNothingIsWritten) {
    const Site site;
    site.Put("g.fcg", SampleFile(ExchangeKind::groups));
    site.Put("p.fcp", SampleFile(ExchangeKind::points));
    struct Row {
        std::vector<std::string> arguments;
        int code;
        const char* words;
    };
    const std::string book = "site.gpsbook";
    const Row rows[] = {
        {{}, 2, "required"},
        {{"save", book}, 2, "FILE is required"},
        {{"save", "gone", "h.fcg"}, 5, "gone"},
        {{"save", book, "g.fcg"}, 1, "g.fcg: exists already; use --overwrite"},
        {{"save", book, book, "--overwrite"}, 2, "is the book itself"},
        {{"save", book, "h.fcg", "--last", "3"},
         2,
         "--last: 3 is too much, give 0 to 2; the book has 2 groups"},
        {{"save", book, "h.fcg", "--first", "3"}, 2, "--first: 3 is no position here, give 0 to 2"},
        {{"save", book, "h.fcg", "--group", "Quay"}, 2, "--group"},
        {{"load", book, "g.fcg"}, 2, "--after is required"},
        {{"load", book, "g.fcg", "--after", "2"},
         2,
         "--after: 2 is no position here, the book has 2 groups; give -1 to 1"},
        {{"load", book, "g.fcg", "--after", "0", "--mode", "1"}, 2, "--mode: 1 loads nothing"},
        {{"load", book, "g.fcg", "--after", "0", "--mode", "40000"}, 2, "--mode: \"40000\" is no mode"},
        {{"load", book, "g.fcg", "--after", "0", "--mode", "x"}, 2, "--mode: \"x\""},
        {{"load", book, "gone.fcg", "--after", "0"}, 5, "gone.fcg: there is no such file"},
        {{"load", book, "p.fcp", "--after", "0"}, 4, "it is a file of points: gpsbook points load reads it"},
        {{"load", book, book, "--after", "0"}, 2, "is the book itself"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> arguments{"groups"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        site.ExpectRefused(arguments, row.code, row.words);
    }
}

TEST(Groups, CountThatWouldFillTheMemoryIsRefusedEvenWhenForced) {
    const Site site;
    site.Put("g.fcg", ExchangeHead(0x7FFFFFFF).I32(0));
    site.ExpectRefused({"groups", "load", "site.gpsbook", "g.fcg", "--after", "0", "--force"}, 4,
                       "not even --force takes it");
    site.Put("p.fcp", ExchangeHead(0x7FFFFFFF).I32(0));
    site.ExpectRefused(
        {"points", "load", "site.gpsbook", "p.fcp", "--group", "Quay", "--after", "0", "--force"}, 4,
        "not even --force takes it");
}

}  // namespace
}  // namespace gpsbook::test
