// StationFiles: where the catalogue of this installation stands.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/coord/StationCatalogue.h"
#include "host/coord/StationTable.h"

/// The catalogue that comes with this software: the environment variable GPS_SURVEY_STATIONS names another in
/// its place. Empty when there is none, or when the variable is set to nothing.
GPS_PLATFORM_API std::string ShippedStationsPath();

/// The stations that were added on this installation: stations.csv beside the settings. Empty when settings
/// have no place either.
GPS_PLATFORM_API std::string OwnStationsPath();

/// Farthest from a base that its station is looked for, metres: a setting.
inline constexpr double kStationRadius = 5;            // metres, unless set
inline constexpr double kLargestStationRadius = 1000;  // metres
GPS_PLATFORM_API double StationRadius();

/// False, changing nothing, for a radius outside 0 to kLargestStationRadius (metres), and when the settings
/// cannot be written.
GPS_PLATFORM_API bool SetStationRadius(double radius);

/// A file of the catalogue, and what came of it.
struct StationFile {
    std::string path;
    std::size_t stations = 0;
    std::vector<StationProblem> problems;
    std::vector<std::string> passedOver;  // columns that are not known
};

/// A table in a file. A file that cannot be read is a problem of line 0.
GPS_PLATFORM_API StationTable ReadStationFile(const std::string& path);

/// The catalogue as its files give it, those that were added last: of two sets of coordinates for the same
/// station, frame and epoch the added ones count. Lines with problems are left out.
struct StationSet {
    StationCatalogue catalogue;
    std::vector<StationFile> files;
};
GPS_PLATFORM_API StationSet LoadStations();

/// What came of a change of the added stations.
struct OwnStationsChange {
    bool done = false;  // false: the table could not be written, the old one is as it was
    std::string kept;   // the file that the old table is kept in; empty when nothing of it is lost
};

/// Replaces the table of added stations by what `change` makes of it, in one step and one change at a time,
/// among processes and threads: nothing that another one adds meanwhile is lost. `change` gets the table as
/// it stands, an empty one without problems when there is none yet, and answers nothing to leave it so. Its
/// exceptions pass through, and nothing is written.
///
/// A table that was written by hand, with remarks, columns or an order of its own, loses them: it is kept
/// under its name and ".old" (".old-2" and so on, if that is there).
GPS_PLATFORM_API OwnStationsChange
ChangeOwnStations(const std::function<std::optional<std::vector<Station>>(const StationTable&)>& change);

/// The table of added stations as it stands, as ChangeOwnStations gives it to its change.
GPS_PLATFORM_API StationTable ReadOwnStations();

/// The catalogue in which CTrovaNomeBaseGps looks: loaded at the first look-up, and again after a call of
/// ForgetStations, which is called when its files or the radius have changed.
struct StationsInUse {
    StationSet set;
    double radius;  // metres
};
GPS_PLATFORM_API const StationsInUse& GetStationsInUse();
GPS_PLATFORM_API void ForgetStations();
