#include "apps/gpsbook/writers/OgrWriter.h"

#include <cpl_conv.h>
#include <gtest/gtest.h>
#include <ogrsf_frmts.h>

#include <cstring>
#include <memory>
#include <sstream>

#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook {
namespace {

const PlaneSystem kUtm32{"EPSG:32632"};

/// How a format is expected to look when it is read back.
struct Form {
    const char* name;
    TableFormat format;
    const char* file;
    bool plane;
    bool holdsNoGeometry;
    const char* prefix;  // of the fields that the format does not know itself
    const char* time;    // name of the time field
    bool timeIsText;
};

std::ostream& operator<<(std::ostream& out, const Form& form) { return out << form.name; }

const Form kForms[] = {
    {"GeoJson", TableFormat::geoJson, "t.geojson", false, true, "", "time", false},
    {"GeoPackage", TableFormat::geoPackage, "t.gpkg", true, true, "", "time", false},
    {"Kml", TableFormat::kml, "t.kml", false, true, "", "timestamp", false},
    {"Gpx", TableFormat::gpx, "t.gpx", false, false, "ogr_", "time", false},
    {"FlatGeobuf", TableFormat::flatGeobuf, "t.fgb", true, false, "", "time", false},
    {"Shapefile", TableFormat::shapefile, "t.shp", true, true, "", "time", true},
};

void WriteRows(const std::string& path, TableFormat format, const std::vector<PointRow>& rows,
               const PlaneSystem& plane = kUtm32, std::int64_t skipped = 0, bool overwrite = false) {
    const auto writer = MakeRowWriter(format, {path, overwrite, nullptr}, plane);
    for (const PointRow& row : rows) writer->Write(row);
    writer->Close();
    EXPECT_EQ(writer->SkippedRows(), skipped);
}

GDALDatasetUniquePtr Open(const std::string& path) {
    GDALAllRegister();
    CPLSetConfigOption("GPX_ELE_AS_25D", "YES");  // read elevations of waypoints as Z
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY));
    if (!dataset) throw std::runtime_error("cannot be read back: " + path);
    return dataset;
}

std::vector<OGRFeatureUniquePtr> Features(GDALDataset& dataset) {
    std::vector<OGRFeatureUniquePtr> features;
    if (dataset.GetLayerCount() == 0) return features;  // a GPX file without waypoints
    for (auto& feature : dataset.GetLayer(0)) features.emplace_back(feature->Clone());
    return features;
}

/// The index of the field that holds a column; -1: none.
int FieldIndex(const OGRFeature& feature, const Form& form, const std::string& column) {
    if (column == "time") return feature.GetFieldIndex(form.time);
    const int own = feature.GetFieldIndex(column.c_str());
    if (own >= 0) return own;
    if (form.format == TableFormat::gpx && column == "h") return feature.GetFieldIndex("ele");
    return feature.GetFieldIndex((form.prefix + column).c_str());
}

void ExpectNumber(const OGRFeature& feature, const Form& form, const char* column, double value) {
    const int index = FieldIndex(feature, form, column);
    ASSERT_GE(index, 0) << form << ' ' << column;
    EXPECT_NEAR(feature.GetFieldAsDouble(index), value, 1e-10 * std::max(1.0, value))
        << form << ' ' << column;
}

void ExpectText(const OGRFeature& feature, const Form& form, const char* column, const std::string& value) {
    const int index = FieldIndex(feature, form, column);
    ASSERT_GE(index, 0) << form << ' ' << column;
    EXPECT_EQ(feature.GetFieldAsString(index), value) << form << ' ' << column;
}

void ExpectTime(const OGRFeature& feature, const Form& form, const std::string& text, int expectedSecond) {
    const int index = FieldIndex(feature, form, "time");
    ASSERT_GE(index, 0) << form;
    if (form.timeIsText) {
        EXPECT_EQ(feature.GetFieldAsString(index), text) << form;
        return;
    }
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, zone = 0;
    float second = 0.0F;
    ASSERT_TRUE(feature.GetFieldAsDateTime(index, &year, &month, &day, &hour, &minute, &second, &zone))
        << form;
    EXPECT_EQ(feature.GetFieldDefnRef(index)->GetType(), OFTDateTime) << form;
    EXPECT_EQ(year, std::stoi(text.substr(0, 4))) << form;
    EXPECT_EQ(month, std::stoi(text.substr(5, 2))) << form;
    EXPECT_EQ(day, std::stoi(text.substr(8, 2))) << form;
    EXPECT_EQ(hour, std::stoi(text.substr(11, 2))) << form;
    EXPECT_EQ(minute, std::stoi(text.substr(14, 2))) << form;
    EXPECT_NEAR(second, static_cast<float>(expectedSecond) + std::stof(text.substr(19, 4)), 1e-4) << form;
    EXPECT_EQ(zone, 100) << form;  // UTC
}

