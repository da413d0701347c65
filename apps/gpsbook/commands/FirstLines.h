// FirstLines: a list in the text of a result, which stops before it hides what stands above it.
#pragma once

#include <cstddef>
#include <string>

namespace gpsbook {

inline constexpr std::size_t kMostLines = 20;

/// A line for each of the first items; how many are left is told with `rest` behind it. Lines end with a line
/// break, `rest` too. The line for what is left is indented as the others are.
template <class Items, class Line>
std::string FirstLines(const Items& items, const std::string& rest, const Line& line) {
    std::string text, last;
    std::size_t told = 0;
    for (const auto& item : items) {
        if (told++ == kMostLines) break;
        last = line(item);
        text += last;
    }
    if (items.size() <= kMostLines) return text;
    const std::string indent(last.find_first_not_of(' '), ' ');
    return text + indent + "... and " + std::to_string(items.size() - kMostLines) + " more" + rest;
}

}  // namespace gpsbook
