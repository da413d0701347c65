// fileHelpers: what the library asks about file names and files.
//
// Paths are texts of the system (UTF-8 here); "/" and "\" both separate folders, so that paths written on
// another system still work.
#pragma once

#include <string>

#include "platform/base/PlatformExport.h"

/// True for an existing regular file; false for a folder, for nothing, and for the empty or null text.
GPS_PLATFORM_API bool FEsisteIlFile(const char* path);

/// Removes the extension: everything from the last "." behind the last separator. A path without one stays
/// as it is ("D:\Jobs.v2\Site7"). A null pointer counts as the empty text.
GPS_PLATFORM_API std::string EliminaEstensioneFile(const char* path);

/// The path as this system writes it: on a system that separates folders by "/", every "\" becomes one.
GPS_PLATFORM_API std::string PercorsoDiSistema(const char* path);
