// StationCatalogue: permanent stations, found by position.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "host/coord/Station.h"
#include "host/coord/StationIndex.h"

/// Stations that do not change, and an index of their positions: a look-up among a hundred thousand takes
/// microseconds.
class GPS_PLATFORM_API StationCatalogue {
public:
    using Position = StationIndex::Position;  // metres, geocentric

    /// What is looked for: which stations, and how far from a position.
    struct Query {
        double radius = 0;  // metres
        CTrovaNomeBaseGps::enumProvincia provincia = CTrovaNomeBaseGps::provTutte;
        // As it is written in the catalogue, with or without what stands there in brackets, in large or small
        // letters; empty: any.
        std::string_view frame;
    };

    /// A station and how far away it is.
    struct Hit {
        const Station* station;
        double distance;  // metres
    };

    StationCatalogue() = default;
    explicit StationCatalogue(std::vector<Station> stations);
    StationCatalogue(StationCatalogue&&) = default;
    StationCatalogue& operator=(StationCatalogue&&) = default;

    const std::vector<Station>& Stations() const { return stations_; }

    /// Whether it is of the stations that are looked for, wherever it is.
    static bool Fits(const Station& station, const Query& query);

    /// The nearest station within the radius, the first of equally near ones; null when there is none.
    const Station* Find(const Position& at, const Query& query) const;

    /// All stations within the radius, the nearest first, equally near ones in the order of the catalogue.
    std::vector<Hit> Near(const Position& at, const Query& query) const;

private:
    std::vector<Station> stations_;
    StationIndex index_;
};

/// Metres between two positions, straight through the earth.
GPS_PLATFORM_API double Distance(const StationCatalogue::Position& a, const StationCatalogue::Position& b);
