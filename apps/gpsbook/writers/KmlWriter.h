// KmlWriter: the point table as placemarks on the globe (OGC KML 2.2).
#pragma once

#include <string>

#include "apps/gpsbook/writers/RowWriter.h"
#include "apps/gpsbook/writers/TextOutput.h"

namespace gpsbook {

/// A placemark a row: its name, its time, the other columns as typed extended data, and a point at longitude,
/// latitude and height; without one of the three it has no point. The format's absolute altitudes are above
/// the sea, ours above the ellipsoid: on a globe points stand off by the geoid separation.
/// Written here and not through GDAL, whose time grows with the square of the rows.
class KmlWriter : public RowWriter {
public:
    /// Errors: WriteError as StagedOutput reports it.
    explicit KmlWriter(const RowOutput& output);

    void Write(const PointRow& row) override;
    void Close() override;

private:
    TextOutput out_;
};

}  // namespace gpsbook
