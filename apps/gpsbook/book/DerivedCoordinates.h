// DerivedCoordinates: every form of a measured position.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

class CGrpGps;
class CPunGps;

namespace gpsbook {

/// A position in one form; unset values where it cannot be had.
struct Derived {
    const char* mark;   // "phase_centre", "ground_mark", "base"
    const char* datum;  // "measured", "wgs84"
    bool geographic;    // latitude, longitude (degrees), height (metres); else X, Y, Z (metres)
    double values[3];
};

/// Phase centre and ground mark, measured datum and WGS 84, geographic and geocentric.
std::vector<Derived> DerivedOf(CGrpGps& group);

/// The same for a point, and its base as the point remembers it. Through the conversion of its group.
std::vector<Derived> DerivedOf(CPunGps& point, const CGrpGps& group);

/// A line each: "  phase centre, WGS 84: lat 45.650000000, lon 13.760000000, h 63.0000".
std::string DerivedText(const std::vector<Derived>& all);

/// Objects within each other by mark, datum and form.
nlohmann::ordered_json DerivedJson(const std::vector<Derived>& all);

}  // namespace gpsbook
