// Small things that the tests of coordinates share: three values, and what is special among them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/base/GpsValues.h"

namespace gpstest {

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();
inline constexpr double kRad = 3.14159265358979323846 / 180.0;  // radians per degree

/// Prefilled into outputs, so that one that was not written is seen.
inline constexpr double kUntouched = -4711.25;

/// Three outputs of a conversion.
struct Triple {
    double a = kUntouched, b = kUntouched, c = kUntouched;
};

inline bool IsSame(double x, double y) { return std::memcmp(&x, &y, sizeof x) == 0; }

inline bool AllUnset(const Triple& t) {
    return IsSame(t.a, GPS_VAL_UNSET) && IsSame(t.b, GPS_VAL_UNSET) && IsSame(t.c, GPS_VAL_UNSET);
}

inline bool AllWritten(const Triple& t) {
    return !IsSame(t.a, kUntouched) && !IsSame(t.b, kUntouched) && !IsSame(t.c, kUntouched);
}

/// A value that stands for no measurement, with a name for the report of a failure.
struct Special {
    const char* name;
    double value;
};

inline constexpr Special kNoMeasurement[] = {
    {"unset", GPS_VAL_UNSET}, {"NaN", kNan}, {"+inf", kInf}, {"-inf", -kInf}};

/// Largest difference of the three components.
inline double Distance(const Triple& t, double a, double b, double c) {
    return std::max({std::fabs(t.a - a), std::fabs(t.b - b), std::fabs(t.c - c)});
}

inline double Distance(const Triple& t, const Triple& u) { return Distance(t, u.a, u.b, u.c); }

inline ::testing::AssertionResult Near(const Triple& t, const Triple& expected, double tolerance) {
    const double d = Distance(t, expected);
    if (d <= tolerance) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "(" << t.a << ", " << t.b << ", " << t.c << ") is " << d << " from (" << expected.a << ", "
           << expected.b << ", " << expected.c << "), more than " << tolerance;
}

}  // namespace gpstest
