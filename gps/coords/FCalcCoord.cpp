#include "gps/coords/FCalcCoord.h"

#include <algorithm>

#include "gps/model/CLibGps.h"

namespace {

// Plane coordinates of an entity from its phase centre (degrees, degrees, metres) and antenna height
// (metres). Always inlined: it is called a million times in a row.
[[gnu::always_inline]] inline void Recompute(CEgn& entity, bool wanted, double lat, double lon, double elev,
                                             double altAnt, const CConvCoord& conv) {
    double x, y, z;
    if (!wanted || !IsCoordValid(lat) || !IsCoordValid(lon) || !IsCoordValid(elev) || !IsCoordValid(altAnt) ||
        !conv.GrafGpsToPlanAtt(lat, lon, elev, altAnt, x, y, z))
        x = y = z = GPS_VAL_UNSET;  // whatever a failed conversion left
    entity.SetCoord(x, y, z);
    entity.CalcolaValiditaXYZ();
}

constexpr std::size_t kAhead = 4;  // points

// Asks for the memory of a point that is needed soon: the conversions in between hide the wait for it, which
// would be a tenth of the whole in a large book.
void FetchAhead(const CPunGps* point) {
    const char* bytes = reinterpret_cast<const char*>(point);
    for (std::size_t at = 0; at < sizeof(CPunGps); at += 64) __builtin_prefetch(bytes + at);
}

}  // namespace

void FCalcCoordGrpGps(CLibGps* book, int g) {
    CGrpGps* group = book ? book->GetGrpAt(g) : nullptr;
    if (!group) return;
    CConvCoord* conv = group->GetConvCoord();
    conv->ShowMessage(false);
    if (group->IsCdElabValid()) {
        const std::vector<CPunGps*>& points = group->PunList;
        for (std::size_t i = 0; i < std::min(kAhead, points.size()); ++i) FetchAhead(points[i]);
        const bool wanted = !group->IsCodedNE();
        Recompute(*group, wanted, group->GetBaseLat(), group->GetBaseLong(), group->GetBaseElev(),
                  group->GetBaseAltAnt(), *conv);
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (i + kAhead < points.size()) FetchAhead(points[i + kAhead]);
            CPunGps& point = *points[i];
            Recompute(point, wanted && !point.IsCodedNE(), point.GetLat(), point.GetLong(), point.GetElev(),
                      point.GetAltAnt(), *conv);
        }
    }
    conv->ShowMessage(true);
    book->SetModifiedFlag(true);
}

void FCalcCoordLibGps(CLibGps* book, VEXNotifySource*) {
    if (!book) return;
    for (int g = 0; g < book->GetGrpArSize(); ++g) FCalcCoordGrpGps(book, g);
}
