// Members of CLibGps that keep one point's plane coordinates and its fix in step.
#include "gps/model/CLibGps.h"

void CLibGps::CalcolaCoordCart(CPunGps* point, int g) {
    const CGrpGps* group = GetGrpAt(g);
    point->SetCoord(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
    double x, y, z;
    if (group && group->IsCdElabValid() && IsCoordValid(point->GetLat()) && IsCoordValid(point->GetLong()) &&
        IsCoordValid(point->GetElev()) && IsCoordValid(point->GetAltAnt()) &&
        group->GetConvCoord()->GrafGpsToPlanAtt(point->GetLat(), point->GetLong(), point->GetElev(),
                                                point->GetAltAnt(), x, y, z))
        point->SetCoord(x, y, z);
    point->CalcolaValiditaXYZ();
}

void CLibGps::CalcolaCoordGeog(CPunGps* point, int g) {
    const CGrpGps* group = GetGrpAt(g);
    if (!group || !group->IsCdElabValid()) return;
    double lat = GPS_VAL_UNSET, lon = GPS_VAL_UNSET, h = GPS_VAL_UNSET;
    const bool usable = IsCoordValid(point->GetCoordX()) && IsCoordValid(point->GetCoordY()) &&
                        IsCoordValid(point->GetCoordZ()) && IsCoordValid(point->GetAltAnt());
    if (!usable ||
        !group->GetConvCoord()->PlanAttToGrafGps(point->GetCoordX(), point->GetCoordY(), point->GetCoordZ(),
                                                 point->GetAltAnt(), lat, lon, h))
        lat = lon = h = GPS_VAL_UNSET;  // whatever the failed conversion left
    point->SetLat(lat);
    point->SetLong(lon);
    point->SetElev(h);
    point->CalcolaValiditaXYZ();
}
