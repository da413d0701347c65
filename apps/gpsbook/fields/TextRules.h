// TextRules: which texts may be entered into a book.
#pragma once

#include <string>
#include <string_view>

namespace gpsbook {

/// Why a text cannot be a name, a code or a note; empty when it can. Texts travel in records of one line
/// with ';' between their fields, and are UTF-8 everywhere.
std::string TextProblem(std::string_view text);

}  // namespace gpsbook
