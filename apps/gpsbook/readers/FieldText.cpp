#include "apps/gpsbook/readers/FieldText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace gpsbook {

namespace {

constexpr double kLargestNumber = 1e15;
constexpr std::size_t kLongestShown = 80;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Digits and at most one point, at most 15 digits: the digits as a whole number and the power of ten are both
// exact doubles, so that one division gives the correctly rounded value.
// On error (any other text): false.
bool ParsePlain(std::string_view text, double& value) {
    constexpr std::array<double, 16> power{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                           1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    if (text.size() > 16) return false;
    std::uint64_t digits = 0;
    std::size_t count = 0;
    std::size_t decimals = 0;
    bool point = false;
    for (const char c : text) {
        if (IsDigit(c)) {
            digits = digits * 10 + static_cast<std::uint64_t>(c - '0');
            ++count;
            decimals += point ? 1U : 0U;
        } else if (c == '.' && !point) {
            point = true;
        } else {
            return false;
        }
    }
    if (count == 0 || count > 15) return false;
    value = static_cast<double>(digits) / power[decimals];
    return true;
}

}  // namespace

bool ParseNumber(std::string_view text, double& value) {
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    double v = 0.0;
    if (!ParsePlain(text, v)) {
        if (text.empty() || (!IsDigit(text.front()) && text.front() != '.'))
            return false;  // "inf", "nan", "--1"
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, v);
        if (error != std::errc{} || stop != end) return false;
    }
    if (!(v <= kLargestNumber)) return false;
    value = negative ? -v : v;
    return true;
}

bool IsNumber(std::string_view text) {
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    if (text.empty() || (!IsDigit(text.front()) && text.front() != '.')) return false;
    double unused = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), unused);
    return error != std::errc::invalid_argument && stop == text.data() + text.size();
}

bool ParseCount(std::string_view text, int& value) {
    if (text.empty() || text.size() > 6) return false;
    int v = 0;
    for (const char c : text) {
        if (!IsDigit(c)) return false;
        v = v * 10 + (c - '0');
    }
    value = v;
    return true;
}

std::optional<Reason> ParseTimeOfDay(std::string_view hour, std::string_view minute, std::string_view second,
                                     std::uint32_t& todMs) {
    int h = 0;
    int m = 0;
    int s = 0;
    const std::size_t point = second.find('.');
    if (hour.size() > 2 || !ParseCount(hour, h) || minute.size() > 2 || !ParseCount(minute, m)) {
        return Reason::badNumber;
    }
    if (!ParseCount(second.substr(0, point), s)) return Reason::badNumber;
    int ms = 0;
    if (point != std::string_view::npos) {
        int weight = 1000;
        bool half = false;
        for (const char c : second.substr(point + 1)) {
            if (!IsDigit(c)) return Reason::badNumber;
            if (weight == 1) {
                half = c >= '5';
                weight = 0;
            } else if (weight > 1) {
                weight /= 10;
                ms += weight * (c - '0');
            }
        }
        // Rounding must not carry 59.9996 into a second 60, which would look like a leap second, nor leave
        // one.
        if (half && !(s >= 59 && ms == 999)) ++ms;
    }
    if (h > 23 || m > 59 || s > 60) return Reason::badTime;
    todMs = static_cast<std::uint32_t>(((h * 60 + m) * 60 + s) * 1000 + ms);
    return std::nullopt;
}

bool DegreesOfDms(double d, double m, double s, double& angle) {
    if (!(m >= 0.0 && m < 60.0 && s >= 0.0 && s < 60.0)) return false;
    angle = std::copysign(std::abs(d) + m / 60.0 + s / 3600.0, d);
    return true;
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string ShownText(std::string_view field, std::string_view text) {
    std::string shown(field);
    if (!field.empty() && !text.empty()) shown += ": ";
    const std::size_t room = shown.size() < kLongestShown ? kLongestShown - shown.size() : 0;
    for (const char c : text.substr(0, room)) shown += (c >= ' ' && c <= '~') ? c : '?';
    return shown;
}

}  // namespace gpsbook
