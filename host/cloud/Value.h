// Value: one field of an item, as a store keeps it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace gpssync {

/// A real number that has no value.
struct Unset {
    bool operator==(const Unset&) const = default;
};

/// Reals are finite or minus infinity, never minus zero; their units are those of the field.
using Value = std::variant<Unset, std::int64_t, double, std::string>;
using Values = std::vector<Value>;

/// Room for the text of a number.
using NumberText = std::array<char, 32>;

/// As records and replies write it: the shortest decimal that reads back the same, "NULLVAL" for Unset. The
/// text stands in the value itself or in `room`.
std::string_view TextOf(const Value& value, NumberText& room);

/// Values [first, first + count), joined by ';'.
std::string JoinedText(const Values& values, std::size_t first, std::size_t count);

}  // namespace gpssync
