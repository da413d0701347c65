// BookSummary: what a book holds, counted in one pass.
#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <set>
#include <string>

#include "apps/gpsbook/commands/ConvertSummary.h"

class CLibGps;

namespace gpsbook {

struct BookSummary {
    int groups = 0;
    std::int64_t points = 0;
    std::map<int, std::int64_t> byQuality;
    std::string first, last;      // times in RFC 3339; empty without any
    Extent extent;                // of the plane coordinates
    std::int64_t withoutFix = 0;  // points without a complete position
    std::set<std::string> systems;
    int groupsWithoutSystem = 0;  // whose conversion is not usable
};

BookSummary SummaryOf(const CLibGps& book);

}  // namespace gpsbook
