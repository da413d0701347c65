#include "apps/gpsbook/commands/Positions.h"

#include <fmt/format.h>

#include <charconv>

#include "apps/gpsbook/commands/CommandError.h"

namespace gpsbook {

int InsertPosition(const std::string& option, const std::string& text, int size) {
    if (text.empty()) return size;
    const char* begin = text.data() + (text.front() == '#' ? 1 : 0);
    const char* end = text.data() + text.size();
    int value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value);
    if (error != std::errc{} || stop != end || value < 0 || value > size)
        throw CommandError(exitUsage,
                           fmt::format("{}: \"{}\" is no position here; give 0 to {}", option, text, size));
    return value;
}

int AnyPosition(const std::string& option, const std::string& text) {
    const char* begin = text.data() + (text.starts_with('#') ? 1 : 0);
    const char* end = text.data() + text.size();
    int value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value);
    if (error != std::errc{} || stop != end)
        throw CommandError(exitUsage, fmt::format("{}: \"{}\" is no position; give a whole number, counted "
                                                  "from 0",
                                                  option, text));
    return value;
}

}  // namespace gpsbook
