#include "apps/gpsbook/book/Glob.h"

#include <cstddef>

namespace gpsbook {

namespace {

// Bytes of the UTF-8 character at `at`; of a broken one what belongs together by its look.
std::size_t CharacterEnd(std::string_view text, std::size_t at) {
    do ++at;
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80);
    return at;
}

}  // namespace

bool FitsGlob(std::string_view pattern, std::string_view text) {
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = std::string_view::npos;  // the last '*' met
    std::size_t taken = 0;                      // up to where it stands for the text
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            taken = t;
        } else if (p < pattern.size() && pattern[p] == '?') {
            ++p;
            t = CharacterEnd(text, t);
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++p;
            ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = taken = CharacterEnd(text, taken);
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

}  // namespace gpsbook
