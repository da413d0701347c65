// StationText: stations for people and for machines, and what is given of them on a command line.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "host/coord/Station.h"
#include "host/coord/StationCatalogue.h"

namespace gpsbook {

/// "Udine (UDIN), UD, ETRF2000 2008.0".
std::string StationLine(const Station& station);

/// A distance with its unit: "0.004 m", "12.34 km".
std::string DistanceText(double metres);

/// All that is known of it, with latitude, longitude and height computed; a distance in metres when given.
nlohmann::ordered_json StationJson(const Station& station, std::optional<double> distance = std::nullopt);

/// The province of an option's value; any for an empty one. Errors: CommandError (exitUsage).
CTrovaNomeBaseGps::enumProvincia ProvinceOption(const std::string& text);

/// Refuses the value of --frame when the catalogue has stations and none of them is in such a frame, with the
/// frames there are. Errors: CommandError (exitNotFound).
void NeedFrame(const StationCatalogue& catalogue, const std::string& frame);

/// A number from a command line, from `low` to `high`. Errors: CommandError (exitUsage) that names it.
double NumberOption(const std::string& name, const std::string& text, double low, double high,
                    const std::string& unit);

}  // namespace gpsbook
