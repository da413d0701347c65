// SimulationOptions: what a simulated log is to look like.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "apps/gpsbook/readers/Calendar.h"

namespace gpsbook {

/// The way of the rover, level with the base in its local frame (east, north; metres; i of n epochs).
enum class Track : std::uint8_t {
    line,    // from the base to the east: e = length i / (n - 1), n = 0
    circle,  // about the base, from north over east: e = radius sin t, n = radius cos t, t = 2 pi i / n
    stops,   // ten epochs on each point of a grid, five on the way to the next
};

enum class LogForm : std::uint8_t { nmea, pos, posXyz, posEnu };

/// Which solutions the receiver finds.
enum class QualityPlan : std::uint8_t {
    mixed,  // single, then float, then fixed with losses of both kinds
    fixed,
    floating,
    single,
};

/// The defaults make ten minutes of a rover near a base at sea level on the equator.
struct SimulationOptions {
    double baseLat = 0.0;     // degrees, WGS 84, north positive
    double baseLon = 0.0;     // degrees, WGS 84, east positive
    double baseHeight = 0.0;  // metres above the ellipsoid
    Track track = Track::line;
    double length = 100.0;  // metres, of the line, and of each side of the grid
    double radius = 50.0;   // metres, of the circle
    std::int64_t epochs = 600;
    double rate = 1.0;    // epochs a second
    double noise = 0.01;  // metres, standard deviation of east and of north when fixed; twice that of up
    QualityPlan quality = QualityPlan::mixed;
    std::uint64_t seed = 1;
    UtcTime start{{2024, 5, 1}, 8 * 3600 * 1000};  // UTC
    double separation = 0.0;  // metres, geoid above the ellipsoid: height = altitude + separation
    LogForm form = LogForm::nmea;
    bool satellitesInView = false;  // GSV sentences too, in an NMEA log
};

/// What is wrong with the options, in words for the user; none when a log can be made.
std::optional<std::string> OptionProblem(const SimulationOptions& options);

/// Milliseconds of GPS time since its epoch. None for a time that does not exist, or before GPS time.
///   GPST = UTC + leap seconds
std::optional<std::int64_t> UtcToGpsMs(const UtcTime& utc);

/// The time of a text in RFC 3339, with Z or an offset from UTC: "2024-05-01T08:00:00Z".
/// On error (another form, or a time that does not exist): none.
std::optional<UtcTime> ParseRfc3339(const std::string& text);

}  // namespace gpsbook
