// BookSettings: what a book keeps for the imports to come.
#pragma once

#include <string>

#include "host/project/Project.h"

namespace gpsbook {

// Keys of the texts of a project.
inline constexpr char kSettingName[] = "name";        // of the project
inline constexpr char kSettingCrs[] = "crs";          // plane system of new groups
inline constexpr char kSettingAntenna[] = "antenna";  // metres, as text
inline constexpr char kSettingHeights[] = "heights";  // antenna or marker

/// A text of the project; empty when it has none.
inline std::string SettingOf(gpsproject::Project& project, const char* key) {
    const auto found = project.GetSettings().find(key);
    return found == project.GetSettings().end() ? std::string() : found->second;
}

}  // namespace gpsbook
