#include "apps/gpsbook/fields/TextRules.h"

#include <algorithm>

#include "apps/gpsbook/writers/TableText.h"

namespace gpsbook {

std::string TextProblem(std::string_view text) {
    if (text.find(';') != std::string_view::npos) return "a text cannot hold ';'; choose another";
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    if (std::any_of(text.begin(), text.end(), isControl))
        return "a text cannot hold line breaks or control characters; choose another";
    if (CleanText(text) != text) return "the text is not UTF-8; see which encoding the terminal has";
    return {};
}

}  // namespace gpsbook
