#include "apps/gpsbook/fields/SystemText.h"

#include <algorithm>
#include <string_view>

#include "platform/coord/CProiezPla.h"

namespace gpsbook {

namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string_view WithoutBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// "EPSG:32633", "IGNF:LAMB93", "EPSG:32633+5773"
bool IsCode(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0 || colon + 1 == text.size()) return false;
    return std::all_of(text.begin(), text.end(), [](char c) {
        return IsLetter(c) || IsDigit(c) || c == ':' || c == '_' || c == '-' || c == '.' || c == '+';
    });
}

// A text that says all by itself, and leaves nothing to look for.
bool IsDefinition(std::string_view text) {
    return IsCode(text) || text.find_first_of("[{") != std::string_view::npos ||
           text.find("proj=") != std::string_view::npos || text.find("init=") != std::string_view::npos ||
           text.starts_with("urn:") || text.starts_with("http://") || text.starts_with("https://");
}

// PROJCRS["name",...
std::string_view NameIn(std::string_view wkt) {
    const std::size_t begin = wkt.find('"');
    if (begin == std::string_view::npos) return {};
    return wkt.substr(begin + 1, wkt.find('"', begin + 1) - begin - 1);
}

// ...,ID["EPSG",32633]] at the very end; the code of a part stands deeper. Empty: the system has none.
std::string CodeIn(std::string_view wkt) {
    const std::size_t begin = wkt.rfind("ID[\"");
    if (begin == std::string_view::npos || !wkt.ends_with("]]") || wkt.ends_with("]]]")) return {};
    std::string code;
    for (const char c : wkt.substr(begin + 3, wkt.size() - 2 - begin - 3))
        if (c != '"' && c != ' ') code += c == ',' ? ':' : c;
    return IsCode(code) ? code : std::string();
}

std::string Set(CProiezPla& projection, const std::string& definition) {
    std::string why;
    projection.SetDefinizione(definition, why);
    return why;
}

}  // namespace

std::string ReadSystem(const std::string& text, CProiezPla& projection) {
    const std::string entered(WithoutBlanks(text));
    if (entered.empty()) return "the system is empty; give EPSG:code, a PROJ string, WKT or a whole name";
    if (IsDefinition(entered)) return Set(projection, entered);

    CProiezPla found;
    if (std::string why = Set(found, entered); !why.empty()) return why;
    const std::string wkt = found.GetWkt();
    const std::string name(NameIn(wkt));
    const std::string code = CodeIn(wkt);
    if (SameText(name, entered)) return Set(projection, code.empty() ? name : code);
    return "'" + entered + "' is not the whole name of a system; if '" + name + "' is meant, give " +
           (code.empty() ? "that" : code);
}

}  // namespace gpsbook
