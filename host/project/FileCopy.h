// FileCopy: a second file, or a second name, with the same content.
#pragma once

#include <string>

#include "host/os/FileOperations.h"

namespace gpsproject {

/// Whether a file system has answered that a file has one name there.
bool IsUnsupported(int error);

/// A new file with content and rights of another one, synced. An error number, or 0.
int CopyFile(FileOperations& files, const std::string& source, const std::string& target);

/// A second name, or a copy where a file has one name. EEXIST when there is something of that name.
int KeepUnder(FileOperations& files, const std::string& from, const std::string& to);

/// The first of BASE1, BASE2 and so on that nothing has.
std::string FreeName(FileOperations& files, const std::string& base);

}  // namespace gpsproject
