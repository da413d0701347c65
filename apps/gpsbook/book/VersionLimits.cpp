#include "apps/gpsbook/book/VersionLimits.h"

#include <fmt/format.h>

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/readers/FieldText.h"
#include "host/project/Project.h"

namespace gpsbook {

namespace {

struct Limit {
    short from;  // held from this version on
    const char* what;
};

constexpr Limit kLimits[] = {
    {750, "factors, survey type and receiver type of groups"},
    {881, "the base position of points"},
    {903, "the mark of secondary duplicates"},
    {1002, "post-processing options and observation files"},
    {1003, "index 3 and text 2 of observation files"},
    {1004, "drawing references"},
    {1106, "reserved numbers of groups and points"},
    {1300, "marks 3 and 4 of observation files"},
    {1311, "the creator device of groups"},
};

}  // namespace

short StreamVersionFrom(const std::string& option, const std::string& text) {
    using gpsproject::Project;
    int version = 0;
    if (!ParseCount(text, version) || version < Project::kOldestVersion || version > Project::kNewestVersion)
        throw CommandError(exitUsage,
                           fmt::format("{}: \"{}\" is no version that can be written; give a number from "
                                       "{} to {}",
                                       option, text, Project::kOldestVersion, Project::kNewestVersion));
    return static_cast<short>(version);
}

std::vector<std::string> NotHeldIn(short version) {
    std::vector<std::string> all;
    for (const Limit& limit : kLimits)
        if (version < limit.from) all.emplace_back(limit.what);
    return all;
}

}  // namespace gpsbook
