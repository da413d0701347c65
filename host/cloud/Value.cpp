#include "host/cloud/Value.h"

#include <charconv>

namespace gpssync {

namespace {

template <class Number>
std::string_view Written(Number number, NumberText& room) {
    const auto end = std::to_chars(room.data(), room.data() + room.size(), number).ptr;
    return {room.data(), static_cast<std::size_t>(end - room.data())};
}

}  // namespace

std::string_view TextOf(const Value& value, NumberText& room) {
    if (const auto* real = std::get_if<double>(&value)) return Written(*real, room);
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return Written(*whole, room);
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    return "NULLVAL";
}

std::string JoinedText(const Values& values, std::size_t first, std::size_t count) {
    std::string text;
    NumberText room;
    for (std::size_t i = first; i < first + count; ++i) {
        if (i > first) text += ';';
        text += TextOf(values[i], room);
    }
    return text;
}

}  // namespace gpssync
