#include "tests/gps/coords/ScriptedMotore.h"

#include <stdexcept>
#include <utility>

namespace gpstest {

bool ScriptedMotore::Answer(Call call, double& a, double& b, double& c) {
    calls.push_back(std::move(call));
    if (onCall) onCall(calls.back());
    if (throws) throw std::runtime_error("scripted");
    a = answer[0];
    b = answer[1];
    c = answer[2];
    return result;
}

bool ScriptedMotore::GrafBaseToGrafWgs(double lat, double lon, double h, double& a, double& b, double& c) {
    return Answer({"GrafBaseToGrafWgs", {lat, lon, h}}, a, b, c);
}

bool ScriptedMotore::GeocBaseToGeocWgs(double x, double y, double z, double& a, double& b, double& c) {
    return Answer({"GeocBaseToGeocWgs", {x, y, z}}, a, b, c);
}

bool ScriptedMotore::GrafGpsToPlanAtt(double lat, double lon, double h, double alt, double& a, double& b,
                                      double& c) {
    return Answer({"GrafGpsToPlanAtt", {lat, lon, h, alt}}, a, b, c);
}

bool ScriptedMotore::PlanAttToGrafGps(double e, double n, double h, double alt, double& a, double& b,
                                      double& c) {
    return Answer({"PlanAttToGrafGps", {e, n, h, alt}}, a, b, c);
}

ReportLog::ReportLog() {
    CCloudItem::SetObserver([this](const CCloudItem& item, std::uint32_t flag) {
        entries.push_back({&item, flag});
    });
}

ReportLog::~ReportLog() { CCloudItem::SetObserver({}); }

std::vector<std::uint32_t> ReportLog::Of(const CCloudItem* item) const {
    std::vector<std::uint32_t> flags;
    for (const Entry& e : entries)
        if (e.item == item) flags.push_back(e.flag);
    return flags;
}

Triple Stored(const CPunGps& point) { return {point.GetLat(), point.GetLong(), point.GetElev()}; }
Triple Stored(const CGrpGps& group) { return {group.GetBaseLat(), group.GetBaseLong(), group.GetBaseElev()}; }
Triple Plane(const CEgn& entity) { return {entity.GetCoordX(), entity.GetCoordY(), entity.GetCoordZ()}; }

void SetFix(CPunGps& point, double lat, double lon, double h, double altAnt) {
    point.SetLat(lat);
    point.SetLong(lon);
    point.SetElev(h);
    point.SetAltAnt(altAnt);
}

void SetBase(CGrpGps& group, double lat, double lon, double h, double altAnt) {
    group.SetBaseLat(lat);
    group.SetBaseLong(lon);
    group.SetBaseElev(h);
    group.SetBaseAltAnt(altAnt);
}

}  // namespace gpstest
