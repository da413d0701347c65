#include "apps/gpsbook/fields/FieldValue.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>
#include <type_traits>

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/fields/SystemText.h"
#include "apps/gpsbook/fields/TextRules.h"
#include "apps/gpsbook/readers/FieldText.h"
#include "apps/gpsbook/simulator/SimulationOptions.h"
#include "apps/gpsbook/writers/Columns.h"
#include "platform/coord/CProiezPla.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

[[noreturn]] void Refuse(const FieldInfo& field, const std::string& problem) {
    throw CommandError(exitUsage, std::string(field.name) + ": " + problem);
}

// "0 to 100 metres"
std::string RangeText(const FieldInfo& field) {
    std::string text = fmt::format("{} to {}", field.low, field.high);
    if (*field.unit != '\0') text += std::string(" ") + field.unit;
    return text;
}

double ParseReal(const FieldInfo& field, const std::string& text) {
    double value = 0;
    const bool read = ParseNumber(text, value);
    if (!read && !IsNumber(text))
        Refuse(field, fmt::format("\"{}\" is not a number; give {}", text, RangeText(field)));
    if (!read || value < field.low || value > field.high)
        Refuse(field, fmt::format("{} is outside {}; check the unit", text, RangeText(field)));
    return value;
}

std::int64_t ParseWhole(const FieldInfo& field, const std::string& text) {
    std::int64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end)
        Refuse(field, fmt::format("\"{}\" is not a whole number; give {}", text, RangeText(field)));
    // The ends of 64 bits are no doubles: such a field takes every number.
    const bool wide = field.high > 9e18;
    if (!wide && (static_cast<double>(value) < field.low || static_cast<double>(value) > field.high))
        Refuse(field, fmt::format("{} is outside {}", text, RangeText(field)));
    return value;
}

bool ParseFlag(const FieldInfo& field, const std::string& text) {
    if (text == "yes" || text == "true" || text == "1") return true;
    if (text == "no" || text == "false" || text == "0") return false;
    Refuse(field, "\"" + text + "\" is neither yes nor no; give one of them");
}

FieldValue ParseTime(const FieldInfo& field, const std::string& text) {
    const auto time = ParseRfc3339(text);
    if (!time) Refuse(field, "\"" + text + "\" is not a time; write it like 2024-05-01T08:00:00.000Z");
    return *time;
}

FieldValue ParseCrs(const FieldInfo& field, const std::string& text) {
    CProiezPla projection;
    if (const std::string problem = ReadSystem(text, projection); !problem.empty()) Refuse(field, problem);
    return projection.GetDefinizione();
}

// The shortest text that reads back to the same single: as a double it would show digits nobody entered.
double AsEntered(float value) {
    char text[32];
    const auto written = std::to_chars(text, text + sizeof text, value);
    double shown = 0;
    std::from_chars(text, written.ptr, shown);
    return shown;
}

// The shortest text that reads back to the same number.
template <class T>
void AppendNumber(std::string& out, T value) {
    char text[32];
    const std::string_view written(text, std::to_chars(text, text + sizeof text, value).ptr);
    out += written;
    // A real stays one, with its sign when it is zero.
    if (!std::is_integral_v<T> && written.find_first_of(".e") == std::string_view::npos) out += ".0";
}

std::string SingleText(float value) { return fmt::format("{}", value); }

}  // namespace

bool IsSet(const FieldValue& value) {
    if (const auto* real = std::get_if<double>(&value)) return HasValue(*real);
    if (const auto* single = std::get_if<float>(&value)) return std::isfinite(*single);
    return !std::holds_alternative<std::monostate>(value);
}

bool SameValue(const FieldValue& a, const FieldValue& b) {
    if (!IsSet(a) || !IsSet(b)) return IsSet(a) == IsSet(b);
    return a == b;
}

std::string ValueText(const FieldInfo& field, const FieldValue& value) {
    if (!IsSet(value)) return {};
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* real = std::get_if<double>(&value)) return FixedText(*real, field.decimals);
    if (const auto* single = std::get_if<float>(&value)) return SingleText(*single);
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return fmt::format("{}", *whole);
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "yes" : "no";
    return TimeText(std::get<UtcTime>(value));
}

std::string ValueWithUnit(const FieldInfo& field, const FieldValue& value) {
    if (!IsSet(value)) return "unset";
    std::string text = ValueText(field, value);
    if (*field.unit != '\0') text += std::string(" ") + field.unit;
    return text;
}

Json ValueJson(const FieldValue& value) {
    if (!IsSet(value)) return nullptr;
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* real = std::get_if<double>(&value)) return *real;
    if (const auto* single = std::get_if<float>(&value)) return AsEntered(*single);
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
    if (const auto* flag = std::get_if<bool>(&value)) return *flag;
    return TimeText(std::get<UtcTime>(value));
}

void AppendJson(std::string& out, const std::string& text) {
    const bool plain = std::all_of(text.begin(), text.end(),
                                   [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
    if (plain)
        out.append(1, '"').append(text).append(1, '"');
    else
        out += Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

void AppendJson(std::string& out, const FieldValue& value) {
    if (!IsSet(value)) {
        out += "null";
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        AppendJson(out, *text);
    } else if (const auto* real = std::get_if<double>(&value)) {
        AppendNumber(out, *real);
    } else if (const auto* single = std::get_if<float>(&value)) {
        AppendNumber(out, *single);
    } else if (const auto* whole = std::get_if<std::int64_t>(&value)) {
        AppendNumber(out, *whole);
    } else if (const auto* flag = std::get_if<bool>(&value)) {
        out += *flag ? "true" : "false";
    } else {
        out.append(1, '"').append(TimeText(std::get<UtcTime>(value))).append(1, '"');
    }
}

FieldValue ParseValue(const FieldInfo& field, const std::string& text) {
    const bool unset = text.empty() || text == "unset";
    switch (field.kind) {
        case FieldKind::text:
            if (const std::string problem = TextProblem(text); !problem.empty()) Refuse(field, problem);
            return text;
        case FieldKind::real:
            return unset ? GPS_VAL_UNSET : ParseReal(field, text);
        case FieldKind::single:
            return unset ? 0.0F : static_cast<float>(ParseReal(field, text));
        case FieldKind::whole:
            if (unset) Refuse(field, "always has a value; give " + RangeText(field));
            return ParseWhole(field, text);
        case FieldKind::flag:
            if (unset) Refuse(field, "always has a value; give yes or no");
            return ParseFlag(field, text);
        case FieldKind::time:
            return unset ? FieldValue{} : ParseTime(field, text);
        case FieldKind::crs:
            return unset ? FieldValue{} : ParseCrs(field, text);
    }
    return {};
}

}  // namespace gpsbook
