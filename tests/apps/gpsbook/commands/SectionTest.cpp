// gpsbook section: the bare GPS section, out of a book and into one.
#include <gtest/gtest.h>

#include "gps/options/COpzPostProc.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using gpsproject::Project;
using nlohmann::json;

TEST(Section, WrittenSectionIsThatOfTheBook) {
    const Site site;
    const Outcome outcome = site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "s.bin: GPS section, version 1400, 2 groups, 6 points\n");
    const json dump = json::parse(site.Run({"dump", "site.gpsbook", "--json"}).out);
    EXPECT_EQ(site.Text("s.bin"), site.Bytes().substr(dump["offset"], dump["size"]));
}

TEST(Section, ReadSectionGivesTheBookAgainInEveryVersion) {
    const Site site;
    const std::string table = site.Run({"export", "site.gpsbook"}).out;
    for (const char* version :
         {"743", "749", "750", "880", "881", "903", "1002", "1003", "1004", "1106", "1300", "1311", "1400"}) {
        ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", version, "--overwrite"})
                      .exitCode,
                  0);
        const Outcome read =
            site.Run({"section", "read", "s.bin", "again.gpsbook", "--version", version, "--overwrite"});
        ASSERT_EQ(read.exitCode, 0) << read;
        EXPECT_EQ(read.out, std::string("again.gpsbook: new field book, version ") + version +
                                ", 2 groups, 6 points\n");
        EXPECT_EQ(site.Run({"export", "again.gpsbook"}).out, table) << version;
    }
}

TEST(Section, VersionIsFoundWhenOnlyOneLayoutFits) {
    const Site site;
    for (const auto& [version, newest] : {std::pair{"743", 749},
                                          {"760", 880},
                                          {"900", 1001},
                                          {"1000", 1001},
                                          {"1003", 1003},
                                          {"1100", 1105},
                                          {"1200", 1310},
                                          {"1350", 1400}}) {
        ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", version, "--overwrite"})
                      .exitCode,
                  0);
        const Outcome outcome =
            site.Run({"section", "read", "s.bin", "again.gpsbook", "--overwrite", "--json"});
        EXPECT_EQ(JsonOf(outcome)["version"], newest) << version;
    }
}

TEST(Section, SectionThatCanBeOfSeveralVersionsNeedsItsOwn) {
    const Workplace place;
    ASSERT_EQ(place.Run({"new", "empty", "--crs", "EPSG:32633"}).exitCode, 0);
    ASSERT_EQ(place.Run({"section", "write", "empty", "s.bin", "--version", "1400"}).exitCode, 0);
    // Without groups the reference to no drawing can as well be a map library of which nothing is known.
    const Outcome outcome = place.Run({"section", "read", "s.bin", "again"});
    EXPECT_EQ(outcome.exitCode, 2) << outcome;
    EXPECT_NE(outcome.err.find("--version: the file can be of several versions (1400, 1003)"),
              std::string::npos)
        << outcome;
    EXPECT_EQ(place.Run({"section", "read", "s.bin", "again", "--version", "1400"}).exitCode, 0);
}

TEST(Section, DrawingReferencesSurviveAnotherProgramsEdits) {
    // As a program with drawings has left it: a drawing of the book and one of each group.
    const Site site([](Project& project) {
        project.GetBook().GetGrpAt(0)->SetTargetDrawing(0x0123456789ABCDEF);
        project.GetBook().GetGrpAt(1)->SetTargetDrawing(-2);
    });
    ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"}).exitCode, 0);
    std::string bytes = site.Text("s.bin");
    bytes.replace(0, 8, "\x08\x07\x06\x05\x04\x03\x02\x01");  // the reference of the book comes first
    EXPECT_NE(bytes.find("\xEF\xCD\xAB\x89\x67\x45\x23\x01"), std::string::npos);
    EXPECT_NE(bytes.find("\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF"), std::string::npos);
    site.Put("s.bin", bytes);
    ASSERT_EQ(site.Run({"section", "read", "s.bin", "again", "--version", "1400"}).exitCode, 0);
    ASSERT_EQ(site.Run({"options", "set", "points.ColSimb=9", "--book", "again"}).exitCode, 0);
    ASSERT_EQ(site.Run({"options", "set", "points.ColSimb=5", "--book", "again"}).exitCode, 0);
    ASSERT_EQ(site.Run({"section", "write", "again", "t.bin", "--version", "1400"}).exitCode, 0);
    EXPECT_TRUE(site.Text("t.bin") == bytes);
}

