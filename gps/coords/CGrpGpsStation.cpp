// Members of CGrpGps that name the base after the permanent station at its position.
#include "gps/model/CGrpGps.h"

namespace {

bool OneSet(double a, double b, double c) { return IsCoordValid(a) || IsCoordValid(b) || IsCoordValid(c); }

}  // namespace

void CGrpGps::SetNomeBaseFromCoord(CTrovaNomeBaseGps::enumProvincia provincia) {
    double x, y, z;
    GetGeocCeFaMis(x, y, z);
    if (!OneSet(x, y, z)) return;
    std::string name;
    if (CTrovaNomeBaseGps::GetInstance()->GetNomeBaseGps(x, y, z, provincia, name)) SetNome(name);
}

void CGrpGps::SetNomeCoordBaseFromCoord(CTrovaNomeBaseGps::enumProvincia provincia) {
    double x, y, z;
    GetGeocCeFaMis(x, y, z);
    if (!OneSet(x, y, z)) return;
    std::string name;
    if (!CTrovaNomeBaseGps::GetInstance()->GetNomeCoordBaseGps(x, y, z, provincia, name)) return;
    SetGeocCeFaMis(x, y, z);
    SetNome(name);
}
