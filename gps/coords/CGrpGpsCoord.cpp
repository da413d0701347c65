// Members of CGrpGps that derive coordinates from the base position. The rules are not those of a point: see
// the header. A default ellipsoid is made afresh for every call; results are not tested.
#include "gps/model/CGrpGps.h"
#include "platform/coord/CEllissoide.h"

namespace {

void Undefined(double& a, double& b, double& c) { a = b = c = GPS_VAL_UNSET; }

bool OneSet(double a, double b, double c) { return IsCoordValid(a) || IsCoordValid(b) || IsCoordValid(c); }

bool AllSet(double a, double b, double c, double d) {
    return IsCoordValid(a) && IsCoordValid(b) && IsCoordValid(c) && IsCoordValid(d);
}

}  // namespace

bool CGrpGps::AreBaseCoordValid() { return IsCoordValid(BaseLat) && IsCoordValid(BaseLong); }

void CGrpGps::GetGrafWgs84(double& lat, double& lon, double& h) {
    ConvCoord.GrafBaseToGrafWgs(BaseLat, BaseLong, BaseElev, lat, lon, h);
}

void CGrpGps::SetGeocCeFaMis(double x, double y, double z) {
    if (!OneSet(x, y, z)) return;
    CEllissoide().GeocToGraf(x, y, z, BaseLat, BaseLong, BaseElev);
}

void CGrpGps::GetGeocCeFaMis(double& x, double& y, double& z) {
    if (!OneSet(BaseLat, BaseLong, BaseElev)) return Undefined(x, y, z);
    CEllissoide().GrafToGeoc(BaseLat, BaseLong, BaseElev, x, y, z);
}

void CGrpGps::GetGeocCeFaWgs84(double& x, double& y, double& z) {
    if (!OneSet(BaseLat, BaseLong, BaseElev)) return Undefined(x, y, z);
    double xm, ym, zm;
    CEllissoide().GrafToGeoc(BaseLat, BaseLong, BaseElev, xm, ym, zm);
    ConvCoord.GeocBaseToGeocWgs(xm, ym, zm, x, y, z);
}

void CGrpGps::GetGeocTerrMis(double& x, double& y, double& z) {
    if (!AllSet(BaseLat, BaseLong, BaseElev, BaseAltAnt)) return Undefined(x, y, z);
    CEllissoide().GrafToGeoc(BaseLat, BaseLong, BaseElev - BaseAltAnt, x, y, z);
}

void CGrpGps::GetGeocTerrWgs84(double& x, double& y, double& z) {
    if (!AllSet(BaseLat, BaseLong, BaseElev, BaseAltAnt)) return Undefined(x, y, z);
    double xm, ym, zm;
    CEllissoide().GrafToGeoc(BaseLat, BaseLong, BaseElev - BaseAltAnt, xm, ym, zm);
    ConvCoord.GeocBaseToGeocWgs(xm, ym, zm, x, y, z);
}
