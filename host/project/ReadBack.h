// ReadBack: what was written is what the file gives.
#pragma once

#include "host/os/FileOperations.h"
#include "host/project/SectionSource.h"

namespace gpsproject {

/// Whether a section gives the bytes that were handed out. That of the field book is read as such, too, and
/// has to end where the section ends, with as many groups and points as were written.
bool ReadsBack(FileOperations& files, int file, const FoundSection& section);

}  // namespace gpsproject
