// EpochFilter: which of the usable epochs of a log become points.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "apps/gpsbook/readers/Epoch.h"
#include "apps/gpsbook/readers/Format.h"

namespace gpsbook {

/// The lowest quality that is taken: a grade, or a code of the file's own scale.
struct MinQuality {
    std::optional<Grade> grade;
    std::optional<int> code;
};

/// A bound in time: a moment, or a time of day that holds on every day. UTC.
struct TimeBound {
    std::optional<std::int64_t> day;  // days from 1970-01-01
    std::int64_t todMs = 0;           // milliseconds
};

struct EpochFilterOptions {
    MinQuality minQuality;
    std::optional<TimeBound> from;  // taken from here on
    std::optional<TimeBound> to;    // and up to here, included
    double every = 0;               // seconds between taken epochs at least; 0: all
};

/// "fix", "float", "dgps", "single", "any", or a code. None for anything else.
std::optional<MinQuality> ParseMinQuality(const std::string& text);

/// RFC 3339 ("2018-10-04T12:40:00Z") or a UTC time of day ("12:40", "12:40:30.5"). None for anything else.
std::optional<TimeBound> ParseTimeBound(const std::string& text);

/// What becomes of a usable epoch; the filter itself never says alreadyThere.
enum class Verdict : std::uint8_t { take, belowQuality, outsideTime, thinned, alreadyThere };

/// The verdict as text for people: "below --min-quality", ...
const char* VerdictText(Verdict verdict);

/// Judges the epochs of one log in the order of the file: quality first, then time, then the distance from
/// the last epoch taken. Time that runs backwards counts as distance, too: nothing is lost to a wrong clock.
class EpochFilter {
public:
    EpochFilter(const EpochFilterOptions& options, Format format) : options_(options), format_(format) {}

    Verdict Judge(const Epoch& epoch);

private:
    bool GoodEnough(const Epoch& epoch) const;

    EpochFilterOptions options_;
    Format format_;
    std::optional<std::int64_t> lastTakenMs_;  // since 1970-01-01
};

}  // namespace gpsbook
