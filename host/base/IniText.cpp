#include "host/base/IniText.h"

#include <cstddef>

namespace {

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

// Length of the right UTF-8 character at the front; 0: there is none.
std::size_t CharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80) return 0;
    // Longer than needed, half of a pair, or beyond the last character.
    if (first == 0xE0 && byte(1) < 0xA0) return 0;
    if (first == 0xED && byte(1) > 0x9F) return 0;
    if (first == 0xF0 && byte(1) < 0x90) return 0;
    if (first == 0xF4 && byte(1) > 0x8F) return 0;
    return length;
}

// What means something to readers of such files. Theirs differ: comments may begin in the middle of a line.
bool IsSpecial(char c, IniPlace place) {
    if (c == '"' || c == ';' || c == '#') return true;
    return place != IniPlace::Value && (c == '=' || c == '[' || c == ']');
}

bool StandsAsItIs(std::string_view text, IniPlace place) {
    if (text.empty() || text.front() == ' ' || text.back() == ' ') return false;
    for (std::size_t i = 0; i < text.size();) {
        if (IsControl(text[i]) || IsSpecial(text[i], place)) return false;
        const std::size_t length = CharacterLength(text.substr(i));
        if (length == 0) return false;
        i += length;
    }
    return true;
}

void AppendHex(std::string& out, char c) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    out += "\\x";
    out += kDigits[byte >> 4];
    out += kDigits[byte & 0xF];
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// Reads what follows a backslash; false when it is nothing that is ever written.
bool Unescape(std::string_view text, std::size_t& at, std::string& out) {
    if (at >= text.size()) return false;
    switch (text[at++]) {
        case '\\':
            out += '\\';
            return true;
        case '"':
            out += '"';
            return true;
        case 't':
            out += '\t';
            return true;
        case 'n':
            out += '\n';
            return true;
        case 'r':
            out += '\r';
            return true;
        case 'x':
            break;
        default:
            return false;
    }
    if (text.size() - at < 2) return false;
    const int high = HexDigit(text[at]), low = HexDigit(text[at + 1]);
    if (high < 0 || low < 0) return false;
    out += static_cast<char>(high * 16 + low);
    at += 2;
    return true;
}

}  // namespace

std::string IniTextIn(std::string_view text, IniPlace place) {
    if (StandsAsItIs(text, place)) return std::string(text);
    std::string out = "\"";
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        const std::size_t length = CharacterLength(text.substr(i));
        switch (c) {
            case '\\':
                out += "\\\\";
                break;
            case '"':
                out += "\\\"";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            default:
                if (length == 0 || IsControl(c) || (place != IniPlace::Value && IsSpecial(c, place)))
                    AppendHex(out, c);
                else
                    out += text.substr(i, length);
        }
        i += length == 0 ? 1 : length;
    }
    return out += '"';
}

std::string IniTextOut(std::string_view written) {
    const std::string asItIs(written);
    if (written.size() < 2 || written.front() != '"' || written.back() != '"') return asItIs;
    const std::string_view inside = written.substr(1, written.size() - 2);
    std::string out;
    for (std::size_t i = 0; i < inside.size();) {
        const char c = inside[i++];
        if (c == '"') return asItIs;
        if (c != '\\')
            out += c;
        else if (!Unescape(inside, i, out))
            return asItIs;
    }
    return out;
}
