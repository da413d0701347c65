// gpsbook export: a book, or some groups of it, as a table.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/apps/gpsbook/book/SmallBook.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

std::string Names(const std::string& csv) {
    std::string all;
    for (const auto& row : RowsOf(csv))
        all += (all.empty() ? "" : " ") + row.at("group") + "/" + row.at("name");
    return all;
}

TEST(Export, WholeBookGoesToStandardOutputAsCsv) {
    const Site site;
    const Outcome outcome = site.Run({"export", "site.gpsbook"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(Names(outcome.out), "Quay/P1 Quay/P2 Quay/P3 Quay/P4 Pier/A Pier/B");
    const CsvRows rows = RowsOf(outcome.out);
    EXPECT_EQ(rows[1].at("lat"), "45.650100000");
    EXPECT_EQ(rows[1].at("h"), "64.0000");
    EXPECT_EQ(rows[1].at("height"), "62.0000");
    EXPECT_EQ(rows[4].at("lat"), "");
    EXPECT_EQ(outcome.err, "warning: without plane coordinates: 2 points; gpsbook compute makes them\n");
}

TEST(Export, BookIsNeverReplacedByItsTable) {
    const Site site;
    site.ExpectRefused({"export", "site.gpsbook", "-o", "site.gpsbook", "-f", "csv", "--overwrite"}, 2,
                       "itself");
    std::filesystem::create_symlink(site.Book(), site.Path("table.csv"));
    site.ExpectRefused({"export", "site.gpsbook", "-o", "table.csv", "--overwrite"}, 2, "itself");
}

TEST(Export, GroupsAreChosenByNameOrPosition) {
    const Site site;
    EXPECT_EQ(Names(site.Run({"export", "site.gpsbook", "Pier"}).out), "Pier/A Pier/B");
    EXPECT_EQ(Names(site.Run({"export", "site.gpsbook", "#0"}).out), "Quay/P1 Quay/P2 Quay/P3 Quay/P4");
    EXPECT_EQ(Names(site.Run({"export", "site.gpsbook", "#1", "Quay"}).out),
              "Quay/P1 Quay/P2 Quay/P3 Quay/P4 Pier/A Pier/B");
    site.ExpectRefused({"export", "site.gpsbook", "Peer"}, 5, "Pier");
    site.ExpectRefused({"export", "site.gpsbook", "Quay/P1"}, 2, "Quay/P1");
}

TEST(Export, FileIsWrittenInTheFormatOfItsEndingAndTold) {
    const Site site;
    const Outcome outcome = site.Run({"export", "site.gpsbook", "Quay", "-o", "quay.kml"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "quay.kml: KML, 4 points of 1 group\n");
    EXPECT_NE(site.Text("quay.kml").find("<kml"), std::string::npos);
    const json told = JsonOf(site.Run({"export", "site.gpsbook", "-o", "all.csv", "--json"}));
    EXPECT_EQ(told,
              json::parse(R"({"book":"site.gpsbook","output":"all.csv","format":"CSV","groups":2,"points":6,
                                    "without_plane":2,"skipped":0})"));
}

#ifdef GPSBOOK_WITH_GDAL
TEST(Export, GroupsOfDifferentSystemsDoNotGoIntoOnePlane) {
    const Site site([](gpsproject::Project& project) {
        CGrpGps& group = *project.GetBook().AddGrp(false);
        group.SetNomeGrp("West");
        std::string why;
        group.GetConvCoord()->GetConvLocal()->SetDefinizione("EPSG:32632", why);
        project.GetBook().AddPun(2, false)->SetNome("W");
    });
    site.ExpectRefused({"export", "site.gpsbook", "Quay", "West", "-o", "out.gpkg"}, 2,
                       "GROUP: \"Quay\" and \"West\" have different plane systems, and GeoPackage holds one");
    EXPECT_EQ(site.Run({"export", "site.gpsbook", "Quay", "West", "-o", "out.geojson"}).exitCode, 0);
    EXPECT_EQ(site.Run({"export", "site.gpsbook", "West", "-o", "west.gpkg"}).exitCode, 0);
    EXPECT_EQ(site.Run({"export", "site.gpsbook", "Quay", "-o", "quay.gpkg"}).exitCode, 0);
}
#endif

TEST(Export, DamagedBookGivesWhatCanBeReadAndSaysSo) {
    const Site site;
    std::string bytes = site.Bytes();
    site.Put("cut.gpsbook", bytes.substr(0, bytes.size() * 3 / 4));
    const Outcome outcome = site.Run({"export", "cut.gpsbook", "-o", "saved.csv"});
    EXPECT_EQ(outcome.exitCode, 4) << outcome;
    EXPECT_NE(Names(site.Text("saved.csv")).find("Quay/P1"), std::string::npos);
    EXPECT_NE(outcome.err.find("damaged"), std::string::npos) << outcome;
}

TEST(Export, WhatCannotBeWrittenIsRefused) {
    const Site site;
    site.Put("there.csv", "old");
    struct Row {
        std::vector<std::string> arguments;
        int code;
        const char* words;
    };
    const Row rows[] = {
        {{"-o", "there.csv"}, 1, "there.csv: exists already; use --overwrite to replace it"},
        {{"-o", "none/out.csv"}, 1, "the folder none does not exist"},
        {{"-o", "out.xlsx"}, 2, "the ending does not tell the format"},
        {{"-f", "xlsx"}, 2, "--format: \"xlsx\" is unknown"},
        {{"-f", "dxf"}, 2, "cannot go to standard output"},
        {{"--json"}, 2, "--json: would be mixed with the table"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> arguments{"export", "site.gpsbook"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        site.ExpectRefused(arguments, row.code, row.words);
    }
    EXPECT_EQ(site.Text("there.csv"), "old");
    EXPECT_EQ(site.Run({"export", "gone.gpsbook"}).exitCode, 5);
    EXPECT_EQ(site.Run({"export", "there.csv"}).exitCode, 4) << "no field book";
    EXPECT_EQ(site.Run({"export", "site.gpsbook", "-o", "there.csv", "--overwrite"}).exitCode, 0);
    EXPECT_NE(site.Text("there.csv"), "old");
}

}  // namespace
}  // namespace gpsbook::test
