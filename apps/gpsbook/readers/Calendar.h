// Calendar arithmetic of the log readers: UTC dates, GPS weeks, times of day.
#pragma once

#include <cstdint>

namespace gpsbook {

/// A date of the Gregorian calendar.
struct CivilDate {
    int year = 0;
    int month = 0;  // 1 to 12
    int day = 0;    // 1 to 31

    friend bool operator==(const CivilDate&, const CivilDate&) = default;
};

/// A UTC date with its time of day.
struct UtcTime {
    CivilDate date;
    std::uint32_t todMs = 0;  // milliseconds; a leap second counts from 86400000

    friend bool operator==(const UtcTime&, const UtcTime&) = default;
};

inline constexpr std::int64_t kDayMs = 86'400'000;       // milliseconds of a day without leap second
inline constexpr std::int64_t kWeekMs = 7 * kDayMs;      // milliseconds of a GPS week
inline constexpr CivilDate kGpsEpoch{1980, 1, 6};        // GPS week 0 begins here
inline constexpr std::uint32_t kHalfDayMs = 43'200'000;  // a larger drop of the time of day is midnight

/// True for a date that exists, years 1 to 9999.
bool IsDate(const CivilDate& date);

/// Days from 1970-01-01 to `date`. Requires: IsDate(date).
std::int64_t DayNumber(const CivilDate& date);

/// The date `days` days after 1970-01-01.
CivilDate DateOfDay(std::int64_t days);

/// `date` moved by `days` days. Requires: IsDate(date).
CivilDate AddDays(const CivilDate& date, std::int64_t days);

/// Milliseconds from the GPS epoch to a date and time of day, both in one continuous time scale.
/// Requires: IsDate(date).
std::int64_t GpsMs(const CivilDate& date, std::int64_t todMs);

/// The date and time of day that lie `gpsMs` milliseconds after the GPS epoch, in one continuous time scale.
UtcTime FromGpsMs(std::int64_t gpsMs);

}  // namespace gpsbook
