#include "host/project/DerivedPositions.h"

#include <algorithm>
#include <cmath>

#include "gps/model/CLibGps.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace gpsproject {

namespace {

constexpr double kOfFix = 0.001;  // metres
// The origin of a local system loses a millionth of a metre on its way: that moves no point.
constexpr double kNoise = 1e-5;  // metres

/// Of the fields of a conversion those about the map library.
std::string_view MapPart(std::string_view conversion) {
    constexpr int kBefore = 25, kCount = 23;
    const auto skip = [&](std::size_t at, int fields) {
        for (; fields > 0 && at < conversion.size(); --fields)
            at = std::min(conversion.find(';', at), conversion.size() - 1) + 1;
        return at;
    };
    const std::size_t begin = skip(0, kBefore);
    return conversion.substr(begin, skip(begin, kCount) - begin);
}

}  // namespace

bool IsOtherMap(std::string_view conversion, std::string_view other) {
    return MapPart(conversion) != MapPart(other);
}

CEgn& DerivedPositions::EntityAt(int g, int p) const {
    if (p < 0) return *book_.GetGrpAt(g);
    return *book_.GetPunAt(g, p);
}

CCloudItem* DerivedPositions::ItemAt(int g, int p) const {
    if (p < 0) return CGrpGps::CloudItemOf(book_.GetGrpAt(g));
    return CPunGps::CloudItemOf(book_.GetPunAt(g, p));
}

DerivedPositions::Plane DerivedPositions::PlaneOf(const CEgn& entity) {
    return {entity.GetCoordX(), entity.GetCoordY(), entity.GetCoordZ()};
}

DerivedPositions::Fix DerivedPositions::FixOf(int g, int p) const {
    const CGrpGps& group = *book_.GetGrpAt(g);
    if (p < 0)
        return {group.GetBaseLat(), group.GetBaseLong(), group.GetBaseElev(), group.GetBaseAltAnt(),
                !group.IsCodedNE()};
    const CPunGps& point = *book_.GetPunAt(g, p);
    return {point.GetLat(), point.GetLong(), point.GetElev(), point.GetAltAnt(),
            !group.IsCodedNE() && !point.IsCodedNE()};
}

DerivedPositions::Plane DerivedPositions::Computed(const CGrpGps& group, const Fix& fix) {
    Plane plane{};
    if (group.IsCdElabValid() && IsCoordValid(fix.lat) && IsCoordValid(fix.lon) && IsCoordValid(fix.h) &&
        IsCoordValid(fix.antenna) &&
        group.GetConvCoord()->GrafGpsToPlanAtt(fix.lat, fix.lon, fix.h, fix.antenna, plane.x, plane.y,
                                               plane.z))
        return plane;
    return {GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET};
}

bool DerivedPositions::IsSame(const Plane& one, const Plane& other, double metres) {
    const auto same = [metres](double a, double b) {
        return IsCoordValid(a) && IsCoordValid(b) ? std::abs(a - b) <= metres
                                                  : IsCoordValid(a) == IsCoordValid(b);
    };
    return same(one.x, other.x) && same(one.y, other.y) && same(one.z, other.z);
}

DerivedPositions::SeenItems::iterator DerivedPositions::Find(int g, int p) {
    if (!book_.GetGrpAt(g) || (p >= 0 && !book_.GetPunAt(g, p))) return seen_.end();
    const CCloudItem& item = *ItemAt(g, p);
    const auto kind = p < 0 ? CloudKind::group : CloudKind::point;
    auto found = item.GetCloudId() < 1 ? seen_.end() : seen_.find(Key(kind, item.GetCloudId(), 0));
    // It may have got its id since then.
    if (found == seen_.end() && item.GetTicket() > 0) found = seen_.find(Key(kind, 0, item.GetTicket()));
    return found;
}

// Of the same item with the same position the first look counts: the conversion may have changed since.
void DerivedPositions::Look(int g, int p) {
    const Plane now = PlaneOf(EntityAt(g, p));
    if (const auto found = Find(g, p); found != seen_.end()) {
        if (IsSame(found->second.plane, now, 0)) return;
        seen_.erase(found);
    }
    const Fix fix = FixOf(g, p);
    if (!fix.inPlane || !IsSame(Computed(*book_.GetGrpAt(g), fix), now, kOfFix)) return;
    const CCloudItem& item = *ItemAt(g, p);
    const auto kind = p < 0 ? CloudKind::group : CloudKind::point;
    const bool isNew = item.GetCloudId() < 1;
    seen_[Key(kind, isNew ? 0 : item.GetCloudId(), isNew ? item.GetTicket() : 0)] = {now, {g, p}};
}

void DerivedPositions::LookAtPoint(int g, int p) { Look(g, p); }

void DerivedPositions::LookAtGroup(int g) {
    for (int p = -1; p < book_.GetPunArSize(g); ++p) Look(g, p);
}

void DerivedPositions::LookAtAll() {
    for (int g = 0; g < book_.GetGrpArSize(); ++g) LookAtGroup(g);
}

std::vector<DerivedPositions::Place> DerivedPositions::Recompute() {
    std::vector<Place> places;
    places.reserve(seen_.size());
    for (auto one = seen_.begin(); one != seen_.end(); ++one)
        if (Find(one->second.place.g, one->second.place.p) == one) places.push_back(one->second.place);
    // What is not where it was may be anywhere, or gone.
    if (places.size() < seen_.size()) {
        places.clear();
        for (int g = 0; g < book_.GetGrpArSize(); ++g)
            for (int p = -1; p < book_.GetPunArSize(g); ++p)
                if (Find(g, p) != seen_.end()) places.push_back({g, p});
    }
    std::erase_if(places, [&](const Place& at) { return !RecomputeOne(at.g, at.p); });
    seen_.clear();
    return places;
}

bool DerivedPositions::RecomputeOne(int g, int p) {
    CEgn& entity = EntityAt(g, p);
    const Plane before = PlaneOf(entity);
    if (!IsSame(before, Find(g, p)->second.plane, 0)) return false;
    const CGrpGps& group = *book_.GetGrpAt(g);
    const Fix fix = FixOf(g, p);
    if (!fix.inPlane || !group.IsCdElabValid()) return false;
    const Plane now = Computed(group, fix);
    if (IsSame(before, now, kNoise)) return false;
    entity.SetCoord(now.x, now.y, now.z);
    entity.CalcolaValiditaXYZ();
    return true;
}

void DerivedPositions::SalvaInFile(ofpstream& out) const {
    out.WriteInt64(static_cast<std::int64_t>(seen_.size()));
    for (const auto& [key, seen] : seen_) {
        const auto& [kind, id, ticket] = key;
        const Plane& plane = seen.plane;
        out.WriteUChar(static_cast<unsigned char>(kind));
        out.WriteInt64(id);
        out.WriteInt64(ticket);
        out.WriteDouble(plane.x);
        out.WriteDouble(plane.y);
        out.WriteDouble(plane.z);
    }
}

void DerivedPositions::LeggeDaFile(ifpstream& in) {
    seen_.clear();
    const std::int64_t count = in.ReadInt64();
    for (std::int64_t i = 0; i < count && in.IsOk(); ++i) {
        const auto kind = static_cast<CloudKind>(in.ReadUChar());
        const std::int64_t id = in.ReadInt64();
        const std::int64_t ticket = in.ReadInt64();
        Plane plane{};
        plane.x = in.ReadDouble();
        plane.y = in.ReadDouble();
        plane.z = in.ReadDouble();
        if (in.IsOk()) seen_[Key(kind, id, ticket)] = {plane, {-1, -1}};
    }
}

}  // namespace gpsproject