void ExpectPoint(const OGRFeature& feature, const char* name, double x, double y, double z) {
    const OGRGeometry* geometry = feature.GetGeometryRef();
    ASSERT_NE(geometry, nullptr) << name;
    ASSERT_EQ(geometry->getGeometryType(), wkbPoint25D) << name;
    const OGRPoint* point = geometry->toPoint();
    EXPECT_NEAR(point->getX(), x, 1e-9) << name;
    EXPECT_NEAR(point->getY(), y, 1e-9) << name;
    EXPECT_NEAR(point->getZ(), z, 1e-9) << name;
}

class OgrFormats : public testing::TestWithParam<Form> {
protected:
    TestFolder folder_;
};

class PlaneFormats : public OgrFormats {};

std::vector<Form> PlaneForms() {
    std::vector<Form> forms;
    for (const Form& form : kForms) {
        if (form.plane) forms.push_back(form);
    }
    return forms;
}

std::string FormName(const testing::TestParamInfo<Form>& form) { return form.param.name; }

INSTANTIATE_TEST_SUITE_P(All, OgrFormats, testing::ValuesIn(kForms), FormName);
INSTANTIATE_TEST_SUITE_P(All, PlaneFormats, testing::ValuesIn(PlaneForms()), FormName);

TEST_P(OgrFormats, EveryAttributeIsReadBack) {
    const Form& form = GetParam();
    const PointRow row = FullRow();
    WriteRows(folder_ / form.file, form.format, {row});
    const GDALDatasetUniquePtr dataset = Open(folder_ / form.file);
    const auto features = Features(*dataset);
    ASSERT_EQ(features.size(), 1U);
    const OGRFeature& feature = *features[0];

    ExpectText(feature, form, "group", row.group);
    ExpectText(feature, form, "name", row.name);
    ExpectText(feature, form, "code", row.code);
    ExpectTime(feature, form, "2018-10-04T12:37:51.123Z", 51);
    if (form.format != TableFormat::gpx) {  // there they are the place of the waypoint
        ExpectNumber(feature, form, "lat", row.lat);
        ExpectNumber(feature, form, "lon", row.lon);
    }
    ExpectNumber(feature, form, "h", row.h);
    ExpectNumber(feature, form, "antenna", row.antenna);
    ExpectNumber(feature, form, "east", row.east);
    ExpectNumber(feature, form, "north", row.north);
    ExpectNumber(feature, form, "height", row.height);
    ExpectNumber(feature, form, "quality", row.quality);
    ExpectNumber(feature, form, "gps", row.gps);
    ExpectNumber(feature, form, "glonass", row.glonass);
    ExpectNumber(feature, form, "pdop", row.pdop);
    ExpectNumber(feature, form, "hrms", row.hrms);
    ExpectNumber(feature, form, "vrms", row.vrms);
}

