// PlaneRefresh: plane coordinates that follow an edited fix.
#pragma once

#include "apps/gpsbook/book/Address.h"

namespace gpsbook {

/// Computes the plane coordinates of a point, or of a group's base, anew. Without a usable conversion they
/// stay as they are, and the answer is false. An entity coded to be without plane coordinates has none then.
bool RefreshPlane(CLibGps& book, const Place& place);

/// The same for a group's base and all its points.
bool RefreshGroup(CLibGps& book, int group);

}  // namespace gpsbook
