// GpsReader: the field book from its section, also from a damaged one.
#pragma once

#include <string>

#include "gps/model/CLibGps.h"
#include "host/os/FileOperations.h"
#include "host/project/DamageReport.h"
#include "host/project/SectionSource.h"
#include "platform/cad/CDrawingsMapper.h"

namespace gpsproject {

/// Groups and points of a field book together.
std::int64_t CountItems(const CLibGps& book);

/// Reads a section into an empty field book. Of a damaged one it keeps the groups and points that are
/// certain: all of them when the section is in step to its end, else those before the first damage; what is
/// wrong is added to the report with the records that it concerns. Errors: ProjectError (system) when there
/// is not enough memory.
void ReadGps(FileOperations& files, int file, const FoundSection& section, const std::string& path,
             CLibGps& book, CDrawingsMapper& drawings, DamageReport& report);

}  // namespace gpsproject