TEST_P(OgrFormats, GeometryIsA3dPointInItsSystem) {
    const Form& form = GetParam();
    const PointRow row = FullRow();
    WriteRows(folder_ / form.file, form.format, {row});
    const GDALDatasetUniquePtr dataset = Open(folder_ / form.file);
    const auto features = Features(*dataset);
    ASSERT_EQ(features.size(), 1U);
    if (form.plane)
        ExpectPoint(*features[0], form.name, row.east, row.north, row.height);
    else
        ExpectPoint(*features[0], form.name, row.lon, row.lat, row.h);

    const OGRSpatialReference* system = dataset->GetLayer(0)->GetSpatialRef();
    ASSERT_NE(system, nullptr);
    OGRSpatialReference expected;
    ASSERT_EQ(expected.SetFromUserInput(form.plane ? "EPSG:32632" : "EPSG:4326"), OGRERR_NONE);
    const char* loose[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", "CRITERION=EQUIVALENT", nullptr};
    OGRSpatialReference flat(*system);  // GeoJSON with heights is read as the 3D form of WGS 84
    flat.DemoteTo2D(nullptr);
    EXPECT_TRUE(flat.IsSame(&expected, loose)) << system->GetName();
}

TEST_P(PlaneFormats, PlaneSystemMayBeAProjString) {
    const Form& form = GetParam();
    WriteRows(folder_ / form.file, form.format, {FullRow()},
              {"+proj=tmerc +lat_0=0 +lon_0=12 +k=1 +x_0=3000000 +ellps=bessel"});
    const GDALDatasetUniquePtr dataset = Open(folder_ / form.file);
    const OGRSpatialReference* system = dataset->GetLayer(0)->GetSpatialRef();
    ASSERT_NE(system, nullptr);
    EXPECT_DOUBLE_EQ(system->GetProjParm(SRS_PP_CENTRAL_MERIDIAN), 12.0);
    EXPECT_DOUBLE_EQ(system->GetProjParm(SRS_PP_FALSE_EASTING), 3000000.0);
}

TEST_P(PlaneFormats, UnknownPlaneGetsNoSystem) {
    const Form& form = GetParam();
    WriteRows(folder_ / form.file, form.format, {FullRow()}, {});
    const GDALDatasetUniquePtr dataset = Open(folder_ / form.file);
    const OGRSpatialReference* system = dataset->GetLayer(0)->GetSpatialRef();
    if (form.format == TableFormat::geoPackage) {
        ASSERT_NE(system, nullptr);
        EXPECT_STREQ(system->GetName(), "Undefined Cartesian SRS");
    } else {
        EXPECT_EQ(system, nullptr);
    }
}

TEST_P(OgrFormats, UnsetValuesAreNull) {
    const Form& form = GetParam();
    PointRow row = BareRow();
    row.lat = row.lon = row.h = row.east = row.north = row.height = 1.0;
    WriteRows(folder_ / form.file, form.format, {FullRow(), row});
    const GDALDatasetUniquePtr dataset = Open(folder_ / form.file);
    const auto features = Features(*dataset);
    ASSERT_EQ(features.size(), 2U);
    for (const char* column : {"time", "antenna", "pdop", "hrms", "vrms"}) {
        const int index = FieldIndex(*features[1], form, column);
        ASSERT_GE(index, 0) << column;
        EXPECT_FALSE(features[1]->IsFieldSetAndNotNull(index)) << column;
        EXPECT_TRUE(features[0]->IsFieldSetAndNotNull(index)) << column;
    }
    ExpectNumber(*features[1], form, "quality", 0);
}

TEST_P(OgrFormats, RowWithoutPlaceHasNoGeometryOrIsCounted) {
    const Form& form = GetParam();
    PointRow noHeight = FullRow();
    noHeight.h = noHeight.height = GPS_VAL_UNSET;
    WriteRows(folder_ / form.file, form.format, {FullRow(), BareRow(), noHeight}, kUtm32,
              form.holdsNoGeometry ? 0 : 2);
    const GDALDatasetUniquePtr dataset = Open(folder_ / form.file);
    const auto features = Features(*dataset);
    if (form.holdsNoGeometry) {
        ASSERT_EQ(features.size(), 3U);
        EXPECT_EQ(features[1]->GetGeometryRef(), nullptr);
        EXPECT_EQ(features[2]->GetGeometryRef(), nullptr);
        ExpectText(*features[1], form, "name", "bare");
    } else {
        EXPECT_EQ(features.size(), 1U);
    }
}

TEST_P(OgrFormats, LeapSecondIsSecond60) {
    const Form& form = GetParam();
    PointRow row = FullRow();
    row.year = 2016;
    row.month = 12;
    row.day = 31;
    row.todMs = 86400500;
    WriteRows(folder_ / form.file, form.format, {row});
    const GDALDatasetUniquePtr dataset = Open(folder_ / form.file);
    const auto features = Features(*dataset);
    ASSERT_EQ(features.size(), 1U);
    if (form.format == TableFormat::geoJson)  // GDAL reads times of 60 seconds as text there
        ExpectText(*features[0], form, "time", "2016-12-31T23:59:60.500Z");
    else
        ExpectTime(*features[0], form, "2016-12-31T23:59:60.500Z", 60);
}

TEST_P(OgrFormats, TextsThatAreNoTextCanBeReadBack) {
    const Form& form = GetParam();
    PointRow row = FullRow();
    row.name = "a\x01\xFF<&>]]>z";
    WriteRows(folder_ / form.file, form.format, {row});
    const GDALDatasetUniquePtr dataset = Open(folder_ / form.file);
    const auto features = Features(*dataset);
    ASSERT_EQ(features.size(), 1U);
    ExpectText(*features[0], form, "name", "a?\?<&>]]>z");
}

TEST_P(OgrFormats, ManyRowsKeepTheirOrder) {
    const Form& form = GetParam();
    std::vector<PointRow> rows(500, FullRow());
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i].name = "P" + std::to_string(i);
    WriteRows(folder_ / form.file, form.format, rows);
    const GDALDatasetUniquePtr dataset = Open(folder_ / form.file);
    const auto features = Features(*dataset);
    ASSERT_EQ(features.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) ExpectText(*features[i], form, "name", rows[i].name);
}

