// OgrWriter: the point table in GIS and CAD formats, through the vector drivers of GDAL.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

#include "apps/gpsbook/writers/Columns.h"
#include "apps/gpsbook/writers/RowWriter.h"
#include "apps/gpsbook/writers/StagedOutput.h"

class GDALDataset;
class OGRFeature;
class OGRLayer;

namespace gpsbook {

struct OgrPlan;

struct DatasetCloser {
    void operator()(GDALDataset* dataset) const;
};

/// Every row is a feature with a 3D point: longitude, latitude and ellipsoidal height (WGS 84, degrees and
/// metres) in GeoJSON and GPX; east, north and height in the plane system in GeoPackage, FlatGeobuf,
/// shapefile and DXF. A row that lacks one of the three becomes a feature without geometry; GPX and DXF,
/// which have no such thing, leave it out and count it. Every column that the format can hold is an
/// attribute; a value that is not set is a null. Texts that are not UTF-8, and control characters, are
/// replaced by '?': XML and JSON could not be read back with them.
class OgrWriter : public RowWriter {
public:
    /// Errors: WriteError as MakeRowWriter reports it.
    OgrWriter(const TableFormatInfo& info, const RowOutput& output, const PlaneSystem& plane);
    ~OgrWriter() override;
    OgrWriter(const OgrWriter&) = delete;
    OgrWriter& operator=(const OgrWriter&) = delete;

    /// True when the installed GDAL has the driver of the format.
    static bool HasDriver(TableFormat format);

    std::int64_t SkippedRows() const override { return skipped_; }
    void Write(const PointRow& row) override;
    void Close() override;

private:
    void Create(const char* const* layerOptions);
    void CreateFields();
    bool SetGeometry(OGRFeature& feature, const PointRow& row) const;
    void SetFields(OGRFeature& feature, const PointRow& row) const;
    void CheckWidth(const char* column, const std::string& text) const;
    void WritePoint(const PointRow& row);
    void WriteDrawing(const PointRow& row);
    void CopyToStandardOutput();
    [[noreturn]] void Fail(const std::string& problem) const;

    const OgrPlan& plan_;
    const PlaneSystem plane_;
    std::string name_;                                     // of the output, for messages
    std::ostream* standardOutput_ = nullptr;               // none for a file
    std::unique_ptr<TempFolder> pipeFolder_;               // what goes to standard output is prepared here
    std::unique_ptr<StagedOutput> staged_;                 // none for standard output
    std::string path_;                                     // of the file that GDAL writes
    std::unique_ptr<GDALDataset, DatasetCloser> dataset_;  // closed before its files are moved or removed
    OGRLayer* layer_ = nullptr;
    std::array<int, kColumns.size()> fields_{};  // of the columns; -1: the format has none
    std::int64_t failuresBefore_ = 0;            // of CheckedFiles, when the file was created
    std::int64_t written_ = 0;
    std::int64_t skipped_ = 0;
};

}  // namespace gpsbook
