// Station: a permanent GNSS station with one set of its coordinates.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "platform/coord/CTrovaNomeBaseGps.h"

/// A station in one frame at one epoch. A station with coordinates in several frames is several of these, of
/// one id.
struct Station {
    std::string id;                         // short, as in observation files: "UDIN"
    std::string name;                       // "Udine"; may be empty
    std::string country, region, province;  // as they were given
    CTrovaNomeBaseGps::enumProvincia provincia = CTrovaNomeBaseGps::provTutte;  // provTutte: not known
    std::array<double, 3> position{};                                           // metres, geocentric X, Y, Z
    std::string frame;                                                          // "ETRF2000"
    std::string epoch;                                                          // "2008.0"; may be empty
    std::optional<std::array<double, 3>> velocity;                              // metres a year, X, Y, Z
    std::string source;  // where the figures were printed

    /// What a base there is called: the name, without one the id.
    const std::string& Called() const { return name.empty() ? id : name; }

    bool operator==(const Station&) const = default;

    /// The same station in the same frame at the same epoch.
    bool IsSameSet(const Station& other) const {
        return id == other.id && frame == other.frame && epoch == other.epoch;
    }
};

/// What is known of a frame from its name.
enum class FrameKind {
    etrf2000,  // ETRF2000, or a national frame that is a densification of it
    european,  // another realisation that moves with Europe
    global,    // a realisation of the whole earth, decimetres beside those of Europe
    unknown
};

GPS_PLATFORM_API FrameKind FrameKindOf(const std::string& frame);
