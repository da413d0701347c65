#include "gps/coords/FCalcCoord.h"

#include "gps/model/CLibGps.h"

namespace {

// One phase centre with its antenna height: degrees, degrees, metres, metres.
struct Fix {
    double lat, lon, elev, altAnt;

    bool IsSet() const {
        return IsCoordValid(lat) && IsCoordValid(lon) && IsCoordValid(elev) && IsCoordValid(altAnt);
    }
};

void Recompute(CEgn& entity, bool wanted, const Fix& fix, const CConvCoord& conv) {
    double x, y, z;
    if (wanted && fix.IsSet() && conv.GrafGpsToPlanAtt(fix.lat, fix.lon, fix.elev, fix.altAnt, x, y, z))
        entity.SetCoord(x, y, z);
    else
        entity.SetCoord(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
    entity.CalcolaValiditaXYZ();
}

}  // namespace

void FCalcCoordGrpGps(CLibGps* book, int g) {
    CGrpGps* group = book ? book->GetGrpAt(g) : nullptr;
    if (!group) return;
    CConvCoord* conv = group->GetConvCoord();
    conv->ShowMessage(false);
    if (group->IsCdElabValid()) {
        const bool wanted = !group->IsCodedNE();
        Recompute(*group, wanted,
                  {group->GetBaseLat(), group->GetBaseLong(), group->GetBaseElev(), group->GetBaseAltAnt()},
                  *conv);
        const int count = book->GetPunArSize(g);
        for (int i = 0; i < count; ++i) {
            CPunGps& point = *book->GetPunAt(g, i);
            Recompute(point, wanted && !point.IsCodedNE(),
                      {point.GetLat(), point.GetLong(), point.GetElev(), point.GetAltAnt()}, *conv);
        }
    }
    conv->ShowMessage(true);
    book->SetModifiedFlag(true);
}

void FCalcCoordLibGps(CLibGps* book, VEXNotifySource*) {
    if (!book) return;
    for (int g = 0; g < book->GetGrpArSize(); ++g) FCalcCoordGrpGps(book, g);
}
