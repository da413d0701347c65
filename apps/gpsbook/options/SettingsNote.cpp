#include "apps/gpsbook/options/SettingsNote.h"

#include <iostream>

#include "platform/base/CIniFile.h"

namespace gpsbook {

void NoteUnusableSettings() {
    const CIniFile file;
    switch (file.GetState()) {
        case CIniFile::State::Usable:
            return;
        case CIniFile::State::Damaged:
            std::cerr
                << "note: " << file.GetPath()
                << ": is damaged and gives no settings, the defaults hold; gpsbook options set begins a "
                   "new file and keeps this one\n";
            return;
        case CIniFile::State::Refused:
            std::cerr
                << "note: " << file.GetPath()
                << ": cannot be read and gives no settings, the defaults hold; check its access rights\n";
            return;
    }
}

void NoteKeptSettings(const CIniFile& file, bool damaged) {
    if (file.GetKeptPath().empty()) return;
    std::cerr << "note: " << file.GetPath()
              << (damaged
                      ? ": was damaged and gave no settings; a new file is begun, and the former one is "
                      : ": had lines that could be understood in two ways; all it said is in a new file, and "
                        "the former one is ")
              << file.GetKeptPath() << '\n';
}

}  // namespace gpsbook
