// Station: a permanent GNSS station with one set of its coordinates.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "platform/coord/CTrovaNomeBaseGps.h"

/// A frame or an epoch without the remark in brackets at its end: "2008.0" of "2008.0 (national
/// realisation)". Brackets with a digit in them are no remark but tell realisations apart: "ETRF2000 (R14)".
GPS_PLATFORM_API std::string_view WithoutRemark(std::string_view text);

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

    /// What tells a set of coordinates from others: station, frame and epoch, without remarks. It looks into
    /// this object.
    using SetKey = std::tuple<std::string_view, std::string_view, std::string_view>;
    SetKey Set() const { return {id, WithoutRemark(frame), WithoutRemark(epoch)}; }

    /// The same station in the same frame at the same epoch.
    bool IsSameSet(const Station& other) const { return Set() == other.Set(); }
};

/// What is known of a frame from its name.
enum class FrameKind {
    etrf2000,  // ETRF2000, or a national frame that is a densification of it
    european,  // another realisation that moves with Europe
    global,    // a realisation of the whole earth, decimetres beside those of Europe
    unknown
};

GPS_PLATFORM_API FrameKind FrameKindOf(const std::string& frame);
