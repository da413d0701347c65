// gpsbook convert: what it tells people and machines.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/apps/gpsbook/commands/Gpsbook.h"
#include "tests/apps/gpsbook/commands/Logs.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

constexpr const char* kHeights =
    "heights in the log: of the antenna; antenna height 0.0000 m; in the table: h of the phase centre, "
    "height of the "
    "ground mark\n";

TEST(ConvertSummary, TellsPointsByQualityExtentAndReasonsWithTheirLines) {
    const Workplace place;
    place.Put("a.nmea", DamagedLog());
    const Outcome outcome = place.Convert({"a.nmea", "-o", "out.csv"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(
        outcome.out,
        "a.nmea: NMEA 0183, 14 epochs, 3 points in group a\n"
        "  2 of quality 4 (fixed), 1 of quality 5 (float)\n"
        "  1 epoch rejected: bad checksum (line 3)\n"
        "  1 epoch rejected: missing checksum (line 4)\n"
        "  1 epoch rejected: cut line (line 5)\n"
        "  1 epoch rejected: empty field (line 6)\n"
        "  2 epochs rejected: bad number (lines 7, 8)\n"
        "  1 epoch rejected: no fix (line 9)\n"
        "  1 epoch rejected: bad time (line 10)\n"
        "  1 epoch rejected: latitude out of range (line 11)\n"
        "  1 epoch rejected: longitude out of range (line 12)\n"
        "  1 epoch rejected: no geoid separation (line 13)\n"
        "  1 other line not used: bad time (line 14)\n" +
            std::string(kHeights) +
            "EPSG:32633: east 403380.4989 to 403380.4989, north 5055908.9822 to 5055908.9822, height 63.0000 "
            "to 63.0000\n"
            "out.csv: CSV, 3 points\n");
    EXPECT_EQ(outcome.err, "");
}

TEST(ConvertSummary, ExtentReachesFromTheSmallestToTheLargestOfAllLogs) {
    const Workplace place;
    place.Put("a.nmea", Rmc("080000.00", "010524") + Position("080000.00", 4));
    const std::string more = ",4,12,0.8,55.5000,M,45.0000,M,1.0,0001";  // 100.5 m
    place.Put("b.nmea", Rmc("080000.00", "010524") +
                            Sentence("GNGGA,080001.00,4730.00000000,N,01215.00000000,E" + more) +
                            Sentence("GNGGA,080002.00,4539.12345678,N,01345.98765432,E" + more));
    const Outcome outcome = place.Convert({"a.nmea", "b.nmea", "--antenna", "2"});
    // The figures of the plane are those of the test of values.
    EXPECT_NE(
        outcome.err.find("EPSG:32633: east 292894.9157 to 403887.4442, north 5055908.9822 to 5264395.4763, "
                         "height 61.0000 to 98.5000\n"),
        std::string::npos)
        << outcome;
}

TEST(ConvertSummary, OnlyTheFirstLinesOfAReasonAreNamed) {
    const Workplace place;
    std::string log = TenSeconds();
    for (int i = 0; i < 7; ++i) log += Position("080010.00", 0);
    place.Put("a.nmea", log);
    const Outcome outcome = place.Convert({"a.nmea", "--min-quality", "float", "--every", "2"});
    EXPECT_NE(outcome.err.find("a.nmea: NMEA 0183, 17 epochs, 4 points in group a\n"), std::string::npos)
        << outcome;
    EXPECT_NE(outcome.err.find("  7 epochs rejected: no fix (lines 12, 13, 14, 15, 16, ...)\n"
                               "  3 epochs left out: below --min-quality\n"
                               "  3 epochs left out: closer than --every\n"),
              std::string::npos)
        << outcome;
}

TEST(ConvertSummary, MarkerHeightsAndTheAntennaAreSaid) {
    const Workplace place;
    place.Put("a.nmea", TenSeconds());
    const Outcome outcome = place.Convert({"a.nmea", "--heights", "marker", "--antenna", "1.8"});
    EXPECT_NE(outcome.err.find("heights in the log: of the marker; antenna height 1.8000 m;"),
              std::string::npos)
        << outcome;
}

TEST(ConvertSummary, AntennaOfTheFileThatIsAnotherIsSaid) {
    const Workplace place;
    std::string log = PosFile(
        "lat/lon/height=WGS84/ellipsoidal", "latitude(deg) longitude(deg) height(m)", "45.65 13.76 60.0",
        "2024/05/01 08:00:18.000 45.65 13.76 63.0 1 15 0.01 0.01 0.02 0 0 0 1.00 9.9\n");
    log.replace(log.find("( 0.0000  0.0000  0.0000)"), 25, "( 0.0000  0.0000  1.9000)");
    place.Put("a.pos", log);
    const char* note = "the file names an antenna 1.9000 m above the mark; --antenna says 0.0000\n";
    EXPECT_NE(place.Convert({"a.pos"}).err.find(note), std::string::npos) << place.Convert({"a.pos"});
    EXPECT_EQ(place.Convert({"a.pos", "--antenna", "1.9"}).err.find("the file names an antenna"),
              std::string::npos);
}

TEST(ConvertSummary, NoUsableEpochIsAFailureWithTheReasonsOfEveryLog) {
    const Workplace place;
    place.Put("a.nmea", Position("080000.00", 4) + Position("080001.00", 0));
    place.Put("b.nmea", Rmc("080000.00", "010524") + Position("080000.00", 1));
    place.Put("c.txt", "name,east,north\n");
    place.Put("d.nmea", Rmc("080000.00", "010524"));
    place.Put("e.nmea", "");
    const Outcome outcome = place.Convert(
        {"a.nmea", "b.nmea", "c.txt", "d.nmea", "e.nmea", "--min-quality", "fix", "-o", "out.csv"});
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_EQ(outcome.err,
              "gpsbook convert: no usable epoch:\n"
              "a.nmea:\n"
              "  1 epoch rejected: no fix (line 2)\n"
              "  1 epoch rejected: no date (line 1)\n"
              "b.nmea:\n"
              "  1 epoch left out: below --min-quality\n"
              "c.txt:\n"
              "  no position found: neither an NMEA 0183 nor an RTKLIB .pos log\n"
              "d.nmea:\n"
              "  no position found in it\n"
              "e.nmea:\n"
              "  no position found: neither an NMEA 0183 nor an RTKLIB .pos log\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(place.Names(), (std::vector<std::string>{"a.nmea", "b.nmea", "c.txt", "d.nmea", "e.nmea"}));
}

TEST(ConvertSummary, EachKindOfBadEpochAloneIsAFailureUnderItsReason) {
    const std::vector<std::string> lines = LinesOf(DamagedLog());
    const std::pair<std::size_t, const char*> rows[] = {
        {3, "bad checksum"},
        {4, "missing checksum"},
        {6, "empty field"},
        {7, "bad number"},
        {8, "bad number"},
        {9, "no fix"},
        {10, "bad time"},
        {11, "latitude out of range"},
        {12, "longitude out of range"},
        {13, "no geoid separation"},
    };
    const Workplace place;
    for (const auto& [line, reason] : rows) {
        place.Put("a.nmea", Rmc("080000.00", "010524") + lines[line - 1] + "\n");
        const Outcome outcome = place.Convert({"a.nmea"});
        EXPECT_EQ(outcome.exitCode, 1) << outcome;
        EXPECT_NE(outcome.err.find("1 epoch rejected: " + std::string(reason) + " (line 2)"),
                  std::string::npos)
            << reason << '\n'
            << outcome;
        EXPECT_EQ(outcome.out, "") << reason;
    }
    place.Put("a.nmea", Rmc("080000.00", "010524") + "$GNGGA,080003.00,4539.0,N,013");
    EXPECT_NE(place.Convert({"a.nmea"}).err.find("cut line (line 2)"), std::string::npos);
    place.Put("a.nmea", Position("080000.00", 4));
    EXPECT_NE(place.Convert({"a.nmea"}).err.find("no date (line 1)"), std::string::npos);
}

TEST(ConvertSummary, VerboseNamesEveryLineThatBecameNoPoint) {
    const Workplace place;
    std::string log = DamagedLog();
    for (int i = 0; i < 7; ++i) log += Position("080015.00", 0);
    place.Put("a.nmea", log);
    const Outcome quiet = place.Convert({"a.nmea", "-o", "out.csv"});
    EXPECT_EQ(quiet.err, "");
    const Outcome verbose =
        place.Convert({"a.nmea", "-o", "out.csv", "--overwrite", "--verbose", "--min-quality", "fix"});
    ASSERT_EQ(verbose.exitCode, 0) << verbose;
    const std::vector<std::string> told = LinesOf(verbose.err);
    const char* const starts[] = {"a.nmea:3: bad checksum: $GNGGA,080001.00",
                                  "a.nmea:4: missing checksum: ",
                                  "a.nmea:5: cut line: ",
                                  "a.nmea:5: below --min-quality",
                                  "a.nmea:6: empty field: ",
                                  "a.nmea:7: bad number: ",
                                  "a.nmea:8: bad number: ",
                                  "a.nmea:9: no fix",
                                  "a.nmea:10: bad time: ",
                                  "a.nmea:11: latitude out of range: ",
                                  "a.nmea:12: longitude out of range: ",
                                  "a.nmea:13: no geoid separation: ",
                                  "a.nmea:14: bad time: date",
                                  "a.nmea:16: no fix",
                                  "a.nmea:17: no fix",
                                  "a.nmea:18: no fix",
                                  "a.nmea:19: no fix",
                                  "a.nmea:20: no fix",
                                  "a.nmea:21: no fix",
                                  "a.nmea:22: no fix"};
    ASSERT_EQ(told.size(), std::size(starts)) << verbose;
    for (std::size_t i = 0; i < told.size(); ++i) EXPECT_EQ(told[i].rfind(starts[i], 0), 0U) << told[i];
}

json Json(const Outcome& outcome) {
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    json parsed = json::parse(outcome.out, nullptr, false);
    EXPECT_FALSE(parsed.is_discarded()) << outcome;
    return parsed;
}

TEST(ConvertSummary, JsonHoldsWhatTheTextTells) {
    const Workplace place;
    place.Put("a.nmea", DamagedLog());
    place.Put("b.nmea", Rmc("080000.00", "010524") + Position("080000.00", 0));
    const Outcome outcome = place.Convert(
        {"a.nmea", "b.nmea", "--antenna", "2", "--min-quality", "fix", "--json", "-o", "out.csv"});
    EXPECT_EQ(outcome.err, "");
    const json expected = json::parse(R"({
        "points": 2,
        "files": [
            {"file": "a.nmea", "format": "NMEA 0183", "group": "a", "epochs": 14, "points": 2,
             "by_quality": {"4": 2}, "base": null, "rover_antenna": null,
             "rejected": {"bad checksum": {"count": 1, "lines": [3]},
                          "missing checksum": {"count": 1, "lines": [4]},
                          "cut line": {"count": 1, "lines": [5]},
                          "empty field": {"count": 1, "lines": [6]},
                          "bad number": {"count": 2, "lines": [7, 8]},
                          "no fix": {"count": 1, "lines": [9]},
                          "bad time": {"count": 1, "lines": [10]},
                          "latitude out of range": {"count": 1, "lines": [11]},
                          "longitude out of range": {"count": 1, "lines": [12]},
                          "no geoid separation": {"count": 1, "lines": [13]}},
             "filtered": {"below --min-quality": 1},
             "ignored": {"bad time": {"count": 1, "lines": [14]}}},
            {"file": "b.nmea", "format": "NMEA 0183", "group": null, "epochs": 1, "points": 0,
             "by_quality": {}, "base": null, "rover_antenna": null, "rejected": {"no fix": {"count": 1, "lines": [2]}},
             "filtered": {}, "ignored": {}}
        ],
        "crs": "EPSG:32633", "heights": "antenna", "antenna": 2.0,
        "without_plane": 0, "skipped": 0, "output": "out.csv", "format": "CSV"
    })");
    json made = Json(outcome);
    const json extent = made.at("extent");
    made.erase("extent");
    EXPECT_EQ(made, expected) << outcome;
    for (const std::size_t end : {0U, 1U}) {
        EXPECT_NEAR(extent.at("east").at(end).get<double>(), 403380.498892, 1e-4);
        EXPECT_NEAR(extent.at("north").at(end).get<double>(), 5055908.982184, 1e-4);
        EXPECT_NEAR(extent.at("height").at(end).get<double>(), 61.0, 1e-4);
    }
}

TEST(ConvertSummary, JsonTellsTheBaseOfAPosFile) {
    const Workplace place;
    place.Put("a.pos",
              PosFile("lat/lon/height=WGS84/ellipsoidal", "latitude(deg) longitude(deg) height(m)",
                      "45.65 13.76 60.25",
                      "2024/05/01 08:00:18.000 45.65 13.76 63.0 1 15 0.01 0.01 0.02 0 0 0 1.00 9.9\n"));
    const json log = Json(place.Convert({"a.pos", "-o", "out.csv", "--json"})).at("files").at(0);
    EXPECT_EQ(log.at("rover_antenna"), 0.0);
    EXPECT_EQ(log.at("base"), json({{"lat", 45.65}, {"lon", 13.76}, {"h", 60.25}, {"antenna", 1.5}}));
}

TEST(ConvertSummary, JsonStandsAloneOnStandardOutput) {
    const Workplace place;
    place.Put("a.nmea", TenSeconds());
    const Outcome mixed = place.Convert({"a.nmea", "--json"});
    EXPECT_EQ(mixed.exitCode, 2) << mixed;
    EXPECT_NE(mixed.err.find("would be mixed with the table"), std::string::npos) << mixed;
    EXPECT_EQ(mixed.out, "");
    const Outcome verbose =
        place.Convert({"a.nmea", "--json", "--verbose", "--min-quality", "fix", "-o", "out.csv"});
    EXPECT_EQ(Json(verbose).at("points"), 5);
    EXPECT_EQ(LinesOf(verbose.err).size(), 5U) << verbose;
}

TEST(ConvertSummary, JsonOfAFileNameThatIsNoTextStillParses) {
    const Workplace place;
    place.Put("caf\xe9.nmea", TenSeconds());
    EXPECT_EQ(Json(place.Convert({"caf\xe9.nmea", "-o", "out.csv", "--json"})).at("points"), 10);
}

/// A log with ten epochs and 17 MB of other lines between them, long enough for a bar.
std::string LongLog() {
    std::string log = TenSeconds();
    const std::string other = "# " + std::string(998, '-') + "\n";
    for (int i = 0; i < 17 * 1049; ++i) log += other;
    return log + Position("080010.00", 4);
}

TEST(ConvertSummary, LongLogShowsABarOnATerminalAndNoneElsewhere) {
    const Workplace place;
    place.Put("long.nmea", LongLog());
    place.Put("short.nmea", TenSeconds());
    const std::vector<std::string> convert{"convert", "--crs", "EPSG:32633", "-o", "out.csv", "--overwrite"};
    const auto with = [&](std::vector<std::string> more) {
        more.insert(more.begin(), convert.begin(), convert.end());
        return more;
    };
    const Outcome drawn = place.RunOnTerminal(with({"long.nmea"}));
    EXPECT_EQ(drawn.exitCode, 0) << drawn;
    EXPECT_NE(drawn.err.find("\rlong.nmea [###"), std::string::npos) << drawn;
    EXPECT_NE(drawn.err.find("100%"), std::string::npos) << drawn;
    EXPECT_EQ(drawn.err.substr(drawn.err.size() - 4), "\r\x1b[K") << "the line is cleared at the end";
    EXPECT_EQ(place.RunOnTerminal(with({"short.nmea"})).err, "");
    EXPECT_EQ(place.RunOnTerminal(with({"long.nmea", "--json"})).err, "");
    EXPECT_EQ(place.Run(with({"long.nmea"})).err, "");
}

}  // namespace
}  // namespace gpsbook::test
