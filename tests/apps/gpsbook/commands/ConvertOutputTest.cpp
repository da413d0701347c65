// gpsbook convert: where the table goes, in which format, and what stays as it was.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>

#include "tests/apps/gpsbook/commands/Gpsbook.h"
#include "tests/apps/gpsbook/commands/Logs.h"
#ifdef GPSBOOK_WITH_GDAL
#include <ogrsf_frmts.h>
#endif

namespace gpsbook::test {
namespace {

using Names = std::vector<std::string>;

const char* const kHeader =
    "group,name,code,time,lat,lon,h,antenna,east,north,height,quality,gps,glonass,pdop,hrms,vrms";

/// What the table of OneFixed holds.
const char* const kRow =
    "a,P1,,2024-05-01T08:00:00.000Z,45.650000000,13.760000000,63.0000,2.0000,403380.4989,5055908.9822,61."
    "0000,"
    "4,15,0,,,";

std::string OneFixed() { return Rmc("080000.00", "010524") + Position("080000.00", 4); }

TEST(ConvertOutput, TableGoesToStandardOutputAndTheSummaryBesideIt) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    for (const std::vector<std::string>& output : {std::vector<std::string>{}, {"-o", "-"}, {"-f", "csv"}}) {
        std::vector<std::string> arguments{"a.nmea", "--antenna", "2.000"};
        arguments.insert(arguments.end(), output.begin(), output.end());
        const Outcome outcome = place.Convert(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        EXPECT_EQ(outcome.out, std::string(kHeader) + "\n" + kRow + "\n") << outcome;
        EXPECT_NE(outcome.err.find("1 point in group a"), std::string::npos) << outcome;
    }
    EXPECT_EQ(place.Names(), Names{"a.nmea"});
}

TEST(ConvertOutput, FileHoldsTheTableAndStandardOutputTheSummary) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    const Outcome outcome = place.Convert({"a.nmea", "--antenna", "2", "-o", "out.csv"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(place.Text("out.csv"), std::string(kHeader) + "\n" + kRow + "\n");
    EXPECT_NE(outcome.out.find("out.csv: CSV, 1 point\n"), std::string::npos) << outcome;
    EXPECT_EQ(outcome.err, "") << outcome;
    EXPECT_EQ(place.Names(), (Names{"a.nmea", "out.csv"}));
}

TEST(ConvertOutput, ExistingFileIsReplacedOnlyOnRequest) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    place.Put("out.csv", "yesterday's");
    const Outcome refused = place.Convert({"a.nmea", "-o", "out.csv"});
    EXPECT_EQ(refused.exitCode, 1) << refused;
    EXPECT_NE(refused.err.find("out.csv: exists already; use --overwrite"), std::string::npos) << refused;
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(place.Text("out.csv"), "yesterday's");

    ASSERT_EQ(::chmod(place.Path("out.csv").c_str(), 0640), 0);
    const Outcome replaced = place.Convert({"a.nmea", "-o", "out.csv", "--overwrite"});
    EXPECT_EQ(replaced.exitCode, 0) << replaced;
    EXPECT_EQ(place.Text("out.csv").substr(0, 11), "group,name,");
    EXPECT_EQ(std::filesystem::status(place.Path("out.csv")).permissions(), std::filesystem::perms{0640})
        << "the new file lets others do what the old one let them";
    EXPECT_EQ(place.Names(), (Names{"a.nmea", "out.csv"}));
}

TEST(ConvertOutput, FailureLeavesTheOldFileEvenWithOverwrite) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    place.Put("out.csv", "yesterday's");
    for (const std::vector<std::string>& failing :
         {std::vector<std::string>{"--from", "12:00"}, {"--min-quality", "best"}, {"none.nmea"}}) {
        std::vector<std::string> arguments{"a.nmea", "-o", "out.csv", "--overwrite"};
        arguments.insert(arguments.end(), failing.begin(), failing.end());
        const Outcome outcome = place.Convert(arguments);
        EXPECT_NE(outcome.exitCode, 0) << outcome;
        EXPECT_EQ(place.Text("out.csv"), "yesterday's") << outcome;
        EXPECT_EQ(place.Names(), (Names{"a.nmea", "out.csv"})) << outcome;
    }
}

TEST(ConvertOutput, LogIsNeverReplacedByItsTable) {
    const Workplace place;
    place.Put("a.csv", OneFixed());
    ASSERT_EQ(::symlink("a.csv", place.Path("link.csv").c_str()), 0);
    for (const char* name : {"a.csv", "./a.csv", "link.csv"}) {
        const Outcome outcome = place.Convert({"a.csv", "-o", name, "--overwrite"});
        EXPECT_EQ(outcome.exitCode, 2) << outcome;
        EXPECT_NE(outcome.err.find("is one of the logs, and a log is never replaced"), std::string::npos)
            << outcome;
        EXPECT_EQ(place.Text("a.csv"), OneFixed()) << name;
    }
    EXPECT_EQ(place.Names(), (Names{"a.csv", "link.csv"}));
}

TEST(ConvertOutput, InterruptedProgramLeavesNothingBehindAndTheOldFileAsItWas) {
    const Workplace place;
    place.Put("out.csv", "yesterday's");
    const Outcome converted = place.RunInterrupted(
        {"convert", "-", "--crs", "EPSG:32633", "-o", "out.csv", "--overwrite"}, TenSeconds());
    EXPECT_EQ(converted.exitCode, 1) << converted;
    EXPECT_NE(converted.err.find("interrupted; nothing was written"), std::string::npos) << converted;
    EXPECT_EQ(converted.out, "");
    const Outcome simulated = place.RunInterrupted({"simulate", "--epochs", "100000000", "-o", "a.nmea"}, "");
    EXPECT_EQ(simulated.exitCode, 1) << simulated;
    EXPECT_NE(simulated.err.find("interrupted; nothing was written"), std::string::npos) << simulated;
    EXPECT_EQ(place.Text("out.csv"), "yesterday's");
    EXPECT_EQ(place.Names(), Names{"out.csv"});
}

TEST(ConvertOutput, PlaceThatCannotBeWrittenIsAFailure) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    ASSERT_EQ(::mkdir(place.Path("folder.csv").c_str(), 0700), 0);
    const std::pair<const char*, const char*> rows[] = {
        {"none/out.csv", "the folder none does not exist"},
        {"a.nmea/out.csv", "is no folder"},
        {"folder.csv", "is a folder"},
    };
    for (const auto& [name, message] : rows) {
        const Outcome outcome = place.Convert({"a.nmea", "-o", name});
        EXPECT_EQ(outcome.exitCode, 1) << outcome;
        EXPECT_NE(outcome.err.find(message), std::string::npos) << outcome;
        EXPECT_EQ(place.Names(), (Names{"a.nmea", "folder.csv"}));
    }
}

