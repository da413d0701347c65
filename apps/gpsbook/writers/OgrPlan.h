// OgrPlan: what differs between the formats that GDAL writes, one entry a format.
#pragma once

#include <array>
#include <cstdint>

#include "apps/gpsbook/writers/RowWriter.h"

namespace gpsbook {

enum class Geometry : std::uint8_t { geographic, plane };

/// How the time column is held.
enum class TimeKind : std::uint8_t { dateTime, text };

/// A column that stands in a field of another name, or (name nullptr) in none.
struct Renaming {
    const char* column = nullptr;
    const char* field = nullptr;
};

/// How one format is written. Option lists end with a nullptr.
struct OgrPlan {
    TableFormat format{};
    const char* driver = nullptr;
    bool checkedFile = true;  // written through CheckedFiles
    const char* layer = "points";
    Geometry geometry = Geometry::geographic;
    bool holdsNoGeometry = true;  // a feature without geometry can be written
    bool ownFields = true;        // the columns become fields; a drawing has a fixed set instead
    bool fixedWidth = false;      // fields have a width in characters
    TimeKind time = TimeKind::dateTime;
    std::array<const char*, 2> datasetOptions{};
    std::array<const char*, 4> layerOptions{};
    std::array<Renaming, 3> renamings{};
};

/// Requires: a format that is written through GDAL.
const OgrPlan& PlanOf(TableFormat format);

/// The field that holds a column, nullptr when the format has none for it.
const char* FieldOf(const OgrPlan& plan, const char* column);

}  // namespace gpsbook
