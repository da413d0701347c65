// PointFilter: which points of a book a command tells of.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "apps/gpsbook/book/EpochFilter.h"

class CPunGps;

namespace gpsbook {

/// What has to hold for a point, all of it. Nothing given: every point.
struct PointFilter {
    std::set<int> qualities;
    std::string name;  // with wildcards; empty: any
    std::string code;
    std::optional<TimeBound> from;  // included; a point without time is outside any bound
    std::optional<TimeBound> to;

    bool IsEmpty() const { return qualities.empty() && name.empty() && code.empty() && !from && !to; }
    bool Takes(const CPunGps& point) const;
};

/// "4" or "4,5" to codes. Errors: CommandError (exitUsage).
std::set<int> ParseQualities(const std::string& text);

}  // namespace gpsbook
