#include "apps/gpsbook/writers/Columns.h"

#include <fmt/format.h>

namespace gpsbook {

std::string FixedText(double v, int decimals) {
    if (!HasValue(v)) return {};
    std::string text = fmt::format("{:.{}f}", v, decimals);
    // A small negative number rounds to zero with a sign that means nothing.
    if (text.front() == '-' && text.find_first_not_of("-0.") == std::string::npos) text.erase(0, 1);
    return text;
}

ClockTime SplitTime(std::uint32_t todMs) {
    constexpr std::uint32_t dayMs = 86400000;
    if (todMs >= dayMs) {
        const auto over = static_cast<int>(todMs - dayMs);
        return {23, 59, 60 + over / 1000, over % 1000};
    }
    const auto ms = static_cast<int>(todMs);
    return {ms / 3600000, ms / 60000 % 60, ms / 1000 % 60, ms % 1000};
}

bool HasTime(const PointRow& row) { return row.todMs < 86401000 && IsDate({row.year, row.month, row.day}); }

std::string TimeText(const UtcTime& utc) {
    const ClockTime t = SplitTime(utc.todMs);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", utc.date.year, utc.date.month,
                       utc.date.day, t.hour, t.minute, t.second, t.millisecond);
}

std::string TimeText(const PointRow& row) {
    if (!HasTime(row)) return {};
    return TimeText({{row.year, row.month, row.day}, row.todMs});
}

std::string CellText(const PointRow& row, const Column& column) {
    if (const auto* text = std::get_if<TextMember>(&column.value)) return row.*(*text);
    if (const auto* count = std::get_if<CountMember>(&column.value)) return fmt::format("{}", row.*(*count));
    if (const auto* number = std::get_if<NumberMember>(&column.value))
        return FixedText(row.*(number->value), number->decimals);
    return TimeText(row);
}

}  // namespace gpsbook
