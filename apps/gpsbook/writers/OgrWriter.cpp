#include "apps/gpsbook/writers/OgrWriter.h"

#include <cpl_error.h>
#include <ogrsf_frmts.h>

#include <fstream>
#include <iostream>

#include "apps/gpsbook/writers/CheckedFiles.h"
#include "apps/gpsbook/writers/OgrPlan.h"
#include "apps/gpsbook/writers/TableText.h"

namespace gpsbook {

namespace {

constexpr int kUtc = 100;                     // GDAL's code for it
constexpr int kDbfTextWidth = 254;            // bytes, the most a shapefile holds
constexpr int kDbfNumberWidth = 20;           // characters
constexpr const char* kLabelHeight = "0.5g";  // in units of the drawing

/// While it lives GDAL's messages are kept for us instead of being printed.
class QuietGdal {
public:
    QuietGdal() {
        CPLErrorReset();
        CPLPushErrorHandler(CPLQuietErrorHandler);
    }
    ~QuietGdal() { CPLPopErrorHandler(); }
    QuietGdal(const QuietGdal&) = delete;
    QuietGdal& operator=(const QuietGdal&) = delete;
};

GDALDriver* DriverOf(const OgrPlan& plan) {
    static const bool registered = (GDALAllRegister(), true);
    static_cast<void>(registered);
    return GetGDALDriverManager()->GetDriverByName(plan.driver);
}

/// What identifies the reference system of the geometries; nullptr: they get none.
const char* DefinitionOf(const OgrPlan& plan, const PlaneSystem& plane) {
    if (plan.geometry == Geometry::geographic) return "EPSG:4326";
    if (!plane.definition.empty()) return plane.definition.c_str();
    // Without a system a GeoPackage would say that its coordinates are degrees; this is its name for a plane
    // about which nothing is known.
    if (plan.format == TableFormat::geoPackage)
        return R"(LOCAL_CS["Undefined Cartesian SRS",UNIT["metre",1]])";
    return nullptr;
}

std::unique_ptr<OGRSpatialReference> SystemOf(const OgrPlan& plan, const PlaneSystem& plane,
                                              const std::string& file) {
    const char* definition = DefinitionOf(plan, plane);
    if (definition == nullptr) return nullptr;
    auto system = std::make_unique<OGRSpatialReference>();
    // The limitations: a definition is never taken for the name of a file or an address.
    if (system->SetFromUserInput(definition, OGRSpatialReference::SET_FROM_USER_INPUT_LIMITATIONS_get()) !=
        OGRERR_NONE)
        throw WriteError(file, "the plane system \"" + plane.definition + "\" is unknown (" +
                                   CPLGetLastErrorMsg() + "); give EPSG:n, a PROJ string or WKT");
    if (plan.geometry == Geometry::plane && (system->IsGeographic() || system->IsGeocentric()))
        throw WriteError(file, "\"" + plane.definition + "\" is no plane system; give a projected one");
    system->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    return system;
}

OGRFieldType TypeOf(const Column& column, TimeKind time) {
    if (std::holds_alternative<NumberMember>(column.value)) return OFTReal;
    if (std::holds_alternative<CountMember>(column.value)) return OFTInteger;
    if (std::holds_alternative<TimeMember>(column.value) && time == TimeKind::dateTime) return OFTDateTime;
    return OFTString;
}

void SetWidth(OGRFieldDefn& field, const Column& column) {
    if (const auto* number = std::get_if<NumberMember>(&column.value)) {
        field.SetWidth(kDbfNumberWidth);
        field.SetPrecision(number->decimals);
    } else if (std::holds_alternative<TextMember>(column.value)) {
        field.SetWidth(kDbfTextWidth);
    } else if (std::holds_alternative<TimeMember>(column.value)) {
        field.SetWidth(24);
    }
}

}  // namespace

void DatasetCloser::operator()(GDALDataset* dataset) const {
    CPLPushErrorHandler(CPLQuietErrorHandler);
    GDALClose(dataset);
    CPLPopErrorHandler();
}

OgrWriter::OgrWriter(const TableFormatInfo& info, const RowOutput& output, const PlaneSystem& plane)
    : plan_(PlanOf(info.format)), plane_(plane), name_(output.path) {
    if (!HasDriver(info.format))
        throw WriteError(name_, std::string(info.title) + " is not in the installed GDAL (driver " +
                                    plan_.driver + "); install it or choose another format");
    // The file has the usual ending while it is made: some drivers go by it.
    const std::string ending(info.endings.front());
    if (name_ == "-") {
        name_ = "standard output";
        standardOutput_ = output.standardOutput != nullptr ? output.standardOutput : &std::cout;
        pipeFolder_ = std::make_unique<TempFolder>(std::filesystem::temp_directory_path(), name_);
        path_ = (pipeFolder_->Path() / ("points" + ending)).string();
    } else {
        const std::filesystem::path target(name_);
        if (info.format == TableFormat::shapefile && FormatFromName(target) != TableFormat::shapefile)
            throw WriteError(name_, "the name of a shapefile ends with .shp; add it");
        staged_ = std::make_unique<StagedOutput>(target, output.overwrite, info.companions,
                                                 target.stem().string() + ending);
        path_ = staged_->File().string();
    }
    Create(plan_.layerOptions.data());
}

OgrWriter::~OgrWriter() = default;

bool OgrWriter::HasDriver(TableFormat format) { return DriverOf(PlanOf(format)) != nullptr; }

void OgrWriter::Create(const char* const* layerOptions) {
    const QuietGdal quiet;
    const std::unique_ptr<OGRSpatialReference> system = SystemOf(plan_, plane_, name_);
    const std::string gdalName = plan_.checkedFile ? CheckedFiles::NameOf(path_) : path_;
    failuresBefore_ = CheckedFiles::Failures();
    dataset_.reset(DriverOf(plan_)->Create(gdalName.c_str(), 0, 0, 0, GDT_Unknown,
                                           const_cast<char**>(plan_.datasetOptions.data())));
    if (!dataset_) Fail("cannot be created");
    layer_ = dataset_->CreateLayer(plan_.layer, system.get(), wkbPoint25D, const_cast<char**>(layerOptions));
    if (layer_ == nullptr) Fail("cannot be created");
    CreateFields();
    // Thousands of rows in one transaction instead of one each, where there are transactions.
    if (dataset_->TestCapability(ODsCTransactions) != 0 && dataset_->StartTransaction() != OGRERR_NONE)
        Fail("cannot be created");
}

void OgrWriter::CreateFields() {
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        fields_[i] = -1;
        const char* name = FieldOf(plan_, kColumns[i].name);
        if (name == nullptr) continue;
        if (layer_->GetLayerDefn()->GetFieldIndex(name) < 0) {
            OGRFieldDefn field(name, TypeOf(kColumns[i], plan_.time));
            if (plan_.fixedWidth) SetWidth(field, kColumns[i]);
            if (layer_->CreateField(&field) != OGRERR_NONE) Fail("cannot be created");
        }
        fields_[i] = layer_->GetLayerDefn()->GetFieldIndex(name);
    }
}

