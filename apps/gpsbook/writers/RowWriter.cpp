#include "apps/gpsbook/writers/RowWriter.h"

#include <algorithm>

#include "apps/gpsbook/writers/CsvWriter.h"
#include "apps/gpsbook/writers/KmlWriter.h"
#ifdef GPSBOOK_WITH_GDAL
#include "apps/gpsbook/writers/OgrWriter.h"
#endif

namespace gpsbook {

namespace {

const std::vector<TableFormatInfo>& Table() {
    static const std::vector<TableFormatInfo> table{
        {TableFormat::csv, "csv", "CSV", {".csv"}, {}, true, false},
        {TableFormat::geoJson, "geojson", "GeoJSON", {".geojson", ".json"}, {}, true, true},
        {TableFormat::geoPackage, "gpkg", "GeoPackage", {".gpkg"}, {"-wal", "-shm", "-journal"}, false, true},
        {TableFormat::kml, "kml", "KML", {".kml"}, {}, false, false},
        {TableFormat::gpx, "gpx", "GPX", {".gpx"}, {}, false, true},
        {TableFormat::dxf, "dxf", "DXF", {".dxf"}, {}, false, true},
        {TableFormat::flatGeobuf, "fgb", "FlatGeobuf", {".fgb"}, {}, false, true},
        {TableFormat::shapefile,
         "shp",
         "shapefile",
         {".shp"},
         {".shx", ".dbf", ".prj", ".cpg", ".qpj", ".qix", ".sbn", ".sbx", ".idm", ".ind", ".cst", ".shp.xml"},
         false,
         true},
    };
    return table;
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

}  // namespace

std::span<const TableFormatInfo> TableFormats() { return Table(); }

const TableFormatInfo& InfoOf(TableFormat format) {
    return *std::find_if(Table().begin(), Table().end(),
                         [&](const TableFormatInfo& info) { return info.format == format; });
}

std::optional<TableFormat> FormatFromName(const std::filesystem::path& name) {
    const std::string ending = Lower(name.extension().string());
    for (const TableFormatInfo& info : Table()) {
        if (std::find(info.endings.begin(), info.endings.end(), ending) != info.endings.end())
            return info.format;
    }
    return std::nullopt;
}

std::optional<TableFormat> FormatFromOption(std::string_view option) {
    for (const TableFormatInfo& info : Table()) {
        if (info.option == option) return info.format;
    }
    return std::nullopt;
}

bool CanWrite(TableFormat format) {
#ifdef GPSBOOK_WITH_GDAL
    return !InfoOf(format).throughGdal || OgrWriter::HasDriver(format);
#else
    return !InfoOf(format).throughGdal;
#endif
}

std::unique_ptr<RowWriter> MakeRowWriter(TableFormat format, const RowOutput& output,
                                         const PlaneSystem& plane) {
    const TableFormatInfo& info = InfoOf(format);
    const std::string title(info.title);
    if (output.path == "-" && !info.toStandardOutput)
        throw WriteError("standard output", title + " cannot be written there; give a file name");
    if (format == TableFormat::csv) return std::make_unique<CsvWriter>(output);
    if (format == TableFormat::kml) return std::make_unique<KmlWriter>(output);
#ifdef GPSBOOK_WITH_GDAL
    return std::make_unique<OgrWriter>(info, output, plane);
#else
    static_cast<void>(plane);
    throw WriteError(output.path, title + " is not in this build; use csv, or build the program with GDAL");
#endif
}

}  // namespace gpsbook
