// gpsbook convert: what every option does, and what is refused.
#include <gtest/gtest.h>

#include <fstream>

#include "tests/apps/gpsbook/commands/Gpsbook.h"
#include "tests/apps/gpsbook/commands/Logs.h"

namespace gpsbook::test {
namespace {

using Arguments = std::vector<std::string>;

/// The cells of one column of the table on standard output, separated by blanks.
std::string Column(const Outcome& outcome, const std::string& column) {
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    std::string cells;
    for (const auto& row : RowsOf(outcome.out)) cells += (cells.empty() ? "" : " ") + row.at(column);
    return cells;
}

TEST(ConvertOptions, MinQualityLeavesOutWhatIsWorse) {
    const Workplace place;
    place.Put("a.nmea", TenSeconds());
    const std::pair<const char*, const char*> rows[] = {
        {"any", "1 1 5 5 4 4 4 4 2 4"}, {"single", "1 1 5 5 4 4 4 4 2 4"},
        {"dgps", "5 5 4 4 4 4 2 4"},    {"float", "5 5 4 4 4 4 4"},
        {"fix", "4 4 4 4 4"},           {"5", "5 5 4 4 4 4 4"},
        {"2", "5 5 4 4 4 4 2 4"},       {"4", "4 4 4 4 4"}};
    for (const auto& [wanted, qualities] : rows)
        EXPECT_EQ(Column(place.Convert({"a.nmea", "--min-quality", wanted}), "quality"), qualities) << wanted;
}

TEST(ConvertOptions, EveryFromAndToChooseByTime) {
    const Workplace place;
    place.Put("a.nmea", TenSeconds());
    struct Row {
        Arguments options;
        const char* seconds;
    };
    const Row rows[] = {
        {{"--every", "3"}, "0 3 6 9"},
        {{"--every", "2.5"}, "0 3 6 9"},
        {{"--every", "100"}, "0"},
        {{"--from", "08:00:04"}, "4 5 6 7 8 9"},
        {{"--to", "08:00:02"}, "0 1 2"},
        {{"--from", "2024-05-01T08:00:02.5Z", "--to", "2024-05-01T10:00:05+02:00"}, "3 4 5"},
        {{"--from", "07:00", "--to", "08:01"}, "0 1 2 3 4 5 6 7 8 9"},
        {{"--from", "08:00:01", "--every", "4", "--min-quality", "fix"}, "4 9"},
    };
    for (const Row& row : rows) {
        Arguments arguments{"a.nmea"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        const Outcome outcome = place.Convert(arguments);
        ASSERT_EQ(outcome.exitCode, 0) << outcome;
        std::string seconds;
        for (const auto& point : RowsOf(outcome.out))
            seconds += (seconds.empty() ? "" : " ") + point.at("time").substr(18, 1);
        EXPECT_EQ(seconds, row.seconds) << outcome;
    }
}

TEST(ConvertOptions, PointsAreNumberedOnOverAllLogs) {
    const Workplace place;
    place.Put("a.nmea", Rmc("080000.00", "010524") + Position("080000.00", 4) + Position("080001.00", 4));
    place.Put("b.nmea", Rmc("090000.00", "010524") + Position("090000.00", 4));
    EXPECT_EQ(Column(place.Convert({"a.nmea", "b.nmea"}), "name"), "P1 P2 P3");
    EXPECT_EQ(Column(place.Convert({"a.nmea", "--prefix", "", "--start", "0"}), "name"), "0 1");
    EXPECT_EQ(Column(place.Convert({"a.nmea", "--prefix", "-S-", "--start", "010"}), "name"), "-S-10 -S-11")
        << "a leading zero does not make the number octal";
    EXPECT_EQ(Column(place.Convert({"a.nmea", "--start", "999999999"}), "name"), "P999999999 P1000000000");
}

TEST(ConvertOptions, CodeAndGroupGoToTheTable) {
    const Workplace place;
    place.Put("day one.nmea", Rmc("080000.00", "010524") + Position("080000.00", 4));
    place.Put("b.nmea", Rmc("080000.00", "010524") + Position("080000.00", 4));
    EXPECT_EQ(Column(place.Convert({"day one.nmea", "b.nmea"}), "group"), "day one b");
    EXPECT_EQ(Column(place.Convert({"b.nmea", "--group", "Quay"}), "group"), "Quay");
    EXPECT_EQ(Column(place.Convert({"b.nmea", "day one.nmea", "--group", "Quay"}), "group"), "Quay-1 Quay-2");
    EXPECT_EQ(Column(place.Convert({"b.nmea", "--code", "KERB"}), "code"), "KERB");
    EXPECT_EQ(Column(place.Convert({"b.nmea"}), "code"), "");
}

TEST(ConvertOptions, LogsOfTheSameNameMakeGroupsThatDiffer) {
    const Workplace place;
    for (const char* folder : {"x", "y"}) std::filesystem::create_directory(place.Path(folder));
    for (const char* name : {"x/a.nmea", "y/a.nmea", "a.log", "b.nmea"})
        place.Put(name, Rmc("080000.00", "010524") + Position("080000.00", 4));
    EXPECT_EQ(Column(place.Convert({"x/a.nmea", "b.nmea", "y/a.nmea", "a.log"}), "group"), "a b a-2 a-3");
}

TEST(ConvertOptions, LogWithoutPointsLeavesNoGroupBehind) {
    const Workplace place;
    place.Put("a.nmea", Rmc("080000.00", "010524") + Position("080000.00", 0));
    place.Put("b.nmea", Rmc("080000.00", "010524") + Position("080000.00", 4));
    place.Put("c.txt", "no log at all\n");
    const Outcome outcome = place.Convert({"a.nmea", "c.txt", "b.nmea"});
    EXPECT_EQ(Column(outcome, "group"), "b");
    EXPECT_EQ(Column(outcome, "name"), "P1");
    EXPECT_NE(outcome.err.find("a.nmea: NMEA 0183, 1 epoch, 0 points\n  1 epoch rejected: no fix (line 2)\n"),
              std::string::npos)
        << outcome;
    EXPECT_NE(outcome.err.find("warning: c.txt: neither an NMEA 0183 nor an RTKLIB .pos log"),
              std::string::npos)
        << outcome;
}

TEST(ConvertOptions, StandardInputIsReadWhereTheDashStands) {
    const Workplace place;
    place.Put("a.nmea", Rmc("080000.00", "010524") + Position("080000.00", 4));
    Surroundings around;
    around.input = TenSeconds();
    EXPECT_EQ(Column(place.Convert({"-", "--min-quality", "fix"}, around), "group"),
              "stdin stdin stdin stdin stdin");
    EXPECT_EQ(Column(place.Convert({"a.nmea", "-", "--every", "9"}, around), "group"), "a stdin stdin");
    EXPECT_EQ(Column(place.Convert({"-", "--group", "pipe", "--every", "9"}, around), "group"), "pipe pipe");
    EXPECT_EQ(place.Names(), std::vector<std::string>{"a.nmea"});
}

struct BadOption {
    Arguments options;
    int code;
    const char* message;
};

TEST(ConvertOptions, ValuesThatCannotBeMetAreRefusedAndNothingIsWritten) {
    const Workplace place;
    place.Put("a.nmea", TenSeconds());
    const BadOption rows[] = {
        {{"--antenna", "two"}, 2, "--antenna: \"two\" is not a number"},
        {{"--antenna", "2,000"}, 2, "write metres like 2.000"},
        {{"--antenna", ""}, 2, "--antenna"},
        {{"--antenna", "nan"}, 2, "is not a number"},
        {{"--antenna", "-0.1"}, 2, "is not between 0 and 100 metres"},
        {{"--antenna", "2000"}, 2, "is not between 0 and 100 metres; check the unit"},
        {{"--heights", "geoid"}, 2, "--heights: \"geoid\" is unknown; give antenna or marker"},
        {{"--min-quality", "best"},
         2,
         "--min-quality: \"best\" is unknown; give fix, float, dgps, single, any"},
        {{"--min-quality", "12"}, 2, "--min-quality"},
        {{"--every", "0"}, 2, "--every: \"0\" is not a number of seconds above 0"},
        {{"--every", "-1"}, 2, "--every"},
        {{"--every", "often"}, 2, "--every"},
        {{"--every", ""}, 2, "--every: the value is empty"},
        {{"--from", "yesterday"}, 2, "--from: \"yesterday\" is not a time; write it like"},
        {{"--from", ""}, 2, "--from: the value is empty"},
        {{"--to", "25:00"}, 2, "--to: \"25:00\" is not a time"},
        {{"--to", ""}, 2, "--to: the value is empty"},
        {{"--start", "-1"}, 2, "--start: \"-1\" is no number of a point"},
        {{"--start", "1.5"}, 2, "--start"},
        {{"--start", "0x10"}, 2, "--start"},
        {{"--start", "1000000000"}, 2, "give a whole number from 0 to 999999999"},
        {{"--start", "99999999999999999999"}, 2, "--start"},
        {{"--prefix", "A;B"}, 2, "--prefix: a text cannot hold ';'"},
        {{"--prefix", "A\nB"}, 2, "--prefix: a text cannot hold line breaks"},
        {{"--code", "A;B"}, 2, "--code: a text cannot hold ';'"},
        {{"--code", "A\rB"}, 2, "--code: a text cannot hold line breaks"},
        {{"--group", "A;B"}, 2, "--group: a text cannot hold ';'"},
        {{"--group", "A\nB"}, 2, "--group: a text cannot hold line breaks"},
        {{"--group", ""}, 2, "--group: the value is empty"},
        {{"--prefix", "A\xC3"}, 2, "--prefix: the text is not UTF-8"},
        {{"-f", "xlsx"}, 2, "--format: \"xlsx\" is unknown; give one of csv, geojson"},
        {{"-f", "CSV"}, 2, "--format: \"CSV\" is unknown"},
        {{"-f", ""}, 2, "--format: the value is empty"},
        {{"none.nmea"}, 5, "none.nmea: there is no such file"},
        {{"a.nmea/b.nmea"}, 5, "a.nmea/b.nmea: there is no such file"},
        {{"."}, 1, ".: is a folder"},
        {{"-", "-"}, 2, "standard input (-) can be read only once"},
    };
    for (const BadOption& row : rows) {
        Arguments arguments{"a.nmea", "-o", "out.csv"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        const Outcome outcome = place.Convert(arguments);
        EXPECT_EQ(outcome.exitCode, row.code) << row.message << '\n' << outcome;
        EXPECT_NE(outcome.err.find(row.message), std::string::npos) << row.message << '\n' << outcome;
        EXPECT_EQ(outcome.out, "") << row.message;
        EXPECT_EQ(place.Names(), std::vector<std::string>{"a.nmea"}) << row.message;
    }
}

TEST(ConvertOptions, SystemThatIsNotAPlaneOneIsRefused) {
    const Workplace place;
    place.Put("a.nmea", TenSeconds());
    const std::pair<const char*, const char*> rows[] = {
        {"EPSG:999999", "is not a coordinate system that PROJ knows"},
        {"EPSG:", "is not a coordinate system"},
        {"", "the system is empty"},
        {"Monte Mario Italy 2", "is not the whole name of a system"},
        {"utm 33", "is not a coordinate system"},
        {"EPSG:4326", "'EPSG:4326' is a geographic system: give a projected one"},
        {"EPSG:4979", "is a geographic system"},
        {"EPSG:4978", "is a geocentric system"},
        {"+proj=longlat +datum=WGS84", "is a geographic system"},
        {"EPSG:5773", "is not a projected coordinate system"},
        {"+proj=merc +R=1737400", "no point has plane coordinates"},  // the Moon
    };
    for (const auto& [crs, message] : rows) {
        const Outcome outcome = place.Run({"convert", "a.nmea", "--crs", crs, "-o", "out.csv"});
        EXPECT_EQ(outcome.exitCode, 2) << outcome;
        EXPECT_NE(outcome.err.find("--crs: "), std::string::npos) << outcome;
        EXPECT_NE(outcome.err.find(message), std::string::npos) << message << '\n' << outcome;
        EXPECT_EQ(outcome.out, "") << crs;
        EXPECT_EQ(place.Names(), std::vector<std::string>{"a.nmea"}) << crs;
    }
}

TEST(ConvertOptions, SystemCanBeACodeAProjStringOrWkt) {
    const Workplace place;
    place.Put("a.nmea", Rmc("080000.00", "010524") + Position("080000.00", 4));
    const std::string wkt =
        "PROJCS[\"mine\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
        "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
        "PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",15],"
        "PARAMETER[\"scale_factor\",0.9996],PARAMETER[\"false_easting\",500000],"
        "PARAMETER[\"false_northing\",0],UNIT[\"metre\",1]]";
    for (const std::string& crs : {std::string("EPSG:32633"), std::string("epsg:32633"),
                                   std::string("+proj=utm +zone=33 +datum=WGS84"), wkt}) {
        const Outcome outcome = place.Run({"convert", "a.nmea", "--crs", crs});
        EXPECT_EQ(Column(outcome, "east"), "403380.4989") << crs;
        EXPECT_EQ(Column(outcome, "north"), "5055908.9822") << crs;
        EXPECT_EQ(outcome.err.find(wkt), std::string::npos) << "a long system is not told in full\n"
                                                            << outcome;
    }
}

TEST(ConvertOptions, FileNameThatMakesNoGroupNameIsRefusedUnlessTheGroupIsNamed) {
    for (const char* name : {"a;b.nmea", "a\nb.nmea"}) {
        const Workplace place;
        place.Put(name, TenSeconds());
        const Outcome refused = place.Convert({name, "-o", "out.csv"});
        EXPECT_EQ(refused.exitCode, 2) << refused;
        EXPECT_NE(refused.err.find("name the group with --group"), std::string::npos) << refused;
        EXPECT_EQ(place.Names(), std::vector<std::string>{name});
        EXPECT_EQ(place.Convert({name, "-o", "out.csv", "--group", "ab"}).exitCode, 0) << name;
    }
}

}  // namespace
}  // namespace gpsbook::test
