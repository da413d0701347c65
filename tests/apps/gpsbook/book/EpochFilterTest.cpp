#include "apps/gpsbook/book/EpochFilter.h"

#include <gtest/gtest.h>

#include "apps/gpsbook/readers/Calendar.h"
#include "apps/gpsbook/readers/Grades.h"

namespace gpsbook {
namespace {

constexpr std::uint32_t Tod(std::uint32_t h, std::uint32_t m, std::uint32_t s, std::uint32_t ms = 0) {
    return ((h * 60 + m) * 60 + s) * 1000 + ms;
}

Epoch At(int day, std::uint32_t todMs) {
    Epoch e;
    e.year = 2024;
    e.month = 5;
    e.day = day;
    e.todMs = todMs;
    e.grade = Grade::fixed;
    return e;
}

/// The codes from 1 to 9 that pass.
std::string Passing(const std::string& wanted, Format format) {
    EpochFilterOptions options;
    const auto quality = ParseMinQuality(wanted);
    if (!quality) return "not understood";
    options.minQuality = *quality;
    std::string passing;
    for (int code = 1; code <= 9; ++code) {
        EpochFilter filter(options, format);
        Epoch e = At(1, 0);
        e.quality = code;
        e.grade = GradeOf(format, code);
        const Verdict verdict = filter.Judge(e);
        EXPECT_TRUE(verdict == Verdict::take || verdict == Verdict::belowQuality) << wanted << ' ' << code;
        if (verdict == Verdict::take) passing += static_cast<char>('0' + code);
    }
    return passing;
}

TEST(EpochFilter, LowestQualityIsAGradeOrACodeThatStandsForItsGrade) {
    struct Row {
        const char* wanted;
        const char* nmea;  // codes that pass
        const char* pos;
    };
    const Row rows[] = {
        {"any", "123456789", "123456789"},
        {"single", "123459", "123456"},
        {"dgps", "23459", "12346"},
        {"float", "45", "126"},
        {"fix", "4", "1"},
        {"fixed", "4", "1"},
        {"1", "123459", "1"},
        {"2", "23459", "126"},
        {"3", "23459", "12346"},
        {"4", "4", "12346"},
        {"5", "45", "123456"},
        {"6", "123456789", "126"},
        {"0", "123456789", "123456789"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Passing(row.wanted, Format::nmea), row.nmea) << row.wanted;
        EXPECT_EQ(Passing(row.wanted, Format::pos), row.pos) << row.wanted;
    }
}

TEST(EpochFilter, OtherQualitiesAreNotUnderstood) {
    for (const char* text : {"", "FIX", "best", "-1", "10", "4.0", " 4", "fix "})
        EXPECT_FALSE(ParseMinQuality(text)) << '"' << text << '"';
}

TEST(EpochFilter, BoundIsAMomentOrATimeOfDay) {
    struct Row {
        const char* text;
        bool hasDay;
        std::int64_t todMs;
    };
    const Row rows[] = {
        {"2024-05-01T12:40:00Z", true, Tod(12, 40, 0)},
        {"2024-05-01T14:40:00+02:00", true, Tod(12, 40, 0)},
        {"2024-05-01T12:40:00.250Z", true, Tod(12, 40, 0, 250)},
        {"12:40", false, Tod(12, 40, 0)},
        {"00:00", false, 0},
        {"12:40:30", false, Tod(12, 40, 30)},
        {"12:40:30.5", false, Tod(12, 40, 30, 500)},
        {"23:59:60", false, kDayMs},
    };
    for (const Row& row : rows) {
        const auto bound = ParseTimeBound(row.text);
        ASSERT_TRUE(bound) << row.text;
        EXPECT_EQ(bound->day.has_value(), row.hasDay) << row.text;
        if (bound->day) {
            EXPECT_EQ(*bound->day, DayNumber({2024, 5, 1})) << row.text;
        }
        EXPECT_EQ(bound->todMs, row.todMs) << row.text;
    }
}

TEST(EpochFilter, OtherBoundsAreNotUnderstood) {
    for (const char* text : {"", "noon", "12", "1240", "1:40", "24:00", "12:60", "12:40:61", "12:40:60",
                             "12:", "12:40:", "ab:cd", "12:40:30Z", "2024-05-01", "2024-05-01T12:40:00",
                             "2024-02-30T12:40:00Z", "12,40"})
        EXPECT_FALSE(ParseTimeBound(text)) << '"' << text << '"';
}

Verdict JudgeBetween(const char* from, const char* to, const Epoch& epoch) {
    EpochFilterOptions options;
    if (from) options.from = ParseTimeBound(from);
    if (to) options.to = ParseTimeBound(to);
    return EpochFilter(options, Format::nmea).Judge(epoch);
}

TEST(EpochFilter, MomentsBoundTheTimeAndBelongToIt) {
    const char* from = "2024-05-02T08:00:00Z";
    const char* to = "2024-05-03T06:00:00.500Z";
    EXPECT_EQ(JudgeBetween(from, to, At(2, Tod(7, 59, 59, 999))), Verdict::outsideTime);
    EXPECT_EQ(JudgeBetween(from, to, At(2, Tod(8, 0, 0))), Verdict::take);
    EXPECT_EQ(JudgeBetween(from, to, At(3, Tod(6, 0, 0, 500))), Verdict::take);
    EXPECT_EQ(JudgeBetween(from, to, At(3, Tod(6, 0, 0, 501))), Verdict::outsideTime);
    EXPECT_EQ(JudgeBetween(from, to, At(1, Tod(12, 0, 0))), Verdict::outsideTime);
    EXPECT_EQ(JudgeBetween(from, nullptr, At(30, 0)), Verdict::take);
    EXPECT_EQ(JudgeBetween(nullptr, to, At(1, 0)), Verdict::take);
}

TEST(EpochFilter, TimesOfDayHoldOnEveryDay) {
    for (const int day : {1, 2, 31}) {
        EXPECT_EQ(JudgeBetween("08:00", "09:30:15", At(day, Tod(7, 59, 59, 999))), Verdict::outsideTime)
            << day;
        EXPECT_EQ(JudgeBetween("08:00", "09:30:15", At(day, Tod(8, 0, 0))), Verdict::take) << day;
        EXPECT_EQ(JudgeBetween("08:00", "09:30:15", At(day, Tod(9, 30, 15))), Verdict::take) << day;
        EXPECT_EQ(JudgeBetween("08:00", "09:30:15", At(day, Tod(9, 30, 15, 1))), Verdict::outsideTime) << day;
    }
}

EpochFilter Every(double seconds) {
    EpochFilterOptions options;
    options.every = seconds;
    return {options, Format::nmea};
}

TEST(EpochFilter, EveryCountsFromTheLastEpochTaken) {
    EpochFilter filter = Every(2.5);
    const std::pair<std::uint32_t, Verdict> rows[] = {
        {Tod(8, 0, 0), Verdict::take},         {Tod(8, 0, 1), Verdict::thinned},
        {Tod(8, 0, 2, 499), Verdict::thinned}, {Tod(8, 0, 2, 500), Verdict::take},
        {Tod(8, 0, 4, 999), Verdict::thinned}, {Tod(8, 0, 9), Verdict::take},
        {Tod(8, 0, 11, 499), Verdict::thinned}};
    for (const auto& [tod, verdict] : rows) EXPECT_EQ(filter.Judge(At(1, tod)), verdict) << tod;
}

TEST(EpochFilter, EveryReachesOverMidnight) {
    EpochFilter filter = Every(10);
    EXPECT_EQ(filter.Judge(At(1, Tod(23, 59, 55))), Verdict::take);
    EXPECT_EQ(filter.Judge(At(2, Tod(0, 0, 4))), Verdict::thinned);
    EXPECT_EQ(filter.Judge(At(2, Tod(0, 0, 5))), Verdict::take);
}

TEST(EpochFilter, TimeThatRunsBackwardsIsDistanceToo) {
    EpochFilter filter = Every(10);
    EXPECT_EQ(filter.Judge(At(2, Tod(8, 0, 0))), Verdict::take);
    EXPECT_EQ(filter.Judge(At(2, Tod(7, 59, 51))), Verdict::thinned);
    EXPECT_EQ(filter.Judge(At(2, Tod(7, 0, 0))), Verdict::take);
    EXPECT_EQ(filter.Judge(At(2, Tod(7, 0, 5))), Verdict::thinned);
}

TEST(EpochFilter, EpochsThatAreNotTakenDoNotCountForEvery) {
    EpochFilterOptions options;
    options.every = 10;
    options.minQuality = *ParseMinQuality("fix");
    options.from = ParseTimeBound("08:00");
    EpochFilter filter(options, Format::nmea);
    Epoch bad = At(1, Tod(8, 0, 0));
    bad.grade = Grade::floating;
    EXPECT_EQ(filter.Judge(At(1, Tod(7, 59, 59))), Verdict::outsideTime);
    EXPECT_EQ(filter.Judge(bad), Verdict::belowQuality);
    EXPECT_EQ(filter.Judge(At(1, Tod(8, 0, 1))), Verdict::take);
}

TEST(EpochFilter, QualityIsJudgedBeforeTime) {
    EpochFilterOptions options;
    options.minQuality = *ParseMinQuality("fix");
    options.from = ParseTimeBound("08:00");
    Epoch early = At(1, 0);
    early.grade = Grade::single;
    EXPECT_EQ(EpochFilter(options, Format::nmea).Judge(early), Verdict::belowQuality);
}

TEST(EpochFilter, WithoutOptionsEveryEpochIsTaken) {
    EpochFilter filter({}, Format::pos);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(filter.Judge(At(1, 0)), Verdict::take);
}

}  // namespace
}  // namespace gpsbook
