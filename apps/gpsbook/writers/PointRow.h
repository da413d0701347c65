// One row of a point table, ready to be written in any format.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>

#include "platform/base/GpsValues.h"

namespace gpsbook {

/// What a table holds of one point. A number without a value is GPS_VAL_UNSET; texts are UTF-8.
struct PointRow {
    std::string group;
    std::string name;
    std::string code;
    int year = 0;                    // UTC date; 0: no date
    int month = 0;                   // 1 to 12
    int day = 0;                     // 1 to 31
    std::uint32_t todMs = 0;         // UTC time of day, milliseconds; a leap second counts from 86400000
    double lat = GPS_VAL_UNSET;      // degrees, WGS 84, north positive
    double lon = GPS_VAL_UNSET;      // degrees, WGS 84, east positive
    double h = GPS_VAL_UNSET;        // metres above the ellipsoid
    double antenna = GPS_VAL_UNSET;  // metres, antenna above the mark
    double east = GPS_VAL_UNSET;     // plane system of the project, its unit
    double north = GPS_VAL_UNSET;    // plane system of the project, its unit
    double height = GPS_VAL_UNSET;   // metres, in the project
    int quality = 0;                 // code of the solution, as it was measured
    int gps = 0;                     // GPS satellites
    int glonass = 0;                 // GLONASS satellites
    double pdop = GPS_VAL_UNSET;     // dimensionless
    double hrms = GPS_VAL_UNSET;     // metres, horizontal
    double vrms = GPS_VAL_UNSET;     // metres, vertical
};

/// The system that east and north of all rows belong to.
struct PlaneSystem {
    std::string definition;  // "EPSG:n", a PROJ string or WKT; empty: unknown or local
};

/// True for a number that can be written: it has a value, and a finite one.
inline bool HasValue(double v) { return IsCoordValid(v) && std::isfinite(v); }

}  // namespace gpsbook
