#include "apps/gpsbook/stations/StationText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <charconv>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

#include "apps/gpsbook/commands/CommandError.h"
#include "host/coord/Province.h"
#include "platform/coord/CEllissoide.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

}  // namespace

std::string StationLine(const Station& s) {
    std::string line = s.name.empty() ? s.id : s.name + " (" + s.id + ')';
    if (!s.province.empty())
        line += ", " + s.province;
    else if (!s.country.empty())
        line += ", " + s.country;
    line += ", " + s.frame;
    return s.epoch.empty() ? line : line + ' ' + s.epoch;
}

std::string DistanceText(double metres) {
    return metres < 1000 ? fmt::format("{:.3f} m", metres) : fmt::format("{:.2f} km", metres / 1000);
}

Json StationJson(const Station& s, std::optional<double> distance) {
    double lat = 0, lon = 0, h = 0;
    CEllissoide().GeocToGraf(s.position[0], s.position[1], s.position[2], lat, lon, h);
    Json json{{"id", s.id},
              {"name", s.name},
              {"country", s.country},
              {"region", s.region},
              {"province", s.province},
              {"x", s.position[0]},
              {"y", s.position[1]},
              {"z", s.position[2]},
              {"lat", lat},
              {"lon", lon},
              {"h", h},
              {"frame", s.frame},
              {"epoch", s.epoch},
              {"velocity", s.velocity ? Json(*s.velocity) : Json(nullptr)},
              {"source", s.source}};
    if (distance) json["distance"] = *distance;
    return json;
}

CTrovaNomeBaseGps::enumProvincia ProvinceOption(const std::string& text) {
    if (text.empty()) return CTrovaNomeBaseGps::provTutte;
    if (const auto province = ProvinciaFrom(text)) return *province;
    throw CommandError(exitUsage,
                       "--province: \"" + text +
                           "\" is no province of Italy; give its sign, such as UD, its name, any or "
                           "abroad");
}

void NeedFrame(const StationCatalogue& catalogue, const std::string& frame) {
    if (frame.empty() || catalogue.Stations().empty()) return;
    std::set<std::string_view> frames;
    for (const Station& s : catalogue.Stations()) {
        if (StationCatalogue::Fits(s, {0, CTrovaNomeBaseGps::provTutte, frame})) return;
        frames.insert(WithoutRemark(s.frame));
    }
    throw CommandError(exitNotFound,
                       fmt::format("--frame: the catalogue has no coordinates in \"{}\"; it has those in {}",
                                   frame, fmt::join(frames, ", ")));
}

double NumberOption(const std::string& name, const std::string& text, double low, double high,
                    const std::string& unit) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc{} && stop == end && value >= low && value <= high) return value;
    throw CommandError(
        exitUsage, fmt::format("{}: \"{}\" cannot be; give {} from {} to {}", name, text, unit, low, high));
}

}  // namespace gpsbook
