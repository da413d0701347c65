// The text of fields: numbers, times of day, and text made fit to be shown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "apps/gpsbook/readers/Epoch.h"

namespace gpsbook {

/// Why a line was not used, and the field that is to blame (empty: the line as a whole).
struct Fault {
    Reason reason;
    std::string_view field;  // a name that lives as long as the program
};

/// A decimal number: sign, digits, point, digits, exponent.
/// On error (not a number, not finite, or larger than 1e15, which no field of a log reaches): false.
bool ParseNumber(std::string_view text, double& value);

/// Whether the text is a decimal number of any size.
bool IsNumber(std::string_view text);

/// A whole number without sign, one to six digits. On error: false.
bool ParseCount(std::string_view text, int& value);

/// A time of day from its hour, minute and second texts, the second with any number of decimals, rounded
/// to milliseconds. Second 60 is accepted: a leap second, or a writer that rounded up.
/// On error: badNumber for what is not a number, badTime for a time that does not exist.
std::optional<Reason> ParseTimeOfDay(std::string_view hour, std::string_view minute, std::string_view second,
                                     std::uint32_t& todMs);

/// Degrees from degrees, minutes and seconds: (d + m / 60 + s / 3600) with the sign of d, which may be -0.
/// On error (minutes or seconds outside 0 to 60): false.
bool DegreesOfDms(double d, double m, double s, double& angle);

/// `text` without blanks and tabs at either end.
std::string_view Trimmed(std::string_view text);

/// "field: text", at most 80 characters; what cannot be printed is shown as '?'.
std::string ShownText(std::string_view field, std::string_view text);

}  // namespace gpsbook
