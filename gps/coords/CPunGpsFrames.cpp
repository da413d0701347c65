// Members of CPunGps that mark points measured against a virtual reference station.
#include "gps/coords/TaggedText.h"
#include "gps/model/CPunGps.h"
#include "gps/model/FrameTags.h"

bool CPunGps::IsPointVrs() const { return HasTag(GetSecScri(), TAG_VRS); }

bool CPunGps::SetPointAsVrs() {
    if (IsPointVrs()) return false;
    SetSecScri(WithTag(GetSecScri(), TAG_VRS));
    return true;
}

bool CPunGps::ClearPointAsVrs() {
    if (!IsPointVrs()) return false;
    SetSecScri(WithoutTag(GetSecScri(), TAG_VRS));
    return true;
}
