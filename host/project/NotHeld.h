// NotHeld: what of a project a version of the stream has no place for.
#pragma once

#include <string>
#include <vector>

#include "host/project/Project.h"

namespace gpsproject {

/// One line for each kind of value that is lost when the project is saved in that version: what, where first,
/// and how often. Empty: everything is held.
std::vector<std::string> NotHeldBy(Project& project, short version);

}  // namespace gpsproject
