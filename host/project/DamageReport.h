// DamageReport: what is wrong with a project file, and where.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace gpsproject {

/// One thing that is wrong.
struct Damage {
    std::string section;       // name of the section, "container" for what holds them together
    std::string record;        // "group 3", "group 3, point 17"; empty when it concerns the whole section
    std::int64_t offset = -1;  // byte of the file; -1: unknown
    std::string what;
};

struct DamageReport {
    std::vector<Damage> damages;
    int groupsRead = 0;  // what was read all the same
    int pointsRead = 0;

    /// The book as it was saved before, when there is one; empty: there is none.
    std::string backup;

    bool IsDamaged() const { return !damages.empty(); }

    /// One line for each damage: section, record, byte, what. Then a line about the backup.
    std::string Text() const;
};

}  // namespace gpsproject
