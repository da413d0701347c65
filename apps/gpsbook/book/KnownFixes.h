// KnownFixes: which fixes a book holds already, by time and position.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

class CLibGps;
class CPunGps;

namespace gpsbook {

/// A fix as a point keeps it.
struct Fix {
    std::int64_t day = 0;     // year, month and day, as one number
    std::uint32_t todMs = 0;  // UTC time of day, milliseconds
    double lat = 0, lon = 0;  // degrees
    double h = 0;             // metres, phase centre

    bool operator==(const Fix&) const = default;
};

Fix FixOf(const CPunGps& point);

/// Finds a fix in constant time: the same one to the last bit, as the same log gives it again.
class KnownFixes {
public:
    /// Takes in the points of a group from one on. Those without time or position are no fixes.
    void Add(const CLibGps& book, int group, int fromPoint);

    /// The first group that has it; -1: none.
    int GroupOf(const Fix& fix) const;

private:
    struct Hash {
        std::size_t operator()(const Fix& fix) const;
    };
    std::unordered_map<Fix, int, Hash> groups_;
};

}  // namespace gpsbook
