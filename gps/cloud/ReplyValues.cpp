#include "gps/cloud/ReplyValues.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

#include "platform/base/GpsValues.h"

namespace {

constexpr bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// The text from its number on, without blanks and sign in front.
struct Unsigned {
    std::string_view digits;
    bool negative = false;
};

Unsigned SkipSign(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size() && IsBlank(text[at])) ++at;
    Unsigned number;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) number.negative = text[at++] == '-';
    number.digits = text.substr(at);
    return number;
}

template <class Integer>
Integer ToInteger(std::string_view text) {
    using Limits = std::numeric_limits<Integer>;
    Integer value = 0;
    const char* const last = text.data() + text.size();
    // As nearly every number is written: no blank, no "+", within the type's range.
    if (std::from_chars(text.data(), last, value).ec == std::errc()) return value;
    const Unsigned number = SkipSign(text);
    if (number.digits.empty() || !IsDigit(number.digits.front())) return 0;
    // The digits follow their sign directly: they are read with it, for the lowest value has no positive one.
    const char* const first = number.digits.data() - (number.negative ? 1 : 0);
    const auto read = std::from_chars(first, last, value);
    if (read.ec == std::errc::result_out_of_range) return number.negative ? Limits::min() : Limits::max();
    return value;
}

constexpr bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

/// Of a number that no double holds: it is too large, not too small. `hex`: of hexadecimal digits, each four
/// of the powers of two that the exponent counts.
bool IsTooLarge(std::string_view digits, bool hex) {
    // The power of the first digit that is not 0 decides, with the exponent.
    const int perDigit = hex ? 4 : 1;
    long long power = 0;
    bool behindPoint = false, begun = false;
    std::size_t at = 0;
    for (; at < digits.size(); ++at) {
        const char c = digits[at];
        if (c == '.' && !behindPoint) {
            behindPoint = true;
        } else if (hex ? IsHexDigit(c) : IsDigit(c)) {
            begun = begun || c != '0';
            if (begun && !behindPoint) power += perDigit;
            if (!begun && behindPoint) power -= perDigit;
        } else {
            break;
        }
    }
    const char letter = hex ? 'p' : 'e';
    if (at < digits.size() && (digits[at] | 0x20) == letter) power += ToInteger<int>(digits.substr(at + 1));
    return begun && power > 0;
}

bool IsHex(std::string_view digits) {
    if (!digits.starts_with("0x") && !digits.starts_with("0X")) return false;
    digits.remove_prefix(2);
    if (digits.starts_with('.')) digits.remove_prefix(1);
    return !digits.empty() && IsHexDigit(digits.front());
}

double ToDoubleOfAnyForm(std::string_view text) {
    const Unsigned number = SkipSign(text);
    std::string_view digits = number.digits;
    // A second sign would be taken for that of the number.
    if (digits.empty() || digits.front() == '-') return 0;
    const bool hex = IsHex(digits);
    if (hex) {
        digits.remove_prefix(2);
        // The standard library at hand takes a second sign in an exponent of hexadecimal digits.
        digits = digits.substr(0, std::min(digits.find("p+-"), digits.find("P+-")));
    }
    double value = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value,
                                      hex ? std::chars_format::hex : std::chars_format::general);
    if (read.ec == std::errc::invalid_argument) return 0;
    if (read.ec == std::errc::result_out_of_range)
        value = IsTooLarge(digits, hex) ? std::numeric_limits<double>::infinity() : 0.0;
    return number.negative ? -value : value;
}

}  // namespace

int ToInt(std::string_view text) { return ToInteger<int>(text); }

long long ToInt64(std::string_view text) { return ToInteger<long long>(text); }

double ToDouble(std::string_view text) {
    const char* const last = text.data() + text.size();
    double value = 0;
    // As nearly every number is written. An x that ends it may be that of hexadecimal digits.
    const auto read = std::from_chars(text.data(), last, value);
    if (read.ec == std::errc() && (read.ptr == last || (*read.ptr != 'x' && *read.ptr != 'X'))) return value;
    return ToDoubleOfAnyForm(text);
}

double ReplyReal(const vex::String& text) {
    const std::string_view view = text.View();
    // What begins like a number is not the token: most fields are spared the comparison.
    const bool isNumber = !view.empty() && (IsDigit(view.front()) || view.front() == '-');
    if (!isNumber && text.Compare("NULLVAL") == 0) return GPS_VAL_UNSET;
    return ToDouble(view);
}
