// StationTable: stations as a table of comma-separated values; docs/formats/stations.md describes it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/coord/Station.h"

/// What is wrong in a line of a table.
struct StationProblem {
    std::size_t line = 0;  // from 1; 0: the table as a whole
    std::string what;      // and what to do
};

/// A table that was read.
struct StationTable {
    std::vector<Station> stations;         // of the lines without a problem, in their order
    std::vector<StationProblem> problems;  // by line
    std::vector<std::string> passedOver;   // columns that are not known
};

GPS_PLATFORM_API StationTable ReadStationTable(std::string_view text);

/// The text of a table with these stations: what ReadStationTable reads back.
GPS_PLATFORM_API std::string WriteStationTable(const std::vector<Station>& stations);
