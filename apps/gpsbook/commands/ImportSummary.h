// ImportSummary: what `gpsbook import` did, for people and for machines.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "apps/gpsbook/commands/ConvertSummary.h"

namespace gpsbook {

/// What was imported, for the summary.
struct Imported {
    std::vector<LogReport> logs;
    std::vector<int> groups;  // positions of those that got points, each once
    std::vector<int> first;   // their first new point
    Extent extent;
    std::string crs;  // of new groups; empty: the groups were there
    FillOptions fill;

    std::int64_t Points() const {
        std::int64_t n = 0;
        for (const LogReport& log : logs) n += log.points;
        return n;
    }
    std::int64_t AlreadyThere() const {
        std::int64_t n = 0;
        for (const LogReport& log : logs) n += log.AlreadyThere();
        return n;
    }
};

/// A few lines, with a line break at the end of each.
std::string ImportText(const std::string& file, const CLibGps& book, const Imported& done);

nlohmann::ordered_json ImportJson(const std::string& file, const CLibGps& book, bool newGroups,
                                  const Imported& done);

}  // namespace gpsbook
