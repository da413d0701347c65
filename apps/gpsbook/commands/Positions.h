// Positions: numbers of places in a list, from 0, as they are given to options.
#pragma once

#include <string>

namespace gpsbook {

/// Where something is inserted into a list of `size`: "3" or "#3", up to `size`; nothing means at the end.
/// Errors: CommandError (exitUsage) naming the option.
int InsertPosition(const std::string& option, const std::string& text, int size);

/// A position as it is given, also one that no list has: "3", "#3", "-1". Errors: CommandError (exitUsage)
/// naming the option, when it is no whole number.
int AnyPosition(const std::string& option, const std::string& text);

}  // namespace gpsbook
