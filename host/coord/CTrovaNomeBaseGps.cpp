#include "platform/coord/CTrovaNomeBaseGps.h"

#include "host/coord/StationFiles.h"

namespace {

bool InCatalogue(double& x, double& y, double& z, CTrovaNomeBaseGps::enumProvincia provincia,
                 std::string& name) {
    const StationsInUse& inUse = GetStationsInUse();
    const Station* station = inUse.set.catalogue.Find({x, y, z}, {inUse.radius, provincia, {}});
    if (!station) return false;
    x = station->position[0];
    y = station->position[1];
    z = station->position[2];
    name = station->Called();
    return true;
}

}  // namespace

CTrovaNomeBaseGps* CTrovaNomeBaseGps::GetInstance() {
    static CTrovaNomeBaseGps instance;
    return &instance;
}

bool CTrovaNomeBaseGps::GetNomeBaseGps(double x, double y, double z, enumProvincia provincia,
                                       std::string& name) {
    return GetNomeCoordBaseGps(x, y, z, provincia, name);
}

bool CTrovaNomeBaseGps::GetNomeCoordBaseGps(double& x, double& y, double& z, enumProvincia provincia,
                                            std::string& name) {
    double sx = x, sy = y, sz = z;
    std::string found;
    if (!(ricerca_ ? ricerca_(sx, sy, sz, provincia, found) : InCatalogue(sx, sy, sz, provincia, found)))
        return false;
    x = sx;
    y = sy;
    z = sz;
    name = std::move(found);
    return true;
}
