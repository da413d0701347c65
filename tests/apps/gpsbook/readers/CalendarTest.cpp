#include "apps/gpsbook/readers/Calendar.h"

#include <gtest/gtest.h>

#include "apps/gpsbook/readers/LeapSeconds.h"

namespace gpsbook {
namespace {

TEST(Calendar, KnowsWhichDatesExist) {
    struct Row {
        const char* name;
        CivilDate date;
        bool exists;
    };
    const Row rows[] = {
        {"leap day", {2024, 2, 29}, true},
        {"leap day of 2000", {2000, 2, 29}, true},
        {"no leap day in 1900", {1900, 2, 29}, false},
        {"no leap day in 2023", {2023, 2, 29}, false},
        {"April 31", {2024, 4, 31}, false},
        {"month 0", {2024, 0, 1}, false},
        {"month 13", {2024, 13, 1}, false},
        {"day 0", {2024, 1, 0}, false},
        {"day 32", {2024, 1, 32}, false},
        {"year 0", {0, 1, 1}, false},
        {"year 10000", {10000, 1, 1}, false},
        {"month 257", {2024, 257, 1}, false},
        {"day 257", {2024, 1, 257}, false},
    };
    for (const Row& row : rows) EXPECT_EQ(IsDate(row.date), row.exists) << row.name;
}

TEST(Calendar, CountsDaysFrom1970) {
    EXPECT_EQ(DayNumber({1970, 1, 1}), 0);
    EXPECT_EQ(DayNumber({1980, 1, 6}), 3657);  // 10 years, 2 leap days, 5 days
    EXPECT_EQ(DayNumber({2000, 3, 1}), 11017);
    EXPECT_EQ(DateOfDay(-1), (CivilDate{1969, 12, 31}));
}

TEST(Calendar, AddsDaysAcrossMonthsAndYears) {
    EXPECT_EQ(AddDays({2020, 12, 31}, 1), (CivilDate{2021, 1, 1}));
    EXPECT_EQ(AddDays({2024, 3, 1}, -1), (CivilDate{2024, 2, 29}));
    EXPECT_EQ(AddDays({2023, 3, 1}, -1), (CivilDate{2023, 2, 28}));
}

TEST(Calendar, CountsMillisecondsFromTheGpsEpoch) {
    EXPECT_EQ(GpsMs({1980, 1, 6}, 5), 5);
    // A known pair of the two notations: week 2328, second 385200 is 2024-08-22 11:00:00.
    EXPECT_EQ(GpsMs({2024, 8, 22}, 11 * 3'600'000), 2328 * kWeekMs + 385'200'000);
    const UtcTime before = FromGpsMs(-1);
    EXPECT_EQ(before.date, (CivilDate{1980, 1, 5}));
    EXPECT_EQ(before.todMs, 86'399'999U);
}

// Offsets as published at the time: GPST - UTC on the first day of each.
TEST(LeapSeconds, EveryOffsetBeginsOnItsDay) {
    struct Row {
        CivilDate from;
        int offset;
    };
    const Row rows[] = {{{1981, 7, 1}, 1},  {{1982, 7, 1}, 2},  {{1983, 7, 1}, 3},  {{1985, 7, 1}, 4},
                        {{1988, 1, 1}, 5},  {{1990, 1, 1}, 6},  {{1991, 1, 1}, 7},  {{1992, 7, 1}, 8},
                        {{1993, 7, 1}, 9},  {{1994, 7, 1}, 10}, {{1996, 1, 1}, 11}, {{1997, 7, 1}, 12},
                        {{1999, 1, 1}, 13}, {{2006, 1, 1}, 14}, {{2009, 1, 1}, 15}, {{2012, 7, 1}, 16},
                        {{2015, 7, 1}, 17}, {{2017, 1, 1}, 18}};
    for (const Row& row : rows) {
        const std::int64_t first = GpsMs(row.from, row.offset * 1000);
        const CivilDate before = AddDays(row.from, -1);
        EXPECT_EQ(GpstToUtc(first).date, row.from) << row.from.year;
        EXPECT_EQ(GpstToUtc(first).todMs, 0U) << row.from.year;
        EXPECT_EQ(GpstToUtc(first - 1).date, before) << row.from.year;
        EXPECT_EQ(GpstToUtc(first - 1).todMs, 86'400'999U)
            << "end of the leap second before " << row.from.year;
        EXPECT_EQ(GpstToUtc(first - 1000).todMs, 86'400'000U) << "23:59:60 before " << row.from.year;
        EXPECT_EQ(GpstToUtc(first - 1001).todMs, 86'399'999U)
            << "before the leap second of " << row.from.year;
    }
}

TEST(LeapSeconds, GpsTimeBeganWithoutOffset) {
    EXPECT_EQ(GpstToUtc(0).date, kGpsEpoch);
    EXPECT_EQ(GpstToUtc(0).todMs, 0U);
    EXPECT_EQ(GpstToUtc(1234).todMs, 1234U);
}

TEST(LeapSeconds, TheLastOffsetHoldsOn) {
    const UtcTime utc = GpstToUtc(GpsMs({2026, 3, 1}, 10'000));
    EXPECT_EQ(utc.date, (CivilDate{2026, 2, 28}));
    EXPECT_EQ(utc.todMs, 86'392'000U);
}

}  // namespace
}  // namespace gpsbook