TEST_P(OgrFormats, TableWithoutRowsCanBeWritten) {
    const Form& form = GetParam();
    WriteRows(folder_ / form.file, form.format, {});
    EXPECT_TRUE(Features(*Open(folder_ / form.file)).empty());
}

TEST_P(OgrFormats, NothingIsLeftWithoutClose) {
    const Form& form = GetParam();
    {
        const auto writer = MakeRowWriter(form.format, {folder_ / form.file, false, nullptr}, kUtm32);
        writer->Write(FullRow());
    }
    EXPECT_TRUE(folder_.Names().empty());
}

TEST_P(OgrFormats, FullDiskIsReportedAndNothingIsLeft) {
    const Form& form = GetParam();
    {
        const FileSizeLimit limit(120000);
        const auto writeAll = [&] {
            const auto writer = MakeRowWriter(form.format, {folder_ / form.file, false, nullptr}, kUtm32);
            for (int i = 0; i < 1000; ++i) writer->Write(FullRow());
            writer->Close();
        };
        EXPECT_THROW(writeAll(), WriteError);
    }
    EXPECT_TRUE(folder_.Names().empty());
}

TEST_P(OgrFormats, ExistingTableIsReplacedOnlyWhenAskedFor) {
    const Form& form = GetParam();
    WriteRows(folder_ / form.file, form.format, {FullRow(), FullRow()});
    const std::vector<std::string> names = folder_.Names();
    const std::string before = ReadFile(folder_ / form.file);
    EXPECT_THROW(MakeRowWriter(form.format, {folder_ / form.file, false, nullptr}, kUtm32), WriteError);
    EXPECT_EQ(ReadFile(folder_ / form.file), before);

    WriteRows(folder_ / form.file, form.format, {FullRow()}, kUtm32, 0, true);
    EXPECT_EQ(folder_.Names(), names);
    EXPECT_EQ(Features(*Open(folder_ / form.file)).size(), 1U);
}

TEST_P(PlaneFormats, UnusablePlaneSystemIsRefusedAndNothingIsLeft) {
    const Form& form = GetParam();
    for (const char* definition : {"EPSG:999999", "nonsense", "EPSG:4326", "EPSG:4978", "/etc/hostname"}) {
        EXPECT_THROW(MakeRowWriter(form.format, {folder_ / form.file, false, nullptr}, {definition}),
                     WriteError)
            << definition;
    }
    EXPECT_TRUE(folder_.Names().empty());
}

TEST(GpxWriter, SatellitesAreTheSumOfBothSystems) {
    const TestFolder folder;
    WriteRows(folder / "t.gpx", TableFormat::gpx, {FullRow()});
    const GDALDatasetUniquePtr dataset = Open(folder / "t.gpx");
    EXPECT_EQ(Features(*dataset)[0]->GetFieldAsInteger("sat"), 13);
}

TEST(GeoJsonWriter, StandardOutputGetsTheBytesOfTheFile) {
    const TestFolder folder;
    std::ostringstream out;
    const auto writer = MakeRowWriter(TableFormat::geoJson, {"-", false, &out}, {});
    writer->Write(FullRow());
    EXPECT_EQ(out.str(), "");
    writer->Close();
    WriteRows(folder / "points.geojson", TableFormat::geoJson, {FullRow()});
    EXPECT_EQ(out.str(), ReadFile(folder / "points.geojson"));
    EXPECT_NE(out.str().find("[ 11.987654321, 45.123456789, 123.4567 ]"), std::string::npos) << out.str();
}

