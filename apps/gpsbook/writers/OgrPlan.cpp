#include "apps/gpsbook/writers/OgrPlan.h"

#include <algorithm>
#include <string_view>

namespace gpsbook {

namespace {

// The comma behind the last member keeps one member a line.
constexpr std::array<OgrPlan, 6> kPlans{{
    {
        .format = TableFormat::geoJson,
        .driver = "GeoJSON",
        // RFC 7946 is WGS 84 without saying so; nine decimals of a degree instead of its usual seven.
        .layerOptions = {"RFC7946=YES", "COORDINATE_PRECISION=9", "SIGNIFICANT_FIGURES=15"},
    },
    {
        .format = TableFormat::geoPackage,
        .driver = "GPKG",
        .checkedFile = false,  // a database, which sees to its own writes
        .geometry = Geometry::plane,
    },
    {
        .format = TableFormat::gpx,
        .driver = "GPX",
        .layer = "waypoints",
        .holdsNoGeometry = false,
        .datasetOptions = {"GPX_USE_EXTENSIONS=YES"},
        // Latitude, longitude and elevation are the waypoint's own.
        .renamings = {{{"lat", nullptr}, {"lon", nullptr}, {"h", "ele"}}},
    },
    {
        .format = TableFormat::dxf,
        .driver = "DXF",
        .layer = "entities",
        .geometry = Geometry::plane,
        .holdsNoGeometry = false,
        .ownFields = false,
    },
    {
        .format = TableFormat::flatGeobuf,
        .driver = "FlatGeobuf",
        .geometry = Geometry::plane,
        .holdsNoGeometry = false,  // its driver would drop them in silence
        // An index would sort the points by place; the order of the book is worth more.
        .layerOptions = {"SPATIAL_INDEX=NO"},
    },
    {
        .format = TableFormat::shapefile,
        .driver = "ESRI Shapefile",
        .geometry = Geometry::plane,
        .fixedWidth = true,
        .time = TimeKind::text,  // its dates have no time of day
        .layerOptions = {"ENCODING=UTF-8", "SHPT=POINTZ"},
    },
}};

}  // namespace

const OgrPlan& PlanOf(TableFormat format) {
    return *std::find_if(kPlans.begin(), kPlans.end(),
                         [&](const OgrPlan& plan) { return plan.format == format; });
}

const char* FieldOf(const OgrPlan& plan, const char* column) {
    for (const Renaming& renaming : plan.renamings) {
        if (renaming.column != nullptr && std::string_view(renaming.column) == column) return renaming.field;
    }
    return plan.ownFields ? column : nullptr;
}

}  // namespace gpsbook
