// VersionLimits: what the older versions of a book's stream cannot hold.
#pragma once

#include <string>
#include <vector>

namespace gpsbook {

/// A stream version between those that can be written. Errors: CommandError (exitUsage) naming `option`.
short StreamVersionFrom(const std::string& option, const std::string& text);

/// What a field book can have and a stream of that version has no place for, in words.
std::vector<std::string> NotHeldIn(short version);

}  // namespace gpsbook
