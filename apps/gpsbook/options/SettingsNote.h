// SettingsNote: tells that the settings of this computer cannot be used.
#pragma once

class CIniFile;

namespace gpsbook {

/// When the file of the settings is there and cannot be used, says on standard error that the defaults hold.
void NoteUnusableSettings();

/// When a write had to keep the former file, says where it is. `damaged`: it gave no settings.
void NoteKeptSettings(const CIniFile& file, bool damaged);

}  // namespace gpsbook
