#include "host/base/IniValues.h"

#define SI_NO_CONVERSION  // texts are bytes: the wide forms are left out
#include <SimpleIni.h>

#include "host/base/IniLines.h"

IniValues AllIniValues(const std::string& text) {
    CSimpleIniCaseA ini;
    IniValues values;
    if (ini.LoadData(text) < 0) return values;
    CSimpleIniCaseA::TNamesDepend sections;
    ini.GetAllSections(sections);
    for (const auto& section : sections) {
        CSimpleIniCaseA::TNamesDepend keys;
        ini.GetAllKeys(section.pItem, keys);
        for (const auto& key : keys)
            values[{section.pItem, key.pItem}] = ini.GetValue(section.pItem, key.pItem, "");
    }
    return values;
}

std::optional<std::string> FindIniValue(const std::string& text, const std::string& section,
                                        const std::string& key) {
    CSimpleIniCaseA ini;
    if (ini.LoadData(text) < 0) return {};
    const char* const value = ini.GetValue(section.c_str(), key.c_str());
    if (!value) return {};
    return value;
}

std::string IniTextOf(const IniValues& values) {
    std::string text;
    const std::string* section = nullptr;
    // Values before any section come first, since their section is the empty text.
    for (const auto& [place, value] : values) {
        if (!place.first.empty() && (!section || *section != place.first)) {
            section = &place.first;
            if (!text.empty()) text += '\n';
            text.append("[").append(place.first).append("]\n");
        }
        text.append(place.second).append(" = ").append(value).append("\n");
    }
    return text;
}
