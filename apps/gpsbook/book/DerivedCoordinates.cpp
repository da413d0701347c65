#include "apps/gpsbook/book/DerivedCoordinates.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <string_view>

#include "apps/gpsbook/writers/Columns.h"
#include "gps/model/CGrpGps.h"

namespace gpsbook {

namespace {

constexpr const char* kPhaseCentre = "phase_centre";
constexpr const char* kGroundMark = "ground_mark";
constexpr const char* kMeasured = "measured";
constexpr const char* kWgs84 = "wgs84";

bool AllSet(const double (&v)[3]) { return HasValue(v[0]) && HasValue(v[1]) && HasValue(v[2]); }

Derived Unset(const char* mark, const char* datum, bool geographic) {
    return {mark, datum, geographic, {GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET}};
}

// Both geographic forms of a position in the measured datum.
void AppendGeographic(std::vector<Derived>& all, const char* mark, double lat, double lon, double h,
                      const CConvCoord& conversion) {
    Derived measured{mark, kMeasured, true, {lat, lon, h}};
    Derived wgs84 = Unset(mark, kWgs84, true);
    if (AllSet(measured.values))
        conversion.GrafBaseToGrafWgs(lat, lon, h, wgs84.values[0], wgs84.values[1], wgs84.values[2]);
    all.push_back(measured);
    all.push_back(wgs84);
}

// A form that a member of the library computes, when the position is complete.
template <class Item>
Derived Geocentric(Item& item, bool complete, const char* mark, const char* datum,
                   void (Item::*get)(double&, double&, double&)) {
    Derived derived = Unset(mark, datum, false);
    if (complete) (item.*get)(derived.values[0], derived.values[1], derived.values[2]);
    return derived;
}

template <class Item>
std::vector<Derived> DerivedFrom(Item& item, double lat, double lon, double h, double antenna,
                                 const CConvCoord& conversion) {
    const bool centre = HasValue(lat) && HasValue(lon) && HasValue(h);
    const bool ground = centre && HasValue(antenna);
    std::vector<Derived> all;
    AppendGeographic(all, kPhaseCentre, lat, lon, h, conversion);
    all.push_back(Geocentric(item, centre, kPhaseCentre, kMeasured, &Item::GetGeocCeFaMis));
    all.push_back(Geocentric(item, centre, kPhaseCentre, kWgs84, &Item::GetGeocCeFaWgs84));
    const double low = ground ? h - antenna : GPS_VAL_UNSET;
    AppendGeographic(all, kGroundMark, ground ? lat : GPS_VAL_UNSET, ground ? lon : GPS_VAL_UNSET, low,
                     conversion);
    all.push_back(Geocentric(item, ground, kGroundMark, kMeasured, &Item::GetGeocTerrMis));
    all.push_back(Geocentric(item, ground, kGroundMark, kWgs84, &Item::GetGeocTerrWgs84));
    return all;
}

std::string Words(std::string_view name) {
    if (name == kWgs84) return "WGS 84";
    if (name == kMeasured) return "measured datum";
    if (name == kPhaseCentre) return "phase centre";
    if (name == kGroundMark) return "ground mark";
    return std::string(name);
}

}  // namespace

std::vector<Derived> DerivedOf(CGrpGps& group) {
    return DerivedFrom(group, group.GetBaseLat(), group.GetBaseLong(), group.GetBaseElev(),
                       group.GetBaseAltAnt(), *group.GetConvCoord());
}

std::vector<Derived> DerivedOf(CPunGps& point, const CGrpGps& group) {
    std::vector<Derived> all = DerivedFrom(point, point.GetLat(), point.GetLong(), point.GetElev(),
                                           point.GetAltAnt(), *group.GetConvCoord());
    Derived base = Unset("base", kMeasured, true);
    point.GetGrafBase(base.values[0], base.values[1], base.values[2]);
    all.push_back(base);
    all.push_back(Geocentric(point, AllSet(base.values), "base", kMeasured, &CPunGps::GetGeocBase));
    return all;
}

std::string DerivedText(const std::vector<Derived>& all) {
    std::string out;
    for (const Derived& d : all) {
        out += fmt::format("  {}, {}: ", Words(d.mark), Words(d.datum));
        if (!AllSet(d.values))
            out += d.geographic ? "no position" : "no geocentric position";
        else if (d.geographic)
            out +=
                fmt::format("lat {}, lon {}, h {}", FixedText(d.values[0], kDegreeDecimals),
                            FixedText(d.values[1], kDegreeDecimals), FixedText(d.values[2], kMetreDecimals));
        else
            out +=
                fmt::format("X {}, Y {}, Z {}", FixedText(d.values[0], kMetreDecimals),
                            FixedText(d.values[1], kMetreDecimals), FixedText(d.values[2], kMetreDecimals));
        out += '\n';
    }
    return out;
}

nlohmann::ordered_json DerivedJson(const std::vector<Derived>& all) {
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    for (const Derived& d : all) {
        nlohmann::ordered_json values;
        const char* const names[2][3] = {{"x", "y", "z"}, {"lat", "lon", "h"}};
        for (int i = 0; i < 3; ++i)
            values[names[d.geographic ? 1 : 0][i]] =
                HasValue(d.values[i]) ? nlohmann::ordered_json(d.values[i]) : nullptr;
        json[d.mark][d.datum][d.geographic ? "geographic" : "geocentric"] = values;
    }
    return json;
}

}  // namespace gpsbook
