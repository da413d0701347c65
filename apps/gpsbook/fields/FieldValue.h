// FieldValue: the value of one field of a point or a group, as text, as JSON, and read from what is entered.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <variant>

#include "apps/gpsbook/readers/Calendar.h"

namespace gpsbook {

enum class FieldKind : std::uint8_t {
    text,
    real,    // may have no value
    single,  // a number kept in single precision, 0 without a value
    whole,
    flag,
    time,  // a moment in UTC, may have no value
    crs    // a plane system, may have no value
};

/// What a value of a field feeds: plane coordinates have to be computed anew when it changes.
enum class Feeds : std::uint8_t {
    nothing,
    plane,       // those of the point, of a group those of its base
    groupPlanes  // those of all points of the group
};

/// What is known of a field, whatever it belongs to.
struct FieldInfo {
    const char* name;  // on the command line and in JSON; that of the column where a table has the value
    FieldKind kind;
    const char* unit;  // "degrees", "metres", ...; empty: none
    double low;        // smallest and largest number that is accepted
    double high;
    int decimals;
    Feeds feeds;
    const char* help;
};

/// The value: nothing is for a time or a system that is not set; a real without a value is GPS_VAL_UNSET, as
/// it is stored.
using FieldValue = std::variant<std::monostate, std::string, double, float, std::int64_t, bool, UtcTime>;

bool IsSet(const FieldValue& value);

/// Same kind and same value; numbers without a value are all the same.
bool SameValue(const FieldValue& a, const FieldValue& b);

/// As people read it: fixed decimals, a time in RFC 3339, "yes" and "no"; empty without a value.
std::string ValueText(const FieldInfo& field, const FieldValue& value);

/// The same with its unit behind, and "unset" for nothing.
std::string ValueWithUnit(const FieldInfo& field, const FieldValue& value);

/// Numbers read back to the same value; null without one. A text that is not UTF-8 gets U+FFFD when printed.
nlohmann::ordered_json ValueJson(const FieldValue& value);

/// The same as text, put behind `out`: for long lists, without an object for each value.
void AppendJson(std::string& out, const FieldValue& value);
void AppendJson(std::string& out, const std::string& text);

/// The value that a text stands for. Nothing or "unset" takes the value away, where the field can be without.
/// Errors: CommandError (exitUsage) that names the field, what is wrong and what to write.
FieldValue ParseValue(const FieldInfo& field, const std::string& text);

}  // namespace gpsbook
