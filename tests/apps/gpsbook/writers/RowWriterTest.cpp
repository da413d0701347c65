#include "apps/gpsbook/writers/RowWriter.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook {
namespace {

TEST(TableFormats, FileEndingTellsTheFormat) {
    struct Row {
        const char* name;
        std::optional<TableFormat> format;
    };
    const Row rows[] = {
        {"a.csv", TableFormat::csv},
        {"a.geojson", TableFormat::geoJson},
        {"a.json", TableFormat::geoJson},
        {"a.gpkg", TableFormat::geoPackage},
        {"a.kml", TableFormat::kml},
        {"a.gpx", TableFormat::gpx},
        {"a.dxf", TableFormat::dxf},
        {"a.fgb", TableFormat::flatGeobuf},
        {"a.shp", TableFormat::shapefile},
        {"DIR.x/A.GPKG", TableFormat::geoPackage},
        {"a.b.Csv", TableFormat::csv},
        {"a.txt", std::nullopt},
        {"csv", std::nullopt},
        {".csv", std::nullopt},
        {"a.", std::nullopt},
        {"", std::nullopt},
        {"dir.csv/a", std::nullopt},
    };
    for (const Row& row : rows) EXPECT_EQ(FormatFromName(row.name), row.format) << row.name;
}

TEST(TableFormats, OptionTellsTheFormat) {
    for (const TableFormatInfo& info : TableFormats()) EXPECT_EQ(FormatFromOption(info.option), info.format);
    EXPECT_EQ(FormatFromOption("csv"), TableFormat::csv);
    EXPECT_EQ(FormatFromOption("geojson"), TableFormat::geoJson);
    EXPECT_EQ(FormatFromOption("gpkg"), TableFormat::geoPackage);
    EXPECT_EQ(FormatFromOption("shp"), TableFormat::shapefile);
    EXPECT_EQ(FormatFromOption("fgb"), TableFormat::flatGeobuf);
    EXPECT_EQ(FormatFromOption("xls"), std::nullopt);
    EXPECT_EQ(FormatFromOption(""), std::nullopt);
}

TEST(TableFormats, CsvIsInEveryBuild) { EXPECT_TRUE(CanWrite(TableFormat::csv)); }

TEST(MakeRowWriter, FormatThatNeedsAFileIsRefusedOnStandardOutput) {
    for (const TableFormatInfo& info : TableFormats()) {
        if (info.toStandardOutput) continue;
        std::ostringstream out;
        try {
            MakeRowWriter(info.format, {"-", false, &out}, {});
            ADD_FAILURE() << info.title << " accepted";
        } catch (const WriteError& e) {
            EXPECT_EQ(std::string(e.what()), "standard output: " + std::string(info.title) +
                                                 " cannot be written there; give a file name");
        }
        EXPECT_EQ(out.str(), "");
    }
}

#ifndef GPSBOOK_WITH_GDAL
TEST(MakeRowWriter, FormatThatIsNotInTheBuildSaysSo) {
    const TestFolder folder;
    for (const TableFormatInfo& info : TableFormats()) {
        if (!info.throughGdal) continue;
        EXPECT_FALSE(CanWrite(info.format));
        try {
            MakeRowWriter(info.format, {folder / "t", false, nullptr}, {});
            ADD_FAILURE() << info.title << " accepted";
        } catch (const WriteError& e) {
            EXPECT_NE(std::string(e.what()).find(std::string(info.title) + " is not in this build; use csv"),
                      std::string::npos)
                << e.what();
        }
    }
    EXPECT_TRUE(folder.Names().empty());
}
#endif

}  // namespace
}  // namespace gpsbook
