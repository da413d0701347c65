// The columns of a point table: one list for every format.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <variant>

#include "apps/gpsbook/readers/Calendar.h"
#include "apps/gpsbook/writers/PointRow.h"

namespace gpsbook {

using TextMember = std::string PointRow::*;
using CountMember = int PointRow::*;

/// A measured number and how many decimals of it are written as text.
struct NumberMember {
    double PointRow::*value;
    int decimals;
};

/// The time of a row is made of several members.
struct TimeMember {};

/// A column: its name in every format, at most 10 characters, and where its value stands.
struct Column {
    const char* name;
    std::variant<TextMember, TimeMember, NumberMember, CountMember> value;
};

inline constexpr int kDegreeDecimals = 9;  // 0.1 mm on the ground
inline constexpr int kMetreDecimals = 4;
inline constexpr int kDopDecimals = 2;

/// In the order in which they are written.
inline constexpr std::array<Column, 17> kColumns{{
    {"group", &PointRow::group},
    {"name", &PointRow::name},
    {"code", &PointRow::code},
    {"time", TimeMember{}},
    {"lat", NumberMember{&PointRow::lat, kDegreeDecimals}},
    {"lon", NumberMember{&PointRow::lon, kDegreeDecimals}},
    {"h", NumberMember{&PointRow::h, kMetreDecimals}},
    {"antenna", NumberMember{&PointRow::antenna, kMetreDecimals}},
    {"east", NumberMember{&PointRow::east, kMetreDecimals}},
    {"north", NumberMember{&PointRow::north, kMetreDecimals}},
    {"height", NumberMember{&PointRow::height, kMetreDecimals}},
    {"quality", &PointRow::quality},
    {"gps", &PointRow::gps},
    {"glonass", &PointRow::glonass},
    {"pdop", NumberMember{&PointRow::pdop, kDopDecimals}},
    {"hrms", NumberMember{&PointRow::hrms, kMetreDecimals}},
    {"vrms", NumberMember{&PointRow::vrms, kMetreDecimals}},
}};

/// The number with a fixed count of decimals and a dot, in any locale. A zero has no sign.
/// Empty when it has no value.
std::string FixedText(double v, int decimals);

/// The parts of a time of day; in a leap second `second` is 60.
struct ClockTime {
    int hour;
    int minute;
    int second;
    int millisecond;
};

/// Requires: `todMs` below 86401000.
ClockTime SplitTime(std::uint32_t todMs);

/// True when the row has a date and time that exist, a leap second included.
bool HasTime(const PointRow& row);

/// A date and time that exist in RFC 3339, UTC: "2018-10-04T12:37:51.000Z".
std::string TimeText(const UtcTime& utc);

/// The time of the row in RFC 3339, UTC: "2018-10-04T12:37:51.000Z". Empty when it has none.
std::string TimeText(const PointRow& row);

/// The value of a column as text; empty when it has none.
std::string CellText(const PointRow& row, const Column& column);

}  // namespace gpsbook
