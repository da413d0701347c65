// The one convention for "has no value": a number that no measurement reaches.
#pragma once

/// Held by every real-valued field that has no value, and produced by computations without a result.
/// Unit: that of the field.
inline constexpr double GPS_VAL_UNSET = 1.7e200;

/// Values from here on are unset: half the sentinel, so that rounding cannot turn unset into set.
inline constexpr double GPS_VAL_SET_LIMIT = 8.5e199;

/// True for a value that is set. The sentinel, anything above the limit and NaN are unset; every negative
/// value is set, -1.0e300 too: only the upper side is tested, and every test of the system is this one.
constexpr bool IsCoordValid(double v) { return v < GPS_VAL_SET_LIMIT; }
