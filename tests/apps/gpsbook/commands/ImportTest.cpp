// gpsbook import: logs into a book that is there.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Logs.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

/// A new book in UTM zone 33 and a log of ten seconds.
class Imports : public Workplace {
public:
    explicit Imports(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments{"new", "site.gpsbook", "--crs", "EPSG:32633"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(Run(arguments).exitCode, 0);
        Put("a.nmea", TenSeconds());
    }

    Outcome Import(std::vector<std::string> arguments, const Surroundings& around = {}) const {
        arguments.insert(arguments.begin(), {"import", "site.gpsbook"});
        return Run(arguments, around);
    }

    json List() const { return JsonOf(Run({"list", "site.gpsbook", "--points", "--json"}))["groups"]; }

    std::string Table() const {
        const Outcome outcome = Run({"export", "site.gpsbook"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        return outcome.out;
    }

    std::string Column(const std::string& name) const {
        std::string all;
        for (const auto& row : RowsOf(Table())) all += (all.empty() ? "" : " ") + row.at(name);
        return all;
    }
};

TEST(Import, PointsAreThoseThatConvertMakes) {
    const Imports place;
    place.Put("b.pos",
              PosFile("lat/lon/height=WGS84/ellipsoidal", "latitude(deg) longitude(deg)  height(m)",
                      "45.650000000 13.760000000   60.0000",
                      "2018/10/04 12:00:00.000   45.650100000   13.760100000    61.5000   1   9   0.0010   "
                      "0.0020   0.0030   0.0000   0.0000   0.0000   0.00    0.0\n"));
    const Outcome outcome =
        place.Import({"a.nmea", "b.pos", "--antenna", "1.500", "--min-quality", "float", "--code", "KERB"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    const Outcome converted =
        place.Convert({"a.nmea", "b.pos", "--antenna", "1.500", "--min-quality", "float", "--code", "KERB"});
    ASSERT_EQ(converted.exitCode, 0) << converted;
    EXPECT_EQ(place.Table(), converted.out);
    EXPECT_GT(RowsOf(place.Table()).size(), 5U);
}

TEST(Import, SummaryTellsOfLogsAndBook) {
    const Imports place;
    const Outcome outcome = place.Import({"a.nmea", "--min-quality", "fix", "--antenna", "2"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(
        outcome.out,
        "a.nmea: NMEA 0183, 10 epochs, 5 points in group a\n"
        "  5 of quality 4 (fixed)\n"
        "  5 epochs left out: below --min-quality\n"
        "heights in the log: of the antenna; antenna height 2.0000 m\n"
        "EPSG:32633: east 403380.4989 to 403380.4989, north 5055908.9822 to 5055908.9822, height 61.0000 to "
        "61.0000\n"
        "site.gpsbook: 5 points added, 5 points in 1 group now\n");
    EXPECT_EQ(outcome.err, "");
}

TEST(Import, JsonTellsTheSame) {
    const Imports place;
    const json summary = JsonOf(place.Import({"a.nmea", "--min-quality", "fix", "--json"}));
    EXPECT_EQ(summary["book"], "site.gpsbook");
    EXPECT_EQ(summary["points"], 5);
    EXPECT_EQ(summary["groups"], json::parse(R"([{"index":0,"name":"a","new":true,"added":5}])"));
    EXPECT_EQ(summary["files"][0]["file"], "a.nmea");
    EXPECT_EQ(summary["files"][0]["by_quality"], json::parse(R"({"4":5})"));
    EXPECT_EQ(summary["crs"], "EPSG:32633");
    EXPECT_EQ(summary["extent"]["height"], json::parse("[63.0,63.0]"));
    EXPECT_EQ(summary["without_plane"], 0);
}

TEST(Import, EpochsThatAreThereAlreadyAreTold) {
    const Imports place;
    ASSERT_EQ(place.Import({"a.nmea", "--every", "3"}).err, "");
    const Outcome again = place.Import({"a.nmea"});
    EXPECT_EQ(again.exitCode, 0) << again;
    EXPECT_EQ(again.err,
              "note: a.nmea: 4 of these epochs are already in group a (same time and position); "
              "--skip-existing leaves them out\n");
    EXPECT_NE(again.out.find("site.gpsbook: 10 points added, 14 points in 2 groups now"), std::string::npos)
        << again;
    const json third = JsonOf(place.Import({"a.nmea", "--json"}));
    EXPECT_EQ(third["already_there"], 10);
    EXPECT_EQ(third["files"][0]["already_there"], 10);
    EXPECT_EQ(third["points"], 10);
}

TEST(Import, EpochsThatAreThereAlreadyAreLeftOutWhenAsked) {
    const Imports place;
    ASSERT_EQ(place.Import({"a.nmea", "--every", "3"}).exitCode, 0);
    const Outcome rest = place.Import({"a.nmea", "--group", "a", "--skip-existing"});
    EXPECT_EQ(rest.exitCode, 0) << rest;
    EXPECT_EQ(rest.err, "");
    EXPECT_NE(rest.out.find("a.nmea: NMEA 0183, 10 epochs, 6 points in group a\n"), std::string::npos)
        << rest;
    EXPECT_NE(rest.out.find("  4 epochs left out: in the book already\n"), std::string::npos) << rest;
    EXPECT_EQ(place.Column("name"), "P1 P2 P3 P4 P5 P6 P7 P8 P9 P10") << "no number is used up";
    EXPECT_EQ(place.Column("time").substr(0, 51), "2024-05-01T08:00:00.000Z 2024-05-01T08:00:03.000Z 2");
    const std::string bytes = place.Text("site.gpsbook");
    const Outcome nothing = place.Import({"a.nmea", "--skip-existing"});
    EXPECT_EQ(nothing.exitCode, 0) << nothing;
    EXPECT_NE(nothing.out.find("site.gpsbook: nothing to add, 10 points in 1 group now\n"), std::string::npos)
        << nothing;
    const json told = JsonOf(place.Import({"a.nmea", "--skip-existing", "--json"}));
    EXPECT_EQ(told["saved"], false);
    EXPECT_EQ(told["already_there"], 10);
    EXPECT_EQ(told["files"][0]["filtered"], json::parse(R"({"in the book already":10})"));
    EXPECT_TRUE(place.Text("site.gpsbook") == bytes) << "nothing was saved";
}

TEST(Import, LogNamedTwiceIsAlreadyThereTheSecondTime) {
    const Imports place;
    const Outcome outcome = place.Import({"a.nmea", "a.nmea", "--skip-existing"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.out.find("site.gpsbook: 10 points added, 10 points in 1 group now"), std::string::npos)
        << outcome;
    EXPECT_EQ(place.Import({"a.nmea", "--skip-existing", "--min-quality", "fix"}).exitCode, 0);
    place.Put("other.nmea", "no log\n");
    EXPECT_EQ(place.Import({"other.nmea", "--skip-existing"}).exitCode, 1)
        << "nothing usable, and nothing there";
}

TEST(Import, OtherTimeOrHeightIsAnotherEpoch) {
    const Imports place;
    ASSERT_EQ(place.Import({"a.nmea"}).exitCode, 0);
    place.Put("b.nmea", Rmc("080000.00", "020524") + Position("080000.00", 4));
    EXPECT_EQ(place.Import({"b.nmea"}).err, "") << "a day later";
    EXPECT_EQ(place.Import({"a.nmea", "--heights", "marker", "--antenna", "2"}).err, "") << "2 m higher";
}

TEST(Import, SettingsOfTheBookHoldUnlessOthersAreGiven) {
    const Imports place({"--antenna", "2", "--heights", "marker"});
    ASSERT_EQ(place.Import({"a.nmea", "--every", "9"}).exitCode, 0);
    EXPECT_EQ(place.Column("antenna"), "2.0000 2.0000");
    EXPECT_EQ(place.Column("h"), "65.0000 65.0000") << "63 m is the height of the mark";
    ASSERT_EQ(place.Import({"a.nmea", "--every", "9", "--antenna", "1", "--heights", "antenna"}).exitCode, 0);
    EXPECT_EQ(place.Column("h"), "65.0000 65.0000 63.0000 63.0000");
    EXPECT_EQ(place.Column("height"), "63.0000 63.0000 62.0000 62.0000");
}

TEST(Import, SystemCanBeAnotherOneThanThatOfTheBook) {
    const Imports place;
    ASSERT_EQ(place.Import({"a.nmea", "--every", "99"}).exitCode, 0);
    ASSERT_EQ(place.Import({"a.nmea", "--every", "99", "--crs", "EPSG:32632"}).exitCode, 0);
    const CsvRows rows = RowsOf(place.Table());
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].at("east"), "403380.4989");
    EXPECT_GT(NumberOf(rows[1], "east"), 800000) << "from the central meridian of the zone before";
}

TEST(Import, NumbersGoOnWhereTheBookEndsUnlessAStartIsGiven) {
    const Imports place;
    ASSERT_EQ(place.Import({"a.nmea", "--every", "9"}).exitCode, 0);
    ASSERT_EQ(place.Import({"a.nmea", "--every", "9"}).exitCode, 0);
    ASSERT_EQ(place.Import({"a.nmea", "--every", "9", "--prefix", "Q"}).exitCode, 0);
    ASSERT_EQ(place.Import({"a.nmea", "--every", "9", "--start", "100"}).exitCode, 0);
    ASSERT_EQ(place.Import({"a.nmea", "--every", "99"}).exitCode, 0);
    EXPECT_EQ(place.Column("name"), "P1 P2 P3 P4 Q1 Q2 P100 P101 P102");
    EXPECT_EQ(place.Column("group"), "a a a-2 a-2 a-3 a-3 a-4 a-4 a-5");
}

TEST(Import, GroupThatExistsGetsThePointsAndKeepsWhatItHas) {
    const Imports place;
    ASSERT_EQ(place.Import({"a.nmea", "--every", "9", "--group", "Quay"}).exitCode, 0);
    ASSERT_EQ(place.Run({"set", "site.gpsbook", "Quay", "date=1999-01-01", "base_lat=45.5", "base_lon=13.5"})
                  .exitCode,
              0);
    const json before = JsonOf(place.Run({"show", "site.gpsbook", "Quay/P1", "--json"}));
    place.Put("b.pos",
              PosFile("lat/lon/height=WGS84/ellipsoidal", "latitude(deg) longitude(deg)  height(m)",
                      "45.650000000 13.760000000   60.0000",
                      "2018/10/04 12:00:00.000   45.650100000   13.760100000    61.5000   1   9   0.0010   "
                      "0.0020   0.0030   0.0000   0.0000   0.0000   0.00    0.0\n"));
    const Outcome outcome = place.Import({"b.pos", "a.nmea", "--group", "Quay", "--every", "99"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.out.find("site.gpsbook: 2 points added, 4 points in 1 group now"), std::string::npos)
        << outcome;
    EXPECT_EQ(place.Column("name"), "P1 P2 P3 P4");
    EXPECT_EQ(JsonOf(place.Run({"show", "site.gpsbook", "Quay/P1", "--json"})), before);
    const json group = JsonOf(place.Run({"show", "site.gpsbook", "Quay", "--json"}))["fields"];
    EXPECT_EQ(group["date"], "1999-01-01");
    EXPECT_EQ(group["base_lat"], 45.5);
    const CsvRows rows = RowsOf(place.Table());
    EXPECT_NE(rows[2].at("east"), "") << "computed in the system of the group";
    const json point = JsonOf(place.Run({"show", "site.gpsbook", "Quay/P3", "--json"}))["fields"];
    EXPECT_EQ(point["base_lat"], 45.65) << "a point has the base of its log";
}

TEST(Import, GroupCanBeNamedByItsPosition) {
    const Site site;
    site.Put("a.nmea", TenSeconds());
    ASSERT_EQ(site.Run({"import", "site.gpsbook", "a.nmea", "--group", "#0", "--every", "9"}).exitCode, 0);
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4 P5 P6");
    site.ExpectRefused({"import", "site.gpsbook", "a.nmea", "--group", "#7"}, 5, "#7");
}

TEST(Import, SeveralLogsWithANewGroupMakeNumberedOnes) {
    const Imports place;
    place.Put("b.nmea", TenSeconds());
    ASSERT_EQ(place.Import({"a.nmea", "b.nmea", "--group", "Quay", "--every", "99"}).exitCode, 0);
    EXPECT_EQ(place.Column("group"), "Quay-1 Quay-2");
    const std::string bytes = place.Text("site.gpsbook");
    const Outcome again = place.Import({"a.nmea", "b.nmea", "--group", "Quay", "--every", "99"});
    EXPECT_EQ(again.exitCode, 2) << again;
    EXPECT_NE(again.err.find("--group: \"Quay-1\" exists already"), std::string::npos) << again;
    EXPECT_TRUE(place.Text("site.gpsbook") == bytes);
}

TEST(Import, LogWithoutPointsLeavesNoGroupAndIsNoFailureAmongOthers) {
    const Imports place;
    place.Put("none.nmea", Rmc("080000.00", "010524") + Position("080000.00", 0));
    const Outcome outcome = place.Import({"none.nmea", "a.nmea"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(place.List().size(), 1U);
    EXPECT_NE(outcome.out.find("none.nmea: NMEA 0183, 1 epoch, 0 points\n"), std::string::npos) << outcome;
}

TEST(Import, StandardInputIsALog) {
    const Imports place;
    Surroundings around;
    around.input = TenSeconds();
    ASSERT_EQ(place.Import({"-", "--every", "9"}, around).exitCode, 0);
    EXPECT_EQ(place.Column("group"), "stdin stdin");
}

TEST(Import, VerboseNamesEveryLineThatBecameNoPoint) {
    const Imports place;
    place.Put("bad.nmea", DamagedLog());
    const Outcome outcome = place.Import({"bad.nmea", "--verbose"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("bad.nmea:3: bad checksum: "), std::string::npos) << outcome;
}

TEST(Import, WhatCannotBeImportedLeavesTheBookAsItWas) {
    const Site site;
    site.Put("a.nmea", TenSeconds());
    site.Put("none.nmea", Rmc("080000.00", "010524") + Position("080000.00", 0));
    struct Row {
        std::vector<std::string> arguments;
        int code;
        const char* words;
    };
    const Row rows[] = {
        {{"a.nmea"}, 2, "--crs: the book has no plane system for new groups"},
        {{"a.nmea", "--crs", "EPSG:4326"}, 2, "--crs: 'EPSG:4326' is a geographic system"},
        {{"a.nmea", "--crs", "+proj=merc +R=1737400"}, 2, "--crs: no point has plane coordinates"},
        {{"a.nmea", "--group", "Quay", "--crs", "EPSG:32633"},
         2,
         "exists and has its system; leave the option out"},
        {{"none.nmea", "--crs", "EPSG:32633"}, 1, "no usable epoch:\nnone.nmea:\n  1 epoch rejected: no fix"},
        {{"none.nmea", "--group", "Quay"}, 1, "no usable epoch"},
        {{"gone.nmea", "--crs", "EPSG:32633"}, 5, "gone.nmea: there is no such file"},
        {{"a.nmea", "gone.nmea", "--crs", "EPSG:32633"}, 5, "gone.nmea: there is no such file"},
        {{"site.gpsbook", "--crs", "EPSG:32633"}, 2, "is the field book itself"},
        {{"a.nmea", "--group", ""}, 2, "--group: the value is empty"},
        {{"a.nmea", "--group", "a;b", "--crs", "EPSG:32633"}, 2, "--group: a text cannot hold ';'"},
        {{"a.nmea", "--antenna", "-1"}, 2, "--antenna: \"-1\" is not between 0 and 100"},
        {{"a.nmea", "--start", "x"}, 2, "--start: \"x\" is no number"},
        {{"a.nmea", "--every", "0"}, 2, "--every"},
        {{"a.nmea", "--min-quality", "best"}, 2, "--min-quality: \"best\" is unknown"},
        {{"-", "-"}, 2, "standard input (-) can be read only once"},
        {{}, 2, "LOG is required"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> arguments{"import", "site.gpsbook"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        site.ExpectRefused(arguments, row.code, row.words);
    }
    const Outcome gone = site.Run({"import", "gone.gpsbook", "a.nmea"});
    EXPECT_EQ(gone.exitCode, 5) << gone;
}

TEST(Import, InterruptedImportLeavesTheBookAsItWas) {
    const Imports place;
    const std::string bytes = place.Text("site.gpsbook");
    std::string log = Rmc("080000.00", "010524");
    for (int i = 0; i < 200; ++i) log += Position("080000.00", 4);
    const Outcome outcome = place.RunInterrupted({"import", "site.gpsbook", "-"}, log);
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_NE(outcome.err.find("interrupted"), std::string::npos) << outcome;
    EXPECT_TRUE(place.Text("site.gpsbook") == bytes);
}

}  // namespace
}  // namespace gpsbook::test
