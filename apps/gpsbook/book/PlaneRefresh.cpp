#include "apps/gpsbook/book/PlaneRefresh.h"

#include "gps/coords/FCalcCoord.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

void RefreshBase(CGrpGps& g) {
    double x = GPS_VAL_UNSET, y = GPS_VAL_UNSET, z = GPS_VAL_UNSET;
    const bool wanted = !g.IsCodedNE() && IsCoordValid(g.GetBaseLat()) && IsCoordValid(g.GetBaseLong()) &&
                        IsCoordValid(g.GetBaseElev()) && IsCoordValid(g.GetBaseAltAnt());
    if (!wanted || !g.GetConvCoord()->GrafGpsToPlanAtt(g.GetBaseLat(), g.GetBaseLong(), g.GetBaseElev(),
                                                       g.GetBaseAltAnt(), x, y, z))
        x = y = z = GPS_VAL_UNSET;  // whatever a failed conversion left
    g.SetCoord(x, y, z);
    g.CalcolaValiditaXYZ();
}

}  // namespace

bool RefreshPlane(CLibGps& book, const Place& place) {
    CGrpGps& group = *book.GetGrpAt(place.group);
    if (!group.IsCdElabValid()) return false;
    if (!place.IsPoint()) {
        RefreshBase(group);
        return true;
    }
    CPunGps& point = *book.GetPunAt(place.group, place.point);
    if (group.IsCodedNE() || point.IsCodedNE()) {
        point.SetCoord(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
        point.CalcolaValiditaXYZ();
    } else {
        book.CalcolaCoordCart(&point, place.group);
    }
    return true;
}

bool RefreshGroup(CLibGps& book, int group) {
    if (!book.GetGrpAt(group)->IsCdElabValid()) return false;
    FCalcCoordGrpGps(&book, group);
    return true;
}

}  // namespace gpsbook
