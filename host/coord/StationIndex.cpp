#include "host/coord/StationIndex.h"

#include <algorithm>

StationIndex::StationIndex(const std::vector<Position>& positions) {
    nodes_.reserve(positions.size());
    for (const Position& position : positions)
        nodes_.push_back({position, static_cast<std::uint32_t>(nodes_.size()), 0});
    Build(0, nodes_.size());
}

void StationIndex::Build(std::size_t begin, std::size_t end) {
    if (begin >= end) return;
    const auto first = nodes_.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto last = nodes_.begin() + static_cast<std::ptrdiff_t>(end);
    std::uint8_t axis = 0;
    double widest = -1;
    for (std::uint8_t k = 0; k < 3; ++k) {
        const auto along = [k](const Node& a, const Node& b) { return a.position[k] < b.position[k]; };
        const auto [low, high] = std::minmax_element(first, last, along);
        const double width = high->position[k] - low->position[k];
        if (width > widest) {
            widest = width;
            axis = k;
        }
    }
    const std::size_t middle = begin + (end - begin) / 2;
    std::nth_element(first, nodes_.begin() + static_cast<std::ptrdiff_t>(middle), last,
                     [axis](const Node& a, const Node& b) { return a.position[axis] < b.position[axis]; });
    nodes_[middle].axis = axis;
    Build(begin, middle);
    Build(middle + 1, end);
}

std::vector<std::size_t> StationIndex::Within(const Position& at, double radius) const {
    std::vector<std::size_t> places;
    // Nothing is ever taken, so that nothing near is spared.
    Nearest(at, radius, [&](std::size_t place) {
        places.push_back(place);
        return false;
    });
    return places;
}
