#include "apps/gpsbook/stations/StationLint.h"

#include <algorithm>

#include "apps/gpsbook/stations/BaseFrame.h"
#include "apps/gpsbook/stations/StationText.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Hits = std::vector<StationCatalogue::Hit>;

void LookAtName(const CGrpGps& group, int g, const Hits& near, std::vector<Finding>& all) {
    const auto named = [&](const auto& hit) { return IsNamedAfter(group, *hit.station); };
    if (near.empty() || std::any_of(near.begin(), near.end(), named)) return;
    const Station& station = *near.front().station;
    all.push_back({"base-name",
                   g,
                   0,
                   {},
                   DistanceText(near.front().distance) + " from the station " + station.Called() +
                       (station.name.empty() ? "" : " (" + station.id + ")") +
                       ", under another name; gpsbook base names it"});
}

void LookAtFrame(const CGrpGps& group, int g, const Hits& near, std::vector<Finding>& all) {
    const BaseFrame frame = FrameOf(group);
    if (frame.IsTwofold())
        all.push_back(
            {"base-frame", g, 0, {}, "tagged EUREF and ETRF2000; gpsbook base clears and sets tags"});
    if (!frame.IsTagged() || frame.IsTwofold()) return;
    const Station* other = nullptr;
    for (const auto& hit : near) {
        if (hit.distance > kSamePosition) break;
        if (!frame.Contradicts(FrameKindOf(hit.station->frame))) return;
        if (!other) other = hit.station;
    }
    if (other)
        all.push_back({"base-frame",
                       g,
                       0,
                       {},
                       "tagged " + frame.Text() + ", with the coordinates of " + other->Called() + " in " +
                           other->frame + "; gpsbook base sets another tag, or takes other coordinates"});
}

}  // namespace

std::vector<Finding> LintBases(const CLibGps& book, const StationsInUse& stations) {
    std::vector<Finding> all;
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        CGrpGps& group = *book.GetGrpAt(g);
        Hits near;
        if (const auto at = BasePosition(group))
            near = stations.set.catalogue.Near(
                *at, {std::max(stations.radius, kSamePosition), CTrovaNomeBaseGps::provTutte, {}});
        LookAtFrame(group, g, near, all);
        std::erase_if(near, [&](const auto& hit) { return hit.distance > stations.radius; });
        LookAtName(group, g, near, all);
    }
    return all;
}

}  // namespace gpsbook
