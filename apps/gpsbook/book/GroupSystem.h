// GroupSystem: the plane system of a group, by its definition.
#pragma once

#include <string>

#include "platform/coord/CProiezPla.h"

class CGrpGps;
class CLibGps;

namespace gpsbook {

/// The projection of a plane system. Errors: CommandError (exitUsage) naming --crs and what is wrong.
CProiezPla ProjectionFrom(const std::string& crs);

/// The system as a table of points names it: a definition, or WKT for one given by text.
std::string TableSystem(const CProiezPla& projection);

/// Makes the conversion of a group the one to that system, set up and valid.
/// Errors: as ProjectionFrom; the group is unchanged then.
void SetSystem(CGrpGps& group, const std::string& crs);

/// The system of a group's plane coordinates as a table of points names it; empty when it is none that can be
/// named: no projection, or a local system behind it.
std::string TableSystem(const CGrpGps& group);

/// Appends a group with that name and system. Errors: as ProjectionFrom; nothing is added then.
CGrpGps& AddGroup(CLibGps& book, const std::string& name, const std::string& crs);

}  // namespace gpsbook
