// ExchangeCheck: reads a file of points or groups to its end and says whether it is whole.
#pragma once

#include <cstdint>
#include <string>

class CPunGps;

namespace gpsbook {

/// A load, or a save, of more records than this that do not exist is refused even when it is forced: it would
/// only fill memory or disk.
inline constexpr std::int64_t kMostMissing = 1'000'000;

/// What an exchange file holds. The file itself does not tell.
enum class ExchangeKind { points, groups };

/// What was found in one. Everything behind the first thing that is wrong is as a load would take it.
struct ExchangeContent {
    short version = 0;        // of its records
    int count = 0;            // points or groups, as the file promises
    std::int64_t groups = 0;  // records that are there
    std::int64_t points = 0;
    std::int64_t withPlane = 0;  // points that have plane coordinates
    std::int64_t withFix = 0;    // points that have latitude, longitude and height

    // The first thing that is wrong; empty: the file is whole.
    std::string wrong;
    std::string record;       // in which: "point 3", "group 0, point 3"; empty: in none
    std::int64_t offset = 0;  // byte of the file

    /// Records that are promised and not even begun. A load makes an empty point or group of each.
    std::int64_t missing = 0;

    bool IsWhole() const { return wrong.empty(); }

    /// "byte 1034, point 3: the file ends within it"
    std::string Problem() const;
};

/// Whether a point has latitude, longitude and height.
bool HasFix(const CPunGps& point);

/// Reads a file of that kind as a load does, into nothing. The book is told nothing of it; no damage, and no
/// count, makes it take more time or memory than the file is long.
/// Errors: CommandError for a file that is not there, or cannot be read.
ExchangeContent CheckExchangeFile(const std::string& file, ExchangeKind kind);

}  // namespace gpsbook
