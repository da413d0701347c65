// RowWriter: a point table that is written row by row, in any of the formats.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/gpsbook/writers/PointRow.h"
#include "apps/gpsbook/writers/WriteError.h"

namespace gpsbook {

enum class TableFormat : std::uint8_t { csv, geoJson, geoPackage, kml, gpx, dxf, flatGeobuf, shapefile };

/// A format as people name it.
struct TableFormatInfo {
    TableFormat format;
    std::string_view option;                // after -f: "csv"
    std::string_view title;                 // "GeoPackage"
    std::vector<std::string_view> endings;  // of file names, lower case: ".geojson", ".json"
    std::vector<std::string> companions;    // other files of the same table, as in StagedOutput
    bool toStandardOutput;                  // can be written to "-"
    bool throughGdal;
};

/// All formats, also those that this build cannot write.
std::span<const TableFormatInfo> TableFormats();

const TableFormatInfo& InfoOf(TableFormat format);

/// The format that the ending of a file name stands for, in upper or lower case.
std::optional<TableFormat> FormatFromName(const std::filesystem::path& name);

/// The format of an option's value, in lower case: "csv", "gpkg", ...
std::optional<TableFormat> FormatFromOption(std::string_view option);

/// True when this build can write the format.
bool CanWrite(TableFormat format);

/// Receives the rows of one table. What was written stands at its target after Close; a writer destroyed
/// without Close leaves nothing there (standard output excepted: what was sent is sent).
/// Errors: WriteError from every command; the writer is of no use afterwards.
class RowWriter {
public:
    virtual ~RowWriter() = default;

    /// Rows that the format could not hold and that were left out.
    virtual std::int64_t SkippedRows() const { return 0; }

    virtual void Write(const PointRow& row) = 0;

    /// Completes the table and puts it in place.
    virtual void Close() = 0;
};

/// Where a table goes and how.
struct RowOutput {
    std::string path;                        // "-": standard output
    bool overwrite = false;                  // replace a file that exists
    std::ostream* standardOutput = nullptr;  // Default: std::cout
};

/// Errors: WriteError when the target exists and may not be replaced, its folder is missing, the format is
/// not in this build or cannot go to standard output, or the plane system cannot be read. Nothing is left
/// then.
std::unique_ptr<RowWriter> MakeRowWriter(TableFormat format, const RowOutput& output,
                                         const PlaneSystem& plane);

}  // namespace gpsbook
