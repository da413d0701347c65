#include "apps/gpsbook/writers/Columns.h"

#include <gtest/gtest.h>

#include <limits>
#include <string_view>

namespace gpsbook {
namespace {

TEST(FixedText, HasTheDecimalsAskedForAndNoSignedZero) {
    struct Row {
        const char* name;
        double value;
        int decimals;
        const char* text;
    };
    const Row rows[] = {
        {"degrees", 45.1234567894, 9, "45.123456789"},
        {"rounds up", 45.1234567896, 9, "45.123456790"},
        {"negative", -7.25, 4, "-7.2500"},
        {"small negative rounds to zero", -0.00004, 4, "0.0000"},
        {"small negative that does not", -0.00006, 4, "-0.0001"},
        {"negative zero", -0.0, 4, "0.0000"},
        {"carries into the next digit", 9.99996, 4, "10.0000"},
        {"unset", GPS_VAL_UNSET, 4, ""},
        {"not a number", std::numeric_limits<double>::quiet_NaN(), 4, ""},
        {"minus infinity", -std::numeric_limits<double>::infinity(), 4, ""},
        {"large", 1e20, 2, "100000000000000000000.00"},
    };
    for (const Row& row : rows) EXPECT_EQ(FixedText(row.value, row.decimals), row.text) << row.name;
}

TEST(TimeText, IsUtcWithMillisecondsAndEmptyWithoutADate) {
    struct Row {
        const char* name;
        int year, month, day;
        std::uint32_t todMs;
        const char* text;
    };
    const Row rows[] = {
        {"midday", 2018, 10, 4, 45471000, "2018-10-04T12:37:51.000Z"},
        {"last millisecond", 2018, 10, 4, 86399999, "2018-10-04T23:59:59.999Z"},
        {"leap second", 2016, 12, 31, 86400250, "2016-12-31T23:59:60.250Z"},
        {"early year", 33, 4, 3, 1, "0033-04-03T00:00:00.001Z"},
        {"no date", 0, 10, 4, 45471000, ""},
        {"no such month", 2018, 13, 4, 0, ""},
        {"no such day", 2019, 2, 29, 0, ""},
        {"day below zero", 2019, 2, -1, 0, ""},
        {"beyond a leap second", 2018, 10, 4, 86401000, ""},
    };
    for (const Row& row : rows) {
        PointRow point;
        point.year = row.year;
        point.month = row.month;
        point.day = row.day;
        point.todMs = row.todMs;
        EXPECT_EQ(TimeText(point), row.text) << row.name;
    }
}

TEST(Columns, NamesFitIntoAShapefile) {
    for (const Column& column : kColumns) EXPECT_LE(std::string_view(column.name).size(), 10U) << column.name;
}

}  // namespace
}  // namespace gpsbook
