// gpsbook new: an empty book with what its imports need.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using gpsproject::Project;
using nlohmann::json;

std::string Setting(const Workplace& place, const std::string& book, const char* key) {
    const auto project = Project::Open(place.Path(book), Project::Mode::read);
    const auto found = project->GetSettings().find(key);
    return found == project->GetSettings().end() ? "(none)" : found->second;
}

TEST(New, BookIsEmptyAndKeepsWhatImportsNeed) {
    const Workplace place;
    const Outcome outcome = place.Run({"new", "site.gpsbook", "--crs", "epsg:32633", "--name",
                                       "Quay, north side", "--antenna", "2.000", "--heights", "marker"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "site.gpsbook: new field book, EPSG:32633, stream version 1400\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(place.Names(), std::vector<std::string>{"site.gpsbook"});
    EXPECT_EQ(Setting(place, "site.gpsbook", "crs"), "EPSG:32633");
    EXPECT_EQ(Setting(place, "site.gpsbook", "name"), "Quay, north side");
    EXPECT_EQ(Setting(place, "site.gpsbook", "antenna"), "2");
    EXPECT_EQ(Setting(place, "site.gpsbook", "heights"), "marker");
    const auto project = Project::Open(place.Path("site.gpsbook"), Project::Mode::read);
    EXPECT_EQ(project->GetBook().GetGrpArSize(), 0);
    EXPECT_EQ(project->GetStreamVersion(), 1400);
}

TEST(New, WhatIsNotGivenIsNotKept) {
    const Workplace place;
    ASSERT_EQ(place.Run({"new", "site", "--crs", "EPSG:32633"}).exitCode, 0);
    EXPECT_EQ(place.Names(), std::vector<std::string>{"site.gpsbook"}) << "the ending is put behind the name";
    for (const char* key : {"name", "antenna", "heights"})
        EXPECT_EQ(Setting(place, "site.gpsbook", key), "(none)");
}

TEST(New, OldStreamVersionIsTakenAndSaysWhatItHasNoPlaceFor) {
    const Workplace place;
    const Outcome outcome = place.Run({"new", "a.gpsbook", "--crs", "EPSG:32633", "--stream-version", "903"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "a.gpsbook: new field book, EPSG:32633, stream version 903\n"
              "version 903 has no place for:\n"
              "  post-processing options and observation files\n"
              "  index 3 and text 2 of observation files\n"
              "  drawing references\n"
              "  reserved numbers of groups and points\n"
              "  marks 3 and 4 of observation files\n"
              "  the creator device of groups\n");
    EXPECT_EQ(Project::Open(place.Path("a.gpsbook"), Project::Mode::read)->GetStreamVersion(), 903);
}

TEST(New, SystemIsTheOneThatWasNamedAndIsTold) {
    const Workplace place;
    const Outcome named = place.Run({"new", "a", "--crs", " WGS 84 / UTM zone 33N"});
    EXPECT_EQ(named.out, "a.gpsbook: new field book, EPSG:32633, stream version 1400\n") << named;
    EXPECT_EQ(JsonOf(place.Run({"new", "b", "--crs", "EPSG:32633 ", "--json"}))["crs"], "EPSG:32633");
    EXPECT_EQ(Setting(place, "b.gpsbook", "crs"), "EPSG:32633");
    const Outcome like = place.Run({"new", "c", "--crs", "Monte Mario Italy 2"});
    EXPECT_EQ(like.exitCode, 2) << like;
    EXPECT_NE(like.err.find("if 'Monte Mario / Italy zone 2' is meant, give EPSG:3004"), std::string::npos)
        << like;
}

TEST(New, JsonTellsTheSame) {
    const Workplace place;
    const json made =
        JsonOf(place.Run({"new", "a.gpsbook", "--crs", "EPSG:32633", "--stream-version", "1310", "--json"}));
    EXPECT_EQ(made["book"], "a.gpsbook");
    EXPECT_EQ(made["crs"], "EPSG:32633");
    EXPECT_EQ(made["stream_version"], 1310);
    EXPECT_EQ(made["not_held"], json::array({"the creator device of groups"}));
    EXPECT_EQ(JsonOf(place.Run({"new", "b.gpsbook", "--crs", "EPSG:32633", "--json"}))["not_held"],
              json::array());
}

TEST(New, BookThatExistsIsReplacedOnlyWhenAsked) {
    const Site site;
    site.ExpectRefused({"new", "site.gpsbook", "--crs", "EPSG:32632"}, 1, "site.gpsbook");
    site.ExpectRefused({"new", "site", "--crs", "EPSG:32632"}, 1, "site.gpsbook");
    const std::string before = site.Bytes();
    ASSERT_EQ(site.Run({"new", "site", "--crs", "EPSG:32632", "--overwrite"}).exitCode, 0);
    EXPECT_EQ(Setting(site, "site.gpsbook", "crs"), "EPSG:32632");
    EXPECT_EQ(site.Text("site.gpsbook.bak"), before) << "what was there is kept";
}

TEST(New, ValuesThatCannotBeAreRefusedAndNothingIsMade) {
    const Workplace place;
    struct Row {
        std::vector<std::string> options;
        int code;
        const char* words;
    };
    const Row rows[] = {
        {{}, 2, "--crs is required"},
        {{"--crs", "EPSG:4326"}, 2, "--crs: 'EPSG:4326' is a geographic system"},
        {{"--crs", ""}, 2, "--crs: "},
        {{"--crs", "EPSG:32633", "--name", "a;b"}, 2, "--name: a text cannot hold ';'"},
        {{"--crs", "EPSG:32633", "--name", "a\nb"}, 2, "--name: "},
        {{"--crs", "EPSG:32633", "--antenna", "two"}, 2, "--antenna: \"two\" is not a number"},
        {{"--crs", "EPSG:32633", "--antenna", "2000"}, 2, "--antenna: \"2000\" is not between 0 and 100"},
        {{"--crs", "EPSG:32633", "--antenna", ""}, 2, "--antenna"},
        {{"--crs", "EPSG:32633", "--heights", "geoid"}, 2, "--heights: \"geoid\" is unknown"},
        {{"--crs", "EPSG:32633", "--stream-version", "742"}, 2, "give a number from 743 to 1400"},
        {{"--crs", "EPSG:32633", "--stream-version", "1401"}, 2, "--stream-version: \"1401\""},
        {{"--crs", "EPSG:32633", "--stream-version", "new"}, 2, "--stream-version: \"new\""},
        {{"--crs", "EPSG:32633", "--stream-version", ""}, 2, "--stream-version"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> arguments{"new", "a.gpsbook"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        const Outcome outcome = place.Run(arguments);
        EXPECT_EQ(outcome.exitCode, row.code) << row.words << '\n' << outcome;
        EXPECT_NE(outcome.err.find(row.words), std::string::npos) << row.words << '\n' << outcome;
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(place.Names(), std::vector<std::string>{}) << row.words;
    }
    EXPECT_EQ(place.Run({"new", "none/a.gpsbook", "--crs", "EPSG:32633"}).exitCode, 1);
}

}  // namespace
}  // namespace gpsbook::test
