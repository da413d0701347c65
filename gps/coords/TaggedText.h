// TaggedText: a secondary text with and without a tag.
#pragma once

#include <string>
#include <string_view>

#include "platform/base/StringTrimRight.h"

inline bool HasTag(std::string_view text, std::string_view tag) {
    return text.find(tag) != std::string_view::npos;
}

/// Intended: the blank comes before the tag in an empty text, too; WithoutTag removes it again.
inline std::string WithTag(std::string_view text, std::string_view tag) {
    return std::string(text).append(" ").append(tag);
}

/// The text without the first tag and without white space at its end. Blanks around a tag that had something
/// behind it stay, both of them.
/// Requires: HasTag(text, tag).
inline std::string WithoutTag(std::string text, std::string_view tag) {
    text.erase(text.find(tag), tag.size());
    StringTrimRight(text);
    return text;
}
