// StationIndex: positions in space, found by what is near.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/base/PlatformExport.h"

/// A tree that halves space along one axis after the other. It holds copies of the positions; the numbers it
/// answers are their places in the list it was built from.
class GPS_PLATFORM_API StationIndex {
public:
    using Position = std::array<double, 3>;  // metres

    StationIndex() = default;
    explicit StationIndex(const std::vector<Position>& positions);

    static constexpr std::size_t NONE = static_cast<std::size_t>(-1);

    /// The nearest position that is at most `radius` metres from `at` and that `takes(place)` accepts; of
    /// equally near ones the first in the list. NONE when there is none, and for an `at` that is not finite.
    template <class Takes>
    std::size_t Nearest(const Position& at, double radius, const Takes& takes) const {
        Best best{at, radius * radius, NONE};
        if (radius >= 0 && std::isfinite(at[0] + at[1] + at[2])) Look(0, nodes_.size(), best, takes);
        return best.place;
    }

    /// All places at most `radius` metres away, in no order.
    std::vector<std::size_t> Within(const Position& at, double radius) const;

private:
    // A range of nodes is a tree: the node in its middle, and what is before and behind it along its axis.
    struct Node {
        Position position;
        std::uint32_t place;
        std::uint8_t axis;
    };
    struct Best {
        Position at;
        double squared;  // square metres
        std::size_t place;
    };

    static double Squared(const Position& a, const Position& b) {
        const double x = a[0] - b[0], y = a[1] - b[1], z = a[2] - b[2];
        return x * x + y * y + z * z;
    }

    void Build(std::size_t begin, std::size_t end);

    template <class Takes>
    void Look(std::size_t begin, std::size_t end, Best& best, const Takes& takes) const {
        while (begin < end) {
            const std::size_t middle = begin + (end - begin) / 2;
            const Node& node = nodes_[middle];
            const double squared = Squared(node.position, best.at);
            if ((squared < best.squared || (squared == best.squared && node.place < best.place)) &&
                takes(node.place)) {
                best.squared = squared;
                best.place = node.place;
            }
            const double beside = best.at[node.axis] - node.position[node.axis];
            const bool before = beside < 0;
            // The side where the position is first: what is found there may spare the other.
            before ? Look(begin, middle, best, takes) : Look(middle + 1, end, best, takes);
            if (beside * beside > best.squared) return;
            before ? (begin = middle + 1) : (end = middle);
        }
    }

    std::vector<Node> nodes_;
};
