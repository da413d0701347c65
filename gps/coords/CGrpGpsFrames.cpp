// Members of CGrpGps that mark the frame of the base and the points measured against a virtual station.
#include "gps/coords/TaggedText.h"
#include "gps/model/CGrpGps.h"
#include "gps/model/FrameTags.h"

bool CGrpGps::IsBaseEuref() const {
    return HasTag(GetSecScri(), TAG_ETRF2000) || HasTag(GetSecScri(), TAG_EUREF);
}

bool CGrpGps::SetBaseEuref(int kind) {
    if (IsBaseEuref()) return false;
    if (kind == BASE_EUREF) SetSecScri(WithTag(GetSecScri(), TAG_EUREF));
    if (kind == BASE_ETRF2000) SetSecScri(WithTag(GetSecScri(), TAG_ETRF2000));
    return true;
}

bool CGrpGps::ClearBaseEuref() {
    for (const std::string_view tag : {TAG_ETRF2000, TAG_EUREF}) {
        if (!HasTag(GetSecScri(), tag)) continue;
        SetSecScri(WithoutTag(GetSecScri(), tag));
        return true;
    }
    return false;
}

bool CGrpGps::ClearAllPointVrs(int kept, std::vector<int>& changed) {
    changed.clear();
    const int size = static_cast<int>(PunList.size());
    for (int i = 0; i < size; ++i) {
        CPunGps* point = PunList[static_cast<std::size_t>(i)];
        if (i != kept && point && point->ClearPointAsVrs()) changed.push_back(i);
    }
    return !changed.empty();
}
