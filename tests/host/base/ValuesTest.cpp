#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/base/GpsValues.h"

namespace {

TEST(Values, SentinelAndLimitAreTheirNumbers) {
    EXPECT_EQ(GPS_VAL_UNSET, 1.7e200);
    EXPECT_EQ(GPS_VAL_SET_LIMIT, 8.5e199);
}

TEST(Values, SetIsBelowTheLimit) {
    struct Row {
        const char* name;
        double value;
        bool set;
    };
    constexpr double inf = std::numeric_limits<double>::infinity();
    const Row rows[] = {
        {"zero", 0, true},
        {"a height", 104.86, true},
        {"the sentinel", GPS_VAL_UNSET, false},
        {"the limit", GPS_VAL_SET_LIMIT, false},
        {"just below the limit", std::nextafter(GPS_VAL_SET_LIMIT, 0), true},
        {"the negative sentinel", -GPS_VAL_UNSET, true},
        {"far below", -1.0e300, true},
        {"infinity", inf, false},
        {"negative infinity", -inf, true},
        {"not a number", std::numeric_limits<double>::quiet_NaN(), false},
    };
    for (const Row& row : rows) EXPECT_EQ(IsCoordValid(row.value), row.set) << row.name;
}

}  // namespace
