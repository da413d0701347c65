// ConversionText: what the coordinate conversion of a group does, link by link.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

class CGrpGps;

namespace gpsbook {

/// A line a link, indented by two blanks.
std::string ConversionText(const CGrpGps& group);

nlohmann::ordered_json ConversionJson(const CGrpGps& group);

}  // namespace gpsbook
