// StationFiles: where the catalogue of this installation stands.
#pragma once

#include <cstddef>
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

/// Replaces the table of added stations, in one step. False, with the old one as it was, when it cannot be
/// written.
GPS_PLATFORM_API bool WriteOwnStations(const std::vector<Station>& stations);

/// The catalogue in which CTrovaNomeBaseGps looks: loaded at the first look-up, and again after a call of
/// ForgetStations, which is called when its files or the radius have changed.
struct StationsInUse {
    StationSet set;
    double radius;  // metres
};
GPS_PLATFORM_API const StationsInUse& GetStationsInUse();
GPS_PLATFORM_API void ForgetStations();
