// FileMessage: messages about a file that the system refused.
#pragma once

#include <string>

#include "host/project/ProjectError.h"

namespace gpsproject {

/// "FILE: WHAT: what the system says; what to do about it".
ProjectError SystemError(const std::string& file, const std::string& what, int error);

}  // namespace gpsproject
