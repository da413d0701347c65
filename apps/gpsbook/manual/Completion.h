// Completion: scripts that let a shell complete the program's command line.
#pragma once

#include <string>

#include "apps/gpsbook/manual/CommandDescription.h"

namespace gpsbook {

/// For bash 4.4 and later; needs nothing else.
std::string BashCompletion(const CommandDescription& program);

/// For zsh: a file "_gpsbook" of a folder in its fpath.
std::string ZshCompletion(const CommandDescription& program);

}  // namespace gpsbook
