// SaveTarget: the file that a name to save under stands for.
#pragma once

#include <optional>
#include <string>

#include "host/os/FileOperations.h"

namespace gpsproject {

struct SaveTarget {
    std::string path;                             // without links
    std::optional<FileOperations::Facts> former;  // of the file that is there
};

/// Errors: ProjectError: notFound (no name), exists (and not to be overwritten, no ordinary file, or a name
/// that saving itself uses), system (no folder, no right to replace the file).
SaveTarget FindSaveTarget(FileOperations& files, const std::string& name, bool overwrite);

}  // namespace gpsproject
