#include "apps/gpsbook/writers/TableText.h"

#include <cstddef>
#include <cstdint>

namespace gpsbook {

namespace {

/// How many bytes the UTF-8 character at the start of `text` has; 0: it is none.
/// Overlong forms, surrogates and values beyond U+10FFFF are none.
std::size_t CharacterSize(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t lead = byte(0);
    if (lead < 0x80) return 1;
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < size) return 0;
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
    }
    const bool overlong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xF0 && byte(1) < 0x90);
    const bool surrogate = lead == 0xED && byte(1) > 0x9F;
    const bool beyond = lead == 0xF4 && byte(1) > 0x8F;
    return overlong || surrogate || beyond ? 0 : size;
}

bool IsControl(char c) {
    const auto byte = static_cast<std::uint8_t>(c);
    return (byte < 0x20 && c != '\t' && c != '\n') || byte == 0x7F;
}

}  // namespace

std::string CleanText(std::string_view text) {
    std::string clean;
    clean.reserve(text.size());
    while (!text.empty()) {
        const std::size_t size = CharacterSize(text);
        if (size == 0 || IsControl(text.front())) {
            clean += '?';
            text.remove_prefix(1);
        } else {
            clean += text.substr(0, size);
            text.remove_prefix(size);
        }
    }
    return clean;
}

std::string DrawingLayer(std::string_view group) {
    if (group.empty()) return "0";
    std::string layer;
    while (!group.empty()) {
        const std::size_t size = CharacterSize(group);
        const auto lead = static_cast<std::uint8_t>(group[0]);
        if (size == 1 && std::string_view("<>/\\\":;?*|=`',\t\n").find(group[0]) == std::string_view::npos) {
            layer += group[0];
        } else if (size == 2 &&
                   (lead == 0xC3 || (lead == 0xC2 && static_cast<std::uint8_t>(group[1]) >= 0xA0))) {
            // U+00A0 to U+00FF have the same number in Windows-1252.
            layer += static_cast<char>((lead & 0x03U) << 6 | (static_cast<std::uint8_t>(group[1]) & 0x3FU));
        } else {
            layer += '_';
        }
        group.remove_prefix(size);
    }
    return layer;
}

std::string LabelStyle(std::string_view text, std::string_view height) {
    std::string style = "LABEL(f:\"Arial\",t:\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') style += '\\';
        style += c == '{' ? '(' : c == '}' ? ')' : c;
    }
    return style + "\",s:" + std::string(height) + ")";
}

}  // namespace gpsbook
