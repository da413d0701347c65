// Members of CPunGps that derive coordinates from the fix. A default ellipsoid is made afresh for every call;
// results of the coordinate library are not tested: the outputs hold what it left.
#include "gps/model/CGrpGps.h"
#include "gps/model/CPunGps.h"
#include "platform/coord/CEllissoide.h"

namespace {

void Undefined(double& a, double& b, double& c) { a = b = c = GPS_VAL_UNSET; }

}  // namespace

void CPunGps::GetGrafWgs84(double& lat, double& lon, double& h) {
    if (!Group) return Undefined(lat, lon, h);
    Group->GetConvCoord()->GrafBaseToGrafWgs(Lat, Long, Elev, lat, lon, h);
}

void CPunGps::SetGeocCeFaMis(double x, double y, double z) {
    // Intended: one set component is enough, and the setters with their change bits are bypassed.
    if (!IsCoordValid(x) && !IsCoordValid(y) && !IsCoordValid(z)) return;
    CEllissoide().GeocToGraf(x, y, z, Lat, Long, Elev);
}

void CPunGps::GetGeocCeFaMis(double& x, double& y, double& z) {
    if (!IsCoordValid(Lat) || !IsCoordValid(Long) || !IsCoordValid(Elev)) return Undefined(x, y, z);
    CEllissoide().GrafToGeoc(Lat, Long, Elev, x, y, z);
}

void CPunGps::GetGeocCeFaWgs84(double& x, double& y, double& z) {
    if (!Group || !IsCoordValid(Lat) || !IsCoordValid(Long) || !IsCoordValid(Elev)) return Undefined(x, y, z);
    double xm, ym, zm;
    CEllissoide().GrafToGeoc(Lat, Long, Elev, xm, ym, zm);
    Group->GetConvCoord()->GeocBaseToGeocWgs(xm, ym, zm, x, y, z);
}

void CPunGps::GetGeocTerrMis(double& x, double& y, double& z) {
    if (!IsCoordValid(Lat) || !IsCoordValid(Long) || !IsCoordValid(Elev) || !IsCoordValid(AltAnt))
        return Undefined(x, y, z);
    CEllissoide().GrafToGeoc(Lat, Long, Elev - AltAnt, x, y, z);
}

void CPunGps::GetGeocTerrWgs84(double& x, double& y, double& z) {
    if (!Group || !IsCoordValid(Lat) || !IsCoordValid(Long) || !IsCoordValid(Elev) || !IsCoordValid(AltAnt))
        return Undefined(x, y, z);
    double xm, ym, zm;
    CEllissoide().GrafToGeoc(Lat, Long, Elev - AltAnt, xm, ym, zm);
    Group->GetConvCoord()->GeocBaseToGeocWgs(xm, ym, zm, x, y, z);
}

void CPunGps::SetGrafBase(double lat, double lon, double h) {
    GrafBase[0] = lat;
    GrafBase[1] = lon;
    GrafBase[2] = h;
}

void CPunGps::GetGrafBase(double& lat, double& lon, double& h) {
    lat = GrafBase[0];
    lon = GrafBase[1];
    h = GrafBase[2];
}

void CPunGps::SetGeocBase(double x, double y, double z) {
    CEllissoide().GeocToGraf(x, y, z, GrafBase[0], GrafBase[1], GrafBase[2]);
}

void CPunGps::GetGeocBase(double& x, double& y, double& z) {
    CEllissoide().GrafToGeoc(GrafBase[0], GrafBase[1], GrafBase[2], x, y, z);
}
