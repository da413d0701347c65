// Glob: names with wildcards.
#pragma once

#include <string_view>

namespace gpsbook {

/// Whether the whole text fits the pattern: '*' stands for any number of characters, '?' for one, everything
/// else for itself. Takes time of at most pattern times text.
bool FitsGlob(std::string_view pattern, std::string_view text);

}  // namespace gpsbook
