// Filled: refuses empty values of options.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace gpsbook {

/// For options whose value cannot be empty. An empty one is a slip, such as a variable of a script that is
/// not set; taken for "not given" it would switch something off without a word.
inline CLI::Validator Filled() {
    return {[](const std::string& text) { return std::string(text.empty() ? "the value is empty" : ""); },
            ""};
}

}  // namespace gpsbook