TEST(ShapefileWriter, TextLongerThanAFieldIsRefusedInsteadOfCut) {
    const TestFolder folder;
    PointRow row = FullRow();
    row.code = std::string(254, 'x');
    WriteRows(folder / "a.shp", TableFormat::shapefile, {row});
    EXPECT_EQ(Features(*Open(folder / "a.shp"))[0]->GetFieldAsString("code"), row.code);

    row.code += 'x';
    {
        const auto writer = MakeRowWriter(TableFormat::shapefile, {folder / "b.shp", false, nullptr}, {});
        try {
            writer->Write(row);
            ADD_FAILURE() << "accepted";
        } catch (const WriteError& e) {
            EXPECT_NE(std::string(e.what()).find("has 255 bytes and a shapefile holds 254"),
                      std::string::npos)
                << e.what();
        }
    }
    for (const std::string& name : folder.Names()) EXPECT_EQ(name.substr(0, 2), "a.");
}

TEST(ShapefileWriter, NameMustEndLikeOne) {
    const TestFolder folder;
    EXPECT_THROW(MakeRowWriter(TableFormat::shapefile, {folder / "t", false, nullptr}, {}), WriteError);
    EXPECT_TRUE(folder.Names().empty());
}

TEST(ShapefileWriter, CompanionOfAnotherTableIsNotReplaced) {
    const TestFolder folder;
    WriteFile(folder / "t.dbf", "a table of its own");
    EXPECT_THROW(MakeRowWriter(TableFormat::shapefile, {folder / "t.shp", false, nullptr}, {}), WriteError);
    EXPECT_EQ(ReadFile(folder / "t.dbf"), "a table of its own");
}

TEST(OgrWriter, FileMayHaveAnyEnding) {
    const TestFolder folder;
    for (const TableFormat format :
         {TableFormat::geoJson, TableFormat::geoPackage, TableFormat::flatGeobuf}) {
        const std::string path = folder / (std::string(InfoOf(format).option) + "-table");
        WriteRows(path, format, {FullRow()});
        EXPECT_TRUE(std::filesystem::is_regular_file(path)) << path;
    }
}

TEST(DxfWriter, PointsStandOnTheLayerOfTheirGroupWithALabel) {
    const TestFolder folder;
    PointRow row = FullRow();
    row.group = "Grün/1";
    row.name = "P\"1\" {ß漢}";
    row.code = "x\\y";
    PointRow unnamed = FullRow();
    unnamed.group = unnamed.name = unnamed.code = "";
    WriteRows(folder / "t.dxf", TableFormat::dxf, {row, BareRow(), unnamed}, kUtm32, 1);

    const GDALDatasetUniquePtr dataset = Open(folder / "t.dxf");
    const auto features = Features(*dataset);
    ASSERT_EQ(features.size(), 3U);
    for (const auto& feature : features) ExpectPoint(*feature, "dxf", row.east, row.north, row.height);
    EXPECT_STREQ(features[0]->GetFieldAsString("SubClasses"), "AcDbEntity:AcDbPoint");
    EXPECT_STREQ(features[0]->GetFieldAsString("Layer"), "Grün_1");
    EXPECT_STREQ(features[1]->GetFieldAsString("SubClasses"), "AcDbEntity:AcDbMText");
    EXPECT_STREQ(features[1]->GetFieldAsString("Layer"), "Grün_1");
    EXPECT_STREQ(features[1]->GetFieldAsString("Text"), "P\"1\" (ß漢)\nx\\y");
    EXPECT_STREQ(features[2]->GetFieldAsString("Layer"), "0");
    EXPECT_EQ(dataset->GetLayer(0)->GetSpatialRef(), nullptr);
}

TEST(DxfWriter, FullDiskIsReportedAndNothingIsLeft) {
    const TestFolder folder;
    {
        const FileSizeLimit limit(120000);
        const auto writeAll = [&] {
            WriteRows(folder / "t.dxf", TableFormat::dxf, std::vector<PointRow>(1000, FullRow()));
        };
        EXPECT_THROW(writeAll(), WriteError);
    }
    EXPECT_TRUE(folder.Names().empty());
}

TEST(DxfWriter, NothingIsLeftWithoutClose) {
    const TestFolder folder;
    {
        const auto writer = MakeRowWriter(TableFormat::dxf, {folder / "t.dxf", false, nullptr}, {});
        writer->Write(FullRow());
    }
    EXPECT_TRUE(folder.Names().empty());
}

}  // namespace
}  // namespace gpsbook
