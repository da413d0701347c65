#include "apps/gpsbook/stations/BaseFrame.h"

#include <algorithm>

#include "gps/model/CGrpGps.h"
#include "gps/model/FrameTags.h"

namespace gpsbook {

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

bool SameName(const std::string& a, const std::string& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

}  // namespace

std::string BaseFrame::Text() const {
    if (IsTwofold()) return "EUREF and ETRF2000";
    return euref ? "EUREF" : etrf2000 ? "ETRF2000" : "";
}

bool BaseFrame::Contradicts(FrameKind kind) const {
    if (kind == FrameKind::unknown) return false;
    return (etrf2000 && kind != FrameKind::etrf2000) || (euref && kind != FrameKind::european);
}

BaseFrame FrameOf(const CGrpGps& group) {
    const std::string& text = group.GetSecScri();
    return {text.find(TAG_EUREF) != std::string::npos, text.find(TAG_ETRF2000) != std::string::npos};
}

std::optional<StationCatalogue::Position> BasePosition(CGrpGps& group) {
    if (!IsCoordValid(group.GetBaseLat()) || !IsCoordValid(group.GetBaseLong()) ||
        !IsCoordValid(group.GetBaseElev()))
        return std::nullopt;
    StationCatalogue::Position at{};
    group.GetGeocCeFaMis(at[0], at[1], at[2]);
    return at;
}

bool IsNamedAfter(const CGrpGps& group, const Station& station) {
    for (const std::string& name : {group.GetNome(), group.GetNomeGrp()})
        if (SameName(name, station.id) || (!station.name.empty() && SameName(name, station.name)))
            return true;
    return false;
}

}  // namespace gpsbook
