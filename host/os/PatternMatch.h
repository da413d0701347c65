// PatternMatch: file names against a pattern with "*" and "?".
#pragma once

#include <string_view>

/// "*" stands for any text, the empty one too, "?" for one character of UTF-8. A to Z match without regard to
/// case. A broken character counts byte by byte.
bool PatternMatch(std::string_view pattern, std::string_view name);
