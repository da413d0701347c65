#include "host/os/PatternMatch.h"

#include <cstddef>

namespace {

char Small(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter; }

bool ContinuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

std::size_t BehindCharacter(std::string_view name, std::size_t at) {
    ++at;
    while (at < name.size() && ContinuesCharacter(name[at])) ++at;
    return at;
}

}  // namespace

bool PatternMatch(std::string_view pattern, std::string_view name) {
    constexpr std::size_t kNone = std::string_view::npos;
    std::size_t p = 0, n = 0;
    // The last star is the only one that needs to take more: what stands before it has matched already.
    std::size_t star = kNone, starEnd = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            starEnd = n;
        } else if (p < pattern.size() && pattern[p] == '?') {
            ++p;
            n = BehindCharacter(name, n);
        } else if (p < pattern.size() && Small(pattern[p]) == Small(name[n])) {
            ++p;
            ++n;
        } else if (star != kNone) {
            p = star + 1;
            n = ++starEnd;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}
