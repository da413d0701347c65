// GpsSection: the bare GPS section, for exchange with a host program.
#pragma once

#include <string>

#include "host/project/Project.h"

namespace gpsproject {

/// Writes the GPS section of a project into a file of its own: exactly the bytes of the field-book record,
/// nothing before or behind it; who reads it must be told the version. `overwrite`: a file of that name is
/// replaced, and kept as backup. The project stays as it is.
/// Errors: ProjectError: notHeld (a version that is not written), exists, system.
void WriteSection(Project& project, const std::string& file, short version, bool overwrite);

/// Reads such a file into a project: options, and groups behind those that are there. From version 1004 the
/// map library is not in it, and that of the project stays.
/// Errors: ProjectError: notHeld (a project that is shared), notFound, tooNew, damaged (with group, point and
/// byte), system; the project is then as it was.
void ReadSection(const std::string& file, short version, Project& into);

}  // namespace gpsproject