TEST(ConvertOutput, FormatThatNothingTellsIsAUsageError) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    for (const char* name : {"out.txt", "out", "csv"}) {
        const Outcome outcome = place.Convert({"a.nmea", "-o", name});
        EXPECT_EQ(outcome.exitCode, 2) << outcome;
        EXPECT_NE(outcome.err.find("the ending does not tell the format; give one with -f"),
                  std::string::npos)
            << outcome;
    }
    for (const char* format : {"kml", "gpkg", "shp", "dxf", "fgb", "gpx"}) {
        const Outcome outcome = place.Convert({"a.nmea", "-f", format});
        EXPECT_EQ(outcome.exitCode, 2) << outcome;
        EXPECT_NE(outcome.err.find("cannot go to standard output; give a file with -o"), std::string::npos)
            << outcome;
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(place.Names(), Names{"a.nmea"});
}

TEST(ConvertOutput, FormatOptionGoesBeforeTheEnding) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    EXPECT_EQ(place.Convert({"a.nmea", "-o", "out.txt", "--format", "csv"}).exitCode, 0);
    EXPECT_EQ(place.Text("out.txt").substr(0, 11), "group,name,");
    EXPECT_EQ(place.Convert({"a.nmea", "-o", "out.csv", "-f", "kml"}).exitCode, 0);
    EXPECT_EQ(place.Text("out.csv").substr(0, 5), "<?xml");
    EXPECT_EQ(place.Convert({"a.nmea", "-o", "OUT.KML"}).exitCode, 0);
    EXPECT_EQ(place.Text("OUT.KML").substr(0, 5), "<?xml");
}

