// DerivedPositions: plane coordinates that were computed from a fix, when others change what they came from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <tuple>
#include <vector>

#include "gps/model/ChangeBits.h"
#include "host/project/CloudMessages.h"

class CCloudItem;
class CEgn;
class CGrpGps;
class CLibGps;
class ifpstream;
class ofpstream;

namespace gpsproject {

/// Change bits of what positions come from.
inline constexpr std::uint32_t kPointFix = CHG_PUN_LAT | CHG_PUN_LONG | CHG_PUN_ELEV | CHG_PUN_ALTANT;
inline constexpr std::uint32_t kBaseFix =
    CHG_GRP_BASELAT | CHG_GRP_BASELONG | CHG_GRP_BASEELEV | CHG_GRP_BASEALTANT;
inline constexpr std::uint32_t kConversion = CHG_GRP_CODEELAB | CHG_GRP_CONVCOORD;

/// Whether two texts of a conversion, as records have them, differ in what is the map library's and not the
/// group's own.
bool IsOtherMap(std::string_view conversion, std::string_view other);

/// Two people can change a fix and a conversion, or two fields of one fix, and none of them has the position
/// that belongs to both. Who gets the other one's value looks before and computes afterwards: positions that
/// were those of their fixes (within 1 mm) are so again. One that was set by hand stays, and so does one that
/// came, or was set, in between.
class DerivedPositions {
public:
    explicit DerivedPositions(CLibGps& book) : book_(book) {}

    // Before a change.
    void LookAtPoint(int g, int p);  // p is -1 for the base of the group
    void LookAtGroup(int g);         // base and points
    void LookAtAll();                // groups share the datums of the map library

    /// In the book; p is -1 for the base of the group.
    struct Place {
        int g, p;
    };

    /// After it: what was looked at gets its new position, as an edit, where that is another one. In a group
    /// without a usable conversion it stays. Nothing is remembered any more. Memory ends: nothing was done.
    std::vector<Place> Recompute();

    bool IsEmpty() const { return seen_.empty(); }
    void Clear() { seen_.clear(); }

    /// What is remembered, for a pull that goes on in another session.
    void SalvaInFile(ofpstream& out) const;
    void LeggeDaFile(ifpstream& in);

private:
    struct Plane {
        double x, y, z;  // metres: easting, northing, height
    };
    struct Fix {
        double lat, lon;    // degrees
        double h, antenna;  // metres
        bool inPlane;       // not coded to be without plane coordinates
    };
    /// Kind, id, and for an item without an id its ticket.
    using Key = std::tuple<CloudKind, std::int64_t, std::int64_t>;

    struct Seen {
        Plane plane;
        Place place;  // where it was; it may have moved
    };
    using SeenItems = std::map<Key, Seen>;

    static Plane PlaneOf(const CEgn& entity);
    Fix FixOf(int g, int p) const;
    static Plane Computed(const CGrpGps& group, const Fix& fix);
    static bool IsSame(const Plane& one, const Plane& other, double metres);
    CEgn& EntityAt(int g, int p) const;
    CCloudItem* ItemAt(int g, int p) const;
    void Look(int g, int p);
    SeenItems::iterator Find(int g, int p);
    bool RecomputeOne(int g, int p);

    CLibGps& book_;
    SeenItems seen_;
};

}  // namespace gpsproject