void OgrWriter::Write(const PointRow& row) {
    const QuietGdal quiet;
    if (plan_.format == TableFormat::dxf)
        WriteDrawing(row);
    else
        WritePoint(row);
}

void OgrWriter::WritePoint(const PointRow& row) {
    OGRFeature feature(layer_->GetLayerDefn());
    if (!SetGeometry(feature, row) && !plan_.holdsNoGeometry) {
        ++skipped_;
        return;
    }
    SetFields(feature, row);
    if (layer_->CreateFeature(&feature) != OGRERR_NONE) Fail("writing failed");
    ++written_;
}

/// A drawing gets the point, and beside it a label with the name and, in a second line, the code.
void OgrWriter::WriteDrawing(const PointRow& row) {
    OGRFeature point(layer_->GetLayerDefn());
    if (!SetGeometry(point, row)) {
        ++skipped_;
        return;
    }
    const std::string drawingLayer = DrawingLayer(CleanText(row.group));
    point.SetField("Layer", drawingLayer.c_str());
    if (layer_->CreateFeature(&point) != OGRERR_NONE) Fail("writing failed");
    ++written_;

    std::string text = CleanText(row.name);
    if (!row.code.empty()) text += "\n" + CleanText(row.code);
    if (text.empty()) return;
    OGRFeature label(layer_->GetLayerDefn());
    SetGeometry(label, row);
    label.SetField("Layer", drawingLayer.c_str());
    label.SetStyleString(LabelStyle(text, kLabelHeight).c_str());
    if (layer_->CreateFeature(&label) != OGRERR_NONE) Fail("writing failed");
}