TEST(ConvertOutput, FullStandardOutputIsAFailure) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    Surroundings full;
    full.outputTo = "/dev/full";
    const Outcome table = place.Convert({"a.nmea"}, full);
    EXPECT_EQ(table.exitCode, 1) << table;
    EXPECT_NE(table.err.find("standard output: writing failed"), std::string::npos) << table;
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"a.nmea", "-o", "out.csv", "--overwrite"},
          {"a.nmea", "-o", "out.csv", "--overwrite", "--json"}}) {
        const Outcome summary = place.Convert(arguments, full);
        EXPECT_EQ(summary.exitCode, 1) << summary;
        EXPECT_NE(summary.err.find("the summary could not be written, out.csv is complete"),
                  std::string::npos)
            << summary;
        EXPECT_EQ(place.Text("out.csv").substr(0, 11), "group,name,");
    }
}

// Where no such locale is installed the program has to do without it, and the bytes are the same for that
// reason.
TEST(ConvertOutput, LocaleWithADecimalCommaGivesTheSameBytes) {
    const Workplace place;
    place.Put("a.nmea", TenSeconds());
    Surroundings german;
    for (const char* name : {"LC_ALL", "LC_NUMERIC", "LANG"}) german.environment[name] = "de_DE.UTF-8";
    const std::vector<std::string> table{"a.nmea", "--antenna", "2.000", "--every", "1.5"};
    const Outcome plain = place.Convert(table);
    const Outcome local = place.Convert(table, german);
    EXPECT_EQ(plain.exitCode, 0) << plain;
    EXPECT_EQ(local.out, plain.out);
    EXPECT_EQ(local.err, plain.err);
    const std::vector<std::string> json{"a.nmea", "-o", "out.kml", "--overwrite", "--json"};
    EXPECT_EQ(place.Convert(json, german).out, place.Convert(json).out);
    const std::vector<std::string> log{"simulate", "--noise", "0.5", "--epochs", "20"};
    EXPECT_EQ(place.Run(log, german).out, place.Run(log).out);
}

TEST(ConvertOutput, KmlHoldsThePoint) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    ASSERT_EQ(place.Convert({"a.nmea", "-o", "out.kml"}).exitCode, 0);
    const std::string kml = place.Text("out.kml");
    EXPECT_NE(kml.find("<coordinates>13.760000000,45.650000000,63.0000</coordinates>"), std::string::npos)
        << kml;
    EXPECT_NE(kml.find("<name>P1</name>"), std::string::npos) << kml;
}

#ifdef GPSBOOK_WITH_GDAL

struct GisFormat {
    const char* option;
    const char* file;
    bool geographic;
    int features;  // of two points
    Names files;   // of the table, in order
};

const GisFormat kGisFormats[] = {
    {"geojson", "out.geojson", true, 2, {"out.geojson"}},
    {"geojson", "out.json", true, 2, {"out.json"}},
    {"gpkg", "out.gpkg", false, 2, {"out.gpkg"}},
    {"kml", "out.kml", true, 2, {"out.kml"}},
    {"gpx", "out.gpx", true, 2, {"out.gpx"}},
    {"dxf", "out.dxf", false, 4, {"out.dxf"}},  // a point and its label each
    {"fgb", "out.fgb", false, 2, {"out.fgb"}},
    {"shp", "out.shp", false, 2, {"out.cpg", "out.dbf", "out.prj", "out.shp", "out.shx"}},
};

void ExpectTwoPoints(const std::string& path, const GisFormat& format) {
    GDALAllRegister();
    CPLSetConfigOption("GPX_ELE_AS_25D",
                       "YES");  // its driver reads elevations as attributes only, unless told
    const std::unique_ptr<GDALDataset> data(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR));
    ASSERT_TRUE(data) << path << ": " << CPLGetLastErrorMsg();
    OGRLayer* layer = data->GetLayer(0);
    ASSERT_NE(layer, nullptr) << path;
    EXPECT_EQ(layer->GetFeatureCount(), format.features) << path;
    const OGRFeatureUniquePtr first(layer->GetNextFeature());
    ASSERT_TRUE(first && first->GetGeometryRef()) << path;
    const OGRPoint* point = first->GetGeometryRef()->toPoint();
    EXPECT_NEAR(point->getX(), format.geographic ? 13.76 : 403380.498892, 1e-4) << path;
    EXPECT_NEAR(point->getY(), format.geographic ? 45.65 : 5055908.982184, 1e-4) << path;
    EXPECT_NEAR(point->getZ(), format.geographic ? 63.0 : 61.0, 1e-4) << path;
    const int name = first->GetFieldIndex("name");
    if (std::string(format.option) != "dxf") {
        ASSERT_GE(name >= 0 ? name : first->GetFieldIndex("Name"), 0) << path;
        EXPECT_STREQ(first->GetFieldAsString(name >= 0 ? "name" : "Name"), "P1") << path;
    }
}

