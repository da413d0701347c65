#include "apps/gpsbook/readers/LeapSeconds.h"

#include <array>

namespace gpsbook {

namespace {

struct LeapSecond {
    CivilDate from;  // first UTC day with the offset; the leap second ends the day before
    int offset;      // GPST - UTC, seconds
};

// IERS Bulletin C. A new leap second is one more line at the end.
constexpr std::array kLeapSeconds{
    LeapSecond{{1981, 7, 1}, 1},  LeapSecond{{1982, 7, 1}, 2},  LeapSecond{{1983, 7, 1}, 3},
    LeapSecond{{1985, 7, 1}, 4},  LeapSecond{{1988, 1, 1}, 5},  LeapSecond{{1990, 1, 1}, 6},
    LeapSecond{{1991, 1, 1}, 7},  LeapSecond{{1992, 7, 1}, 8},  LeapSecond{{1993, 7, 1}, 9},
    LeapSecond{{1994, 7, 1}, 10}, LeapSecond{{1996, 1, 1}, 11}, LeapSecond{{1997, 7, 1}, 12},
    LeapSecond{{1999, 1, 1}, 13}, LeapSecond{{2006, 1, 1}, 14}, LeapSecond{{2009, 1, 1}, 15},
    LeapSecond{{2012, 7, 1}, 16}, LeapSecond{{2015, 7, 1}, 17}, LeapSecond{{2017, 1, 1}, 18},
};

}  // namespace

UtcTime GpstToUtc(std::int64_t gpsMs) {
    for (auto leap = kLeapSeconds.rbegin(); leap != kLeapSeconds.rend(); ++leap) {
        const std::int64_t after = GpsMs(leap->from, std::int64_t{1000} * leap->offset);
        if (gpsMs >= after) return FromGpsMs(gpsMs - std::int64_t{1000} * leap->offset);
        if (gpsMs >= after - 1000) {
            return {AddDays(leap->from, -1), static_cast<std::uint32_t>(kDayMs + gpsMs - (after - 1000))};
        }
    }
    return FromGpsMs(gpsMs);
}

}  // namespace gpsbook
