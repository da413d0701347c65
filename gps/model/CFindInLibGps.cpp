#include "gps/model/CFindInLibGps.h"

#include "gps/model/PointSearch.h"

namespace {

// Flags and length are the same for a whole search: they are looked at before it, not at every point.
template <class Search>
auto ByFlags(const std::string& text, int flags, const Search& search) {
    const auto isName = [&text](const CPunGps& p) { return p.GetNome() == text; };
    const auto isCode = [&text](const CPunGps& p) { return p.GetCode() == text; };
    switch (flags & (CFindInLibGps::BY_NOME | CFindInLibGps::BY_CODE)) {
        case CFindInLibGps::BY_NOME:
            return search(isName);
        case CFindInLibGps::BY_CODE:
            return search(isCode);
        case CFindInLibGps::BY_NOME | CFindInLibGps::BY_CODE:
            return search([&](const CPunGps& p) { return isName(p) || isCode(p); });
        default:
            return search([](const CPunGps&) { return false; });
    }
}

}  // namespace

CFindInLibGps::~CFindInLibGps() = default;

int CFindInLibGps::TrovaPunLocal(std::string text, int flags, int g, int& p) {
    const int found =
        ByFlags(text, flags, [&](const auto& matches) { return FirstInGroup(*LibGps, g, p, matches); });
    if (found >= 0) p = found;
    return found;
}

int CFindInLibGps::TrovaPunGlobal(std::string text, int flags, int& g, int& p) {
    const bool found =
        ByFlags(text, flags, [&](const auto& matches) { return FirstInBook(*LibGps, g, p, matches); });
    return found ? p : -1;
}
