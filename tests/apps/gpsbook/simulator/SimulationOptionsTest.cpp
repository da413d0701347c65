#include "apps/gpsbook/simulator/SimulationOptions.h"

#include <gtest/gtest.h>

#include <limits>

namespace gpsbook {
namespace {

TEST(OptionProblem, DefaultsHaveNone) { EXPECT_EQ(OptionProblem({}), std::nullopt); }

TEST(OptionProblem, EveryLimitIsNamed) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Row {
        const char* message;
        void (*spoil)(SimulationOptions&, double);
        double bad;
    };
    const Row rows[] = {
        {"the latitude of the base is 90.5; give -90 to 90 degrees", [](auto& o, double v) { o.baseLat = v; },
         90.5},
        {"the latitude of the base is nan", [](auto& o, double v) { o.baseLat = v; }, nan},
        {"the longitude of the base", [](auto& o, double v) { o.baseLon = v; }, -180.5},
        {"the height of the base", [](auto& o, double v) { o.baseHeight = v; }, 2e5},
        {"the length of the track", [](auto& o, double v) { o.length = v; }, 0.0},
        {"the radius of the track", [](auto& o, double v) { o.radius = v; }, -1.0},
        {"the rate", [](auto& o, double v) { o.rate = v; }, 0.0},
        {"the rate is 101; give 0.01 to 100 epochs a second", [](auto& o, double v) { o.rate = v; }, 101.0},
        {"the noise", [](auto& o, double v) { o.noise = v; }, -0.01},
        {"the noise is inf", [](auto& o, double v) { o.noise = v; }, std::numeric_limits<double>::infinity()},
        {"the geoid separation", [](auto& o, double v) { o.separation = v; }, 201.0},
        {"the number of epochs is 0; give 1 to 100000000", [](auto& o, double) { o.epochs = 0; }, 0.0},
        {"the number of epochs", [](auto& o, double) { o.epochs = 100'000'001; }, 0.0},
        {"the start is no time of the GPS era",
         [](auto& o, double) {
             o.start.date = {1980, 1, 5};
         },
         0.0},
        {"the start is no time of the GPS era", [](auto& o, double) { o.start.todMs = 86400000; }, 0.0},
        {"the log would end after 2079",
         [](auto& o, double) {
             o.start.date = {2080, 1, 1};
         },
         0.0},
    };
    for (const Row& row : rows) {
        SimulationOptions options;
        row.spoil(options, row.bad);
        const std::string problem = OptionProblem(options).value_or("none");
        EXPECT_EQ(problem.substr(0, std::string(row.message).size()), row.message);
    }
}

TEST(UtcToGpsMs, CountsLeapSeconds) {
    EXPECT_EQ(UtcToGpsMs({{1980, 1, 6}, 0}), 0);
    // 36 years with 9 leap days, 360 days and 17 leap seconds later.
    constexpr std::int64_t days = 36 * 365 + 9 + 360;
    EXPECT_EQ(UtcToGpsMs({{2016, 12, 31}, 86399000}), (days * 86400 + 86399 + 17) * 1000);
    EXPECT_EQ(UtcToGpsMs({{2016, 12, 31}, 86400000}), (days * 86400 + 86400 + 17) * 1000);
    EXPECT_EQ(UtcToGpsMs({{2017, 1, 1}, 0}), (days * 86400 + 86400 + 18) * 1000);
    EXPECT_EQ(UtcToGpsMs({{2018, 12, 31}, 86400000}), std::nullopt);  // that day had no leap second
    EXPECT_EQ(UtcToGpsMs({{2018, 2, 29}, 0}), std::nullopt);
}

TEST(ParseRfc3339, ReadsTimesThatExist) {
    struct Row {
        const char* text;
        CivilDate date;
        std::uint32_t todMs;
    };
    const Row rows[] = {
        {"2024-05-01T08:00:00Z", {2024, 5, 1}, 28800000},
        {"2024-05-01t08:00:00z", {2024, 5, 1}, 28800000},
        {"2024-05-01T08:00:00.5Z", {2024, 5, 1}, 28800500},
        {"2024-05-01T08:00:00.123987Z", {2024, 5, 1}, 28800123},
        {"2024-05-01T08:00:00+02:00", {2024, 5, 1}, 21600000},
        {"2024-03-01T01:00:00+02:00", {2024, 2, 29}, 82800000},
        {"2024-02-29T23:30:00-01:00", {2024, 3, 1}, 1800000},
        {"2016-12-31T23:59:60Z", {2016, 12, 31}, 86400000},
        {"2017-01-01T00:59:60.250+01:00", {2016, 12, 31}, 86400250},
        {"1969-12-31T12:00:00Z", {1969, 12, 31}, 43200000},
    };
    for (const Row& row : rows) {
        const std::optional<UtcTime> time = ParseRfc3339(row.text);
        ASSERT_TRUE(time.has_value()) << row.text;
        EXPECT_EQ(time->date, row.date) << row.text;
        EXPECT_EQ(time->todMs, row.todMs) << row.text;
    }
}

TEST(ParseRfc3339, RefusesEverythingElse) {
    for (const char* text :
         {"", "2024-05-01", "2024-05-01T08:00:00", "2024-05-01 08:00:00Z", "2024-13-01T08:00:00Z",
          "2023-02-29T08:00:00Z", "2024-05-01T24:00:00Z", "2024-05-01T08:60:00Z", "2024-05-01T08:00:60Z",
          "2024-05-01T08:00:61Z", "2024-05-01T08:00:00.Z", "2024-05-01T08:00:00+2:00",
          "2024-05-01T08:00:00+24:00", "2024-05-01T08:00:00Zx", "2024-05-01T08:00:00.1",
          "2024-5-01T08:00:000Z", "-024-05-01T08:00:00Z"}) {
        EXPECT_EQ(ParseRfc3339(text).has_value(), false) << text;
    }
}

}  // namespace
}  // namespace gpsbook
