// OpenedFile: what a project remembers of its file, to see whether others have changed it.
#pragma once

#include <string>
#include <vector>

#include "host/os/FileOperations.h"
#include "host/project/ContainerFormat.h"

namespace gpsproject {

struct OpenedFile {
    FileOperations::Facts facts;
    std::vector<SectionEntry> sections;  // the table: lengths and checksums of all contents
};

/// Whether the file still has the same content. Its table is always compared; when the system says that
/// something about the file is new, such as its time, all contents are read and checked, too. A file that
/// cannot be read, or is none, is another one.
bool IsUnchanged(FileOperations& files, const std::string& path, const OpenedFile& opened);

}  // namespace gpsproject
