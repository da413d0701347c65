#include "apps/gpsbook/readers/Calendar.h"

#include <chrono>

namespace gpsbook {

namespace {

std::chrono::year_month_day ToChrono(const CivilDate& date) {
    return std::chrono::year_month_day{std::chrono::year{date.year},
                                       std::chrono::month{static_cast<unsigned>(date.month)},
                                       std::chrono::day{static_cast<unsigned>(date.day)}};
}

}  // namespace

bool IsDate(const CivilDate& date) {
    if (date.year < 1 || date.year > 9999 || date.month < 1 || date.month > 12) return false;
    if (date.day < 1 || date.day > 31) return false;
    return ToChrono(date).ok();
}

std::int64_t DayNumber(const CivilDate& date) {
    return std::chrono::sys_days{ToChrono(date)}.time_since_epoch().count();
}

CivilDate DateOfDay(std::int64_t days) {
    const std::chrono::year_month_day ymd{
        std::chrono::sys_days{std::chrono::days{static_cast<std::chrono::days::rep>(days)}}};
    return {static_cast<int>(ymd.year()), static_cast<int>(static_cast<unsigned>(ymd.month())),
            static_cast<int>(static_cast<unsigned>(ymd.day()))};
}

CivilDate AddDays(const CivilDate& date, std::int64_t days) { return DateOfDay(DayNumber(date) + days); }

std::int64_t GpsMs(const CivilDate& date, std::int64_t todMs) {
    return (DayNumber(date) - DayNumber(kGpsEpoch)) * kDayMs + todMs;
}

UtcTime FromGpsMs(std::int64_t gpsMs) {
    std::int64_t days = gpsMs / kDayMs;
    std::int64_t tod = gpsMs % kDayMs;
    if (tod < 0) {  // division cuts towards zero; a day begins at its midnight on both sides of the epoch
        tod += kDayMs;
        --days;
    }
    return {AddDays(kGpsEpoch, days), static_cast<std::uint32_t>(tod)};
}

}  // namespace gpsbook
