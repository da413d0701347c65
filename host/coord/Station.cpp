#include "host/coord/Station.h"

#include <utility>

namespace {

// In large letters and without what stands between them: "WGS 84 (G2139)" begins with "WGS84".
std::string Letters(const std::string& frame) {
    std::string out;
    for (const char c : frame) {
        if (c >= 'a' && c <= 'z')
            out += static_cast<char>(c - ('a' - 'A'));
        else if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))
            out += c;
    }
    return out;
}

// The first that fits counts: ETRF2000 before ETRF.
constexpr std::pair<std::string_view, FrameKind> kBeginnings[] = {
    {"ETRF2000", FrameKind::etrf2000}, {"RDN2008", FrameKind::etrf2000}, {"ETRF", FrameKind::european},
    {"ETRS", FrameKind::european},     {"EUREF", FrameKind::european},   {"ITRF", FrameKind::global},
    {"IGS", FrameKind::global},        {"IGB", FrameKind::global},       {"WGS84", FrameKind::global},
};

}  // namespace

std::string_view WithoutRemark(std::string_view text) {
    const std::size_t bracket = text.find(" (");
    if (bracket == std::string_view::npos || !text.ends_with(')')) return text;
    const bool tellsApart = text.find_first_of("0123456789", bracket) != std::string_view::npos;
    return tellsApart ? text : text.substr(0, bracket);
}

FrameKind FrameKindOf(const std::string& frame) {
    const std::string letters = Letters(frame);
    for (const auto& [beginning, kind] : kBeginnings)
        if (letters.starts_with(beginning)) return kind;
    return FrameKind::unknown;
}