bool OgrWriter::SetGeometry(OGRFeature& feature, const PointRow& row) const {
    const bool geographic = plan_.geometry == Geometry::geographic;
    const double x = geographic ? row.lon : row.east;
    const double y = geographic ? row.lat : row.north;
    const double z = geographic ? row.h : row.height;
    if (!HasValue(x) || !HasValue(y) || !HasValue(z)) return false;
    const OGRPoint point(x, y, z);
    feature.SetGeometry(&point);
    return true;
}

void OgrWriter::SetFields(OGRFeature& feature, const PointRow& row) const {
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        const int field = fields_[i];
        if (field < 0) continue;
        feature.SetFieldNull(field);
        if (const auto* text = std::get_if<TextMember>(&kColumns[i].value)) {
            const std::string clean = CleanText(row.*(*text));
            CheckWidth(kColumns[i].name, clean);
            feature.SetField(field, clean.c_str());
        } else if (const auto* number = std::get_if<NumberMember>(&kColumns[i].value)) {
            if (HasValue(row.*(number->value))) feature.SetField(field, row.*(number->value));
        } else if (const auto* count = std::get_if<CountMember>(&kColumns[i].value)) {
            feature.SetField(field, row.*(*count));
        } else if (HasTime(row)) {
            if (plan_.time == TimeKind::text) {
                feature.SetField(field, TimeText(row).c_str());
            } else {
                const ClockTime t = SplitTime(row.todMs);
                feature.SetField(field, row.year, row.month, row.day, t.hour, t.minute,
                                 static_cast<float>(t.second) + static_cast<float>(t.millisecond) / 1000.0F,
                                 kUtc);
            }
        }
    }
    if (plan_.format == TableFormat::gpx) feature.SetField("sat", row.gps + row.glonass);
}

void OgrWriter::CheckWidth(const char* column, const std::string& text) const {
    if (!plan_.fixedWidth || text.size() <= kDbfTextWidth) return;
    throw WriteError(name_, "the " + std::string(column) + " \"" + text.substr(0, 40) + "...\" has " +
                                std::to_string(text.size()) + " bytes and a shapefile holds " +
                                std::to_string(kDbfTextWidth) + "; shorten it or choose gpkg");
}

void OgrWriter::Close() {
    if (plan_.format == TableFormat::flatGeobuf && written_ == 0) {
        // Without an index its driver leaves a table without rows an empty file, with one it writes a header.
        const std::array<const char*, 2> indexed{"SPATIAL_INDEX=YES"};
        dataset_.reset();
        std::filesystem::remove(path_);
        Create(indexed.data());
    }
    {
        const QuietGdal quiet;
        if (dataset_->TestCapability(ODsCTransactions) != 0 && dataset_->CommitTransaction() != OGRERR_NONE)
            Fail("writing failed");
        GDALClose(dataset_.release());
        if (CPLGetLastErrorType() >= CE_Failure || CheckedFiles::Failures() != failuresBefore_)
            Fail("writing failed");
    }
    if (staged_)
        staged_->Commit();
    else
        CopyToStandardOutput();
}

void OgrWriter::CopyToStandardOutput() {
    std::ifstream in(path_, std::ios::binary);
    *standardOutput_ << in.rdbuf() << std::flush;
    if (!in || !*standardOutput_) throw WriteError(name_, "writing failed; see whether its reader has gone");
}

void OgrWriter::Fail(const std::string& problem) const {
    std::string why = CPLGetLastErrorMsg();
    if (why.empty()) why = "no reason given";
    throw WriteError(name_,
                     problem + " (" + why + "); see whether the disk is full or choose another format");
}

}  // namespace gpsbook
