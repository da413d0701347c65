#include "apps/gpsbook/book/KnownFixes.h"

#include <functional>

#include "gps/model/CLibGps.h"

namespace gpsbook {

Fix FixOf(const CPunGps& point) {
    return {(point.GetYear() * 100 + point.GetMonth()) * 100 + point.GetDay(), point.GetTod(), point.GetLat(),
            point.GetLong(), point.GetElev()};
}

std::size_t KnownFixes::Hash::operator()(const Fix& fix) const {
    std::size_t hash = std::hash<std::int64_t>{}(fix.day * 100'000'000 + fix.todMs);
    for (const double value : {fix.lat, fix.lon, fix.h})
        hash = (hash ^ std::hash<double>{}(value)) * 0x9E3779B97F4A7C15ULL;
    return hash ^ (hash >> 32);  // the low bits alone choose where it is kept
}

void KnownFixes::Add(const CLibGps& book, int group, int fromPoint) {
    for (int p = fromPoint; p < book.GetPunArSize(group); ++p) {
        const CPunGps& point = *book.GetPunAt(group, p);
        const Fix fix = FixOf(point);
        if (fix.day != 0 && IsCoordValid(fix.lat) && IsCoordValid(fix.lon) && IsCoordValid(fix.h))
            groups_.try_emplace(fix, group);
    }
}

int KnownFixes::GroupOf(const Fix& fix) const {
    const auto found = groups_.find(fix);
    return found == groups_.end() ? -1 : found->second;
}

}  // namespace gpsbook
