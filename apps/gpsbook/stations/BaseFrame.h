// BaseFrame: the frame of a base's coordinates, by the tags of its group.
#pragma once

#include <optional>
#include <string>

#include "host/coord/Station.h"
#include "host/coord/StationCatalogue.h"

class CGrpGps;

namespace gpsbook {

/// What the tags of a group say.
struct BaseFrame {
    bool euref = false;
    bool etrf2000 = false;

    bool IsTagged() const { return euref || etrf2000; }
    bool IsTwofold() const { return euref && etrf2000; }

    /// "EUREF", "ETRF2000", "EUREF and ETRF2000"; empty without a tag.
    std::string Text() const;

    /// Whether coordinates in such a frame cannot be what the tags say. The two tags tell two realisations
    /// apart: one is not the other. A frame that is not known contradicts nothing.
    bool Contradicts(FrameKind kind) const;
};

BaseFrame FrameOf(const CGrpGps& group);

/// The base as geocentric coordinates, metres; nothing when its latitude, longitude or height is not set.
std::optional<StationCatalogue::Position> BasePosition(CGrpGps& group);

/// Whether a group or its base goes by the station's name or id, in large or small letters.
bool IsNamedAfter(const CGrpGps& group, const Station& station);

}  // namespace gpsbook