TEST(ConvertOutput, EveryFormatIsWrittenByEndingAndByOptionAndReadBack) {
    for (const GisFormat& format : kGisFormats) {
        const Workplace place;
        place.Put("a.nmea", OneFixed() + Position("080001.00", 5));
        const Outcome byEnding = place.Convert({"a.nmea", "--antenna", "2", "-o", format.file});
        ASSERT_EQ(byEnding.exitCode, 0) << format.file << '\n' << byEnding;
        Names expected = format.files;
        expected.insert(expected.begin(), "a.nmea");
        EXPECT_EQ(place.Names(), expected) << format.file;
        ExpectTwoPoints(place.Path(format.file), format);

        const Outcome again =
            place.Convert({"a.nmea", "--antenna", "2", "-o", format.file, "-f", format.option});
        EXPECT_EQ(again.exitCode, 1) << again;
        EXPECT_NE(again.err.find("exists already"), std::string::npos) << again;
        EXPECT_EQ(place.Names(), expected) << format.file;

        const Outcome byOption = place.Convert(
            {"a.nmea", "--antenna", "2", "-o", format.file, "-f", format.option, "--overwrite"});
        ASSERT_EQ(byOption.exitCode, 0) << byOption;
        EXPECT_EQ(place.Names(), expected) << format.file;
        ExpectTwoPoints(place.Path(format.file), format);
    }
}

TEST(ConvertOutput, EverySystemThatCanBeConvertedToCanBeWritten) {
    for (const char* crs : {"epsg:32633", "+proj=utm +zone=33 +datum=WGS84", "proj=utm zone=33 datum=WGS84",
                            "WGS 84 / UTM zone 33N"}) {
        const Workplace place;
        place.Put("a.nmea", OneFixed() + Position("080001.00", 5));
        const Outcome outcome =
            place.Run({"convert", "a.nmea", "--crs", crs, "--antenna", "2", "-o", "out.gpkg"});
        ASSERT_EQ(outcome.exitCode, 0) << outcome;
        ExpectTwoPoints(place.Path("out.gpkg"), kGisFormats[2]);
        const std::unique_ptr<GDALDataset> data(
            GDALDataset::Open(place.Path("out.gpkg").c_str(), GDAL_OF_VECTOR));
        const OGRSpatialReference* system = data->GetLayer(0)->GetSpatialRef();
        ASSERT_NE(system, nullptr) << crs;
        EXPECT_TRUE(system->IsProjected()) << crs;
        EXPECT_EQ(system->GetUTMZone(), 33) << crs;
    }
}

TEST(ConvertOutput, GeoJsonCanGoToStandardOutput) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    const Outcome piped = place.Convert({"a.nmea", "-f", "geojson"});
    ASSERT_EQ(piped.exitCode, 0) << piped;
    EXPECT_NE(piped.out.find("\"FeatureCollection\""), std::string::npos) << piped;
    EXPECT_EQ(place.Names(), Names{"a.nmea"});
}

TEST(ConvertOutput, LogWithoutPointsLeavesNoFileOfAnyFormat) {
    for (const GisFormat& format : kGisFormats) {
        const Workplace place;
        place.Put("a.nmea", Rmc("080000.00", "010524") + Position("080000.00", 0));
        EXPECT_EQ(place.Convert({"a.nmea", "-o", format.file}).exitCode, 1) << format.file;
        EXPECT_EQ(place.Names(), Names{"a.nmea"}) << format.file;
    }
}

#else

TEST(ConvertOutput, FormatThatIsNotInThisBuildIsAFailure) {
    const Workplace place;
    place.Put("a.nmea", OneFixed());
    const Outcome outcome = place.Convert({"a.nmea", "-o", "out.gpkg"});
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_NE(outcome.err.find("is not in this build; use csv"), std::string::npos) << outcome;
    EXPECT_EQ(place.Names(), Names{"a.nmea"});
}

#endif

}  // namespace
}  // namespace gpsbook::test
