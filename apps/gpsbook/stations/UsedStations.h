// UsedStations: the catalogue in which commands look.
#pragma once

#include "host/coord/StationFiles.h"

namespace gpsbook {

/// Shipped and added stations, and the radius set. What is wrong with the files is told on standard error,
/// once; their other lines are used.
const StationsInUse& UsedStations();

}  // namespace gpsbook
