#include "apps/gpsbook/commands/ImportTarget.h"

#include <algorithm>
#include <charconv>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/BookSettings.h"
#include "apps/gpsbook/book/GroupSystem.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

// The number behind the prefix, all digits; -1 for another name.
long NumberBehind(const std::string& name, const std::string& prefix) {
    if (!name.starts_with(prefix)) return -1;
    const char* const begin = name.data() + prefix.size();
    const char* const end = name.data() + name.size();
    long number = -1;
    const auto [stop, error] = std::from_chars(begin, end, number);
    return error == std::errc{} && stop == end && *begin != '-' ? number : -1;
}

}  // namespace

LogDefaults DefaultsOf(gpsproject::Project& project) {
    LogDefaults defaults;
    if (const std::string antenna = SettingOf(project, kSettingAntenna); !antenna.empty())
        defaults.antenna = antenna;
    if (const std::string heights = SettingOf(project, kSettingHeights); !heights.empty())
        defaults.heights = heights;
    return defaults;
}

long FirstFreeNumber(const CLibGps& book, const std::string& prefix) {
    long last = 0;
    for (int g = 0; g < book.GetGrpArSize(); ++g)
        for (int p = 0; p < book.GetPunArSize(g); ++p)
            last = std::max(last, NumberBehind(book.GetPunAt(g, p)->GetNome(), prefix));
    return last + 1;
}

bool HasGroup(const CLibGps& book, const std::string& name) {
    for (int g = 0; g < book.GetGrpArSize(); ++g)
        if (NameOf(*book.GetGrpAt(g)) == name) return true;
    return false;
}

int ExistingGroup(const CLibGps& book, const std::string& group) {
    if (group.empty()) return -1;
    if (!group.starts_with('#') && !HasGroup(book, group)) return -1;
    return FindGroup(book, group);
}

std::string SystemOfNewGroups(const ImportArguments& a, gpsproject::Project& project) {
    const std::string crs = a.crs.empty() ? SettingOf(project, kSettingCrs) : a.crs;
    if (crs.empty())
        Usage("--crs",
              "the book has no plane system for new groups; give one, or a group that exists with "
              "--group");
    return ProjectionFrom(crs).GetDefinizione();
}

}  // namespace gpsbook
