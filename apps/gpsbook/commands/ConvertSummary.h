// ConvertSummary: what `gpsbook convert` did, for people and for machines.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "apps/gpsbook/book/GroupFiller.h"
#include "apps/gpsbook/book/LogReport.h"
#include "platform/base/GpsValues.h"

class CLibGps;
class CPunGps;

namespace gpsbook {

/// Smallest and largest values of the plane coordinates; unset without points.
struct Extent {
    double eastMin = GPS_VAL_UNSET, eastMax = GPS_VAL_UNSET;      // plane units
    double northMin = GPS_VAL_UNSET, northMax = GPS_VAL_UNSET;    // plane units
    double heightMin = GPS_VAL_UNSET, heightMax = GPS_VAL_UNSET;  // metres
    std::int64_t withoutPlane = 0;                                // points that have none

    void Add(const CPunGps& point);
};

struct ConvertResult {
    std::vector<LogReport> logs;
    Extent extent;
    std::string crs;
    FillOptions fill;
    std::string output;            // file, or "-"
    std::string format;            // title of the output format
    std::int64_t skippedRows = 0;  // points that the format could not hold

    std::int64_t Points() const;
};

Extent ExtentOf(const CLibGps& book);

/// A plane system as a label of one short line; a WKT can have a hundred.
std::string SystemLabel(const std::string& crs);

/// "1 point", "2 points"
std::string Counted(std::int64_t n, const char* one);

// Parts of a summary, for other commands that read logs: lines with a line break at the end of each.
void AppendLog(std::string& out, const LogReport& log, const FillOptions& fill);
void AppendExtent(std::string& out, const Extent& extent, const std::string& crs);
nlohmann::ordered_json LogJson(const LogReport& log);
nlohmann::ordered_json ExtentJson(const Extent& extent);

/// A few lines, with a line break at the end of each.
std::string SummaryText(const ConvertResult& result);

nlohmann::ordered_json SummaryJson(const ConvertResult& result);

/// Why a log has no usable epoch, one line a reason.
std::string ReasonLines(const LogReport& log);

}  // namespace gpsbook