TEST(Section, NewGroupsOfTheBookThatIsReadHaveTheSystemOfItsFirst) {
    const Site site;
    ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"}).exitCode, 0);
    ASSERT_EQ(site.Run({"section", "read", "s.bin", "again"}).exitCode, 0);
    EXPECT_EQ(Project::Open(site.Path("again.gpsbook"), Project::Mode::read)->GetSettings()["crs"],
              "EPSG:32633");
}

TEST(Section, WhatTheVersionDoesNotHoldIsTold) {
    const Site site([](Project& project) {
        project.GetBook().GetGrpAt(0)->SetTipoRilievo(3);
        project.GetBook().GetPunAt(0, 1)->SetIsSecondaryPtDup(true);
        project.GetBook().GetOpzPostProc()->AddDataPtBaseLineDett("/a.tps");
    });
    const Outcome outcome = site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "749"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    for (const char* what :
         {"warning: not in version 749: survey types of groups", "marks of secondary duplicates"})
        EXPECT_NE(outcome.out.find(what), std::string::npos) << what << '\n' << outcome;
    const json told = JsonOf(
        site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "749", "--overwrite", "--json"}));
    EXPECT_EQ(told["version"], 749);
    EXPECT_GE(told["not_held"].size(), 3U) << told;
    EXPECT_EQ(JsonOf(site.Run(
                  {"section", "write", "site.gpsbook", "t.bin", "--version", "1400", "--json"}))["not_held"],
              json::array());
}

TEST(Section, WhatCannotBeIsRefusedAndNothingIsWritten) {
    const Site site;
    ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"}).exitCode, 0);
    site.Put("cut.bin", site.Text("s.bin").substr(0, 500));
    site.Put("cut.gpsbook", site.Bytes().substr(0, 1500));
    struct Row {
        std::vector<std::string> arguments;
        int code;
        const char* words;
    };
    const Row rows[] = {
        {{"write", "site.gpsbook", "t.bin"}, 2, "--version is required"},
        {{"write", "site.gpsbook", "t.bin", "--version", "742"},
         2,
         "--version: \"742\" is no version that can be written"},
        {{"write", "site.gpsbook", "s.bin", "--version", "1400"}, 1, "s.bin"},
        {{"write", "site.gpsbook", "none/t.bin", "--version", "1400"}, 1, "none"},
        {{"write", "site.gpsbook", "site.gpsbook", "--version", "1400", "--overwrite"},
         1,
         "is the project itself"},
        {{"write", "gone.gpsbook", "t.bin", "--version", "1400"}, 5, "gone.gpsbook"},
        {{"write", "cut.gpsbook", "t.bin", "--version", "1400"}, 4, "damaged"},
        {{"read", "gone.bin", "t.gpsbook"}, 5, "gone.bin: there is no such file"},
        {{"read", "gone.bin", "t.gpsbook", "--version", "1400"}, 5, "gone.bin: there is no such file"},
        {{"read", "cut.bin", "t.gpsbook"}, 4, "the layout of no version ends where the file ends"},
        {{"read", "cut.bin", "t.gpsbook", "--version", "1400"}, 4, "cut.bin"},
        {{"read", "s.bin", "t.gpsbook", "--version", "1003"}, 4, "s.bin"},
        {{"read", "s.bin", "t.gpsbook", "--version", "600"}, 2, "--version: \"600\""},
        {{"read", "s.bin", "site.gpsbook"}, 1, "site.gpsbook"},
        {{}, 2, "required"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> arguments{"section"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        site.ExpectRefused(arguments, row.code, row.words);
    }
}

}  // namespace
}  // namespace gpsbook::test
