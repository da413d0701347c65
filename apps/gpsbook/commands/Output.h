// Output: what a command prints as its result.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace gpsbook {

/// Writes a result to standard output.
/// Errors: WriteError when it could not be written to its end; `otherwise` then says what that means.
void PrintText(std::string_view text, const std::string& otherwise = "the result could not be written");

/// The same for a value as JSON, with a line break at the end. Bytes that are no UTF-8 become U+FFFD.
void PrintJson(const nlohmann::ordered_json& value,
               const std::string& otherwise = "the result could not be written");

/// What it means when the result of a command that has saved its book could not be written.
std::string SavedButUntold(const std::string& file);

}  // namespace gpsbook
