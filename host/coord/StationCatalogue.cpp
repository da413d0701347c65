#include "host/coord/StationCatalogue.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

std::vector<StationIndex::Position> PositionsOf(const std::vector<Station>& stations) {
    std::vector<StationIndex::Position> positions;
    positions.reserve(stations.size());
    for (const Station& station : stations) positions.push_back(station.position);
    return positions;
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

bool IsSame(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

}  // namespace

StationCatalogue::StationCatalogue(std::vector<Station> stations)
    : stations_(std::move(stations)), index_(PositionsOf(stations_)) {}

bool StationCatalogue::Fits(const Station& station, const Query& query) {
    if (query.provincia != CTrovaNomeBaseGps::provTutte && query.provincia != station.provincia) return false;
    const std::string_view frame = station.frame;
    return query.frame.empty() || IsSame(query.frame, frame) ||
           IsSame(query.frame, frame.substr(0, frame.find(" (")));
}

const Station* StationCatalogue::Find(const Position& at, const Query& query) const {
    const std::size_t place = index_.Nearest(
        at, query.radius, [&](std::size_t candidate) { return Fits(stations_[candidate], query); });
    return place == StationIndex::NONE ? nullptr : &stations_[place];
}

std::vector<StationCatalogue::Hit> StationCatalogue::Near(const Position& at, const Query& query) const {
    std::vector<Hit> hits;
    for (const std::size_t place : index_.Within(at, query.radius))
        if (Fits(stations_[place], query))
            hits.push_back({&stations_[place], Distance(stations_[place].position, at)});
    std::sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) {
        return a.distance != b.distance ? a.distance < b.distance : a.station < b.station;
    });
    return hits;
}

double Distance(const StationCatalogue::Position& a, const StationCatalogue::Position& b) {
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}
