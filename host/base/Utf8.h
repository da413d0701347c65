// Utf8: whether a text is UTF-8.
#pragma once

#include <cstddef>
#include <string_view>

/// True for a text of whole UTF-8 characters: none in a longer form than needed, no surrogates, none beyond
/// U+10FFFF.
inline bool IsUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i++]);
        if (lead < 0x80) continue;
        const int more = lead >= 0xC2 && lead <= 0xDF   ? 1
                         : lead >= 0xE0 && lead <= 0xEF ? 2
                         : lead >= 0xF0 && lead <= 0xF4 ? 3
                                                        : 0;
        if (more == 0) return false;
        // The second byte has narrower limits behind four of the leads.
        unsigned char low = 0x80, high = 0xBF;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
        for (int k = 0; k < more; ++k, ++i) {
            if (i >= text.size()) return false;
            const auto next = static_cast<unsigned char>(text[i]);
            if (next < low || next > high) return false;
            low = 0x80;
            high = 0xBF;
        }
    }
    return true;
}
