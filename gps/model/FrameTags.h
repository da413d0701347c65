// FrameTags: marks in the secondary text that tell how coordinates are to be read.
#pragma once

#include <string_view>

// They travel wherever the text goes, and people see them: no record has a field for them. A tag counts
// wherever it stands in the text, in capital letters as here.

/// On a group: the base's coordinates are WGS 84 in the EUREF realisation.
inline constexpr std::string_view TAG_EUREF = "[WGS84-EUREF]";

/// On a group: the base's coordinates are WGS 84 in the ETRF2000 realisation.
inline constexpr std::string_view TAG_ETRF2000 = "[WGS84-ETRF2000]";

/// On a point: measured against a virtual reference station of a network.
inline constexpr std::string_view TAG_VRS = "[VRS]";

/// Kinds of base that CGrpGps::SetBaseEuref knows.
inline constexpr int BASE_EUREF = 9;
inline constexpr int BASE_ETRF2000 = 10;
