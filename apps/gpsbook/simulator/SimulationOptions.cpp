#include "apps/gpsbook/simulator/SimulationOptions.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <string_view>

#include "apps/gpsbook/readers/LeapSeconds.h"

namespace gpsbook {

namespace {

constexpr std::int64_t kMostEpochs = 100'000'000;
constexpr CivilDate kEndOfNmeaDates{2080, 1, 1};  // its years have two digits, from 1980 on

struct Range {
    const char* name;
    double value;
    double least;
    double most;
    const char* unit;
};

std::optional<std::string> RangeProblem(const SimulationOptions& o) {
    const std::array ranges{
        Range{"the latitude of the base", o.baseLat, -90.0, 90.0, "degrees"},
        Range{"the longitude of the base", o.baseLon, -180.0, 180.0, "degrees"},
        Range{"the height of the base", o.baseHeight, -1000.0, 100000.0, "metres"},
        Range{"the length of the track", o.length, 0.001, 100000.0, "metres"},
        Range{"the radius of the track", o.radius, 0.001, 100000.0, "metres"},
        Range{"the rate", o.rate, 0.01, 100.0, "epochs a second"},
        Range{"the noise", o.noise, 0.0, 100.0, "metres"},
        Range{"the geoid separation", o.separation, -200.0, 200.0, "metres"},
    };
    for (const Range& r : ranges) {
        // Written so that a value that is not a number fails too.
        if (!(r.value >= r.least && r.value <= r.most))
            return fmt::format("{} is {}; give {} to {} {}", r.name, r.value, r.least, r.most, r.unit);
    }
    return std::nullopt;
}

/// `count` digits at `at`; -1 when they are not all digits.
int Digits(std::string_view text, std::size_t at, std::size_t count) {
    int value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        if (i >= text.size() || text[i] < '0' || text[i] > '9') return -1;
        value = value * 10 + (text[i] - '0');
    }
    return value;
}

/// Offset from UTC in minutes, east positive. None for another form.
std::optional<int> ParseOffset(std::string_view text) {
    if (text == "Z" || text == "z") return 0;
    if (text.size() != 6 || (text[0] != '+' && text[0] != '-') || text[3] != ':') return std::nullopt;
    const int hour = Digits(text, 1, 2);
    const int minute = Digits(text, 4, 2);
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59) return std::nullopt;
    const int offset = hour * 60 + minute;
    return text[0] == '-' ? -offset : offset;
}

}  // namespace

std::optional<std::string> OptionProblem(const SimulationOptions& options) {
    if (auto problem = RangeProblem(options)) return problem;
    if (options.epochs < 1 || options.epochs > kMostEpochs)
        return fmt::format("the number of epochs is {}; give 1 to {}", options.epochs, kMostEpochs);
    const std::optional<std::int64_t> start = UtcToGpsMs(options.start);
    if (!start) return "the start is no time of the GPS era; give one from 1980-01-06 on";
    const double duration = static_cast<double>(options.epochs) / options.rate * 1000.0;
    if (static_cast<double>(*start) + duration > static_cast<double>(GpsMs(kEndOfNmeaDates, 0)))
        return "the log would end after 2079, which NMEA dates cannot tell; give an earlier start or fewer "
               "epochs";
    return std::nullopt;
}

std::optional<std::int64_t> UtcToGpsMs(const UtcTime& utc) {
    if (!IsDate(utc.date) || DayNumber(utc.date) < DayNumber(kGpsEpoch)) return std::nullopt;
    // The table goes from GPS time to UTC: the offset is the one that leads back to where we are.
    constexpr int mostLeapSeconds = 99;
    for (int leap = 0; leap <= mostLeapSeconds; ++leap) {
        const std::int64_t gpsMs = GpsMs(utc.date, utc.todMs) + std::int64_t{1000} * leap;
        const UtcTime back = GpstToUtc(gpsMs);
        if (back.date == utc.date && back.todMs == utc.todMs) return gpsMs;
    }
    return std::nullopt;
}

std::optional<UtcTime> ParseRfc3339(const std::string& text) {
    const std::string_view t(text);
    if (t.size() < 20 || t[4] != '-' || t[7] != '-' || (t[10] != 'T' && t[10] != 't') || t[13] != ':' ||
        t[16] != ':')
        return std::nullopt;
    const CivilDate date{Digits(t, 0, 4), Digits(t, 5, 2), Digits(t, 8, 2)};
    const int hour = Digits(t, 11, 2);
    const int minute = Digits(t, 14, 2);
    const int second = Digits(t, 17, 2);
    if (!IsDate(date) || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 60)
        return std::nullopt;
    std::size_t at = 19;
    int ms = 0;
    if (t[at] == '.') {
        int scale = 100;
        for (++at; at < t.size() && Digits(t, at, 1) >= 0; ++at) {
            ms += scale * Digits(t, at, 1);
            scale /= 10;  // what is below a millisecond is dropped
        }
        if (at == 20) return std::nullopt;
    }
    const std::optional<int> offset = ParseOffset(t.substr(at));
    if (!offset) return std::nullopt;

    // The leap second, wherever in the world it is told, is the one after 23:59:59 UTC.
    const std::int64_t local = DayNumber(date) * 1440 + hour * 60 + minute;
    const std::int64_t minutes = local - *offset;
    const std::int64_t day = minutes >= 0 ? minutes / 1440 : (minutes - 1439) / 1440;
    const std::int64_t minuteOfDay = minutes - day * 1440;
    if (second == 60 && minuteOfDay != 1439) return std::nullopt;
    return UtcTime{DateOfDay(day), static_cast<std::uint32_t>(minuteOfDay * 60000 + second * 1000 + ms)};
}

}  // namespace gpsbook
