#include "apps/gpsbook/book/GroupFiller.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "apps/gpsbook/book/KnownFixes.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

unsigned char Count(int n) { return static_cast<unsigned char>(std::clamp(n, 0, 255)); }

}  // namespace

GroupFiller::GroupFiller(CLibGps& book, int group, const FillOptions& fill, const EpochFilter& filter,
                         long& nextNumber, LogReport& report)
    : book_(book), group_(group), fill_(fill), filter_(filter), nextNumber_(nextNumber), report_(report) {}

void GroupFiller::Accept(const Epoch& epoch) {
    ++report_.epochs;
    const Verdict verdict = filter_.Judge(epoch);
    if (verdict != Verdict::take) {
        ++report_.filtered[static_cast<std::size_t>(verdict)];
        if (watcher_) watcher_(epoch.line, VerdictText(verdict), {});
        return;
    }
    if (fill_.known && LeavesOut(epoch)) return;
    CPunGps& point = *book_.AddPun(group_, false);
    FillPoint(point, epoch);
    if (header_ && header_->hasBase) {
        FillBase(point, *header_);
        if (!first_.hasBase) first_ = *header_;
    }
    ++report_.points;
    ++report_.byQuality[epoch.quality];
}

double GroupFiller::HeightOf(const Epoch& e) const {
    return fill_.heights == HeightsOf::marker ? e.height + fill_.antenna : e.height;
}

bool GroupFiller::LeavesOut(const Epoch& e) {
    const int group =
        fill_.known->GroupOf({(e.year * 100 + e.month) * 100 + e.day, e.todMs, e.lat, e.lon, HeightOf(e)});
    if (group < 0) return false;
    ++report_.alreadyIn[group];
    if (!fill_.skipKnown) return false;
    ++report_.filtered[static_cast<std::size_t>(Verdict::alreadyThere)];
    if (watcher_) watcher_(e.line, VerdictText(Verdict::alreadyThere), {});
    return true;
}

void GroupFiller::FillPoint(CPunGps& point, const Epoch& e) {
    name_.clear();
    fmt::format_to(std::back_inserter(name_), "{}{}", fill_.prefix, nextNumber_++);
    point.SetNome(name_);
    if (!fill_.code.empty()) point.SetCode(fill_.code);
    point.SetYear(static_cast<unsigned short>(e.year));
    point.SetMonth(static_cast<unsigned char>(e.month));
    point.SetDay(static_cast<unsigned char>(e.day));
    point.SetTod(e.todMs);
    point.SetLat(e.lat);
    point.SetLong(e.lon);
    point.SetElev(HeightOf(e));
    point.SetAltAnt(fill_.antenna);
    point.SetQua(e.quality);
    point.SetNuGpsUsed(Count(e.satGps));
    point.SetNuGloUsed(Count(e.satGlonass));
    point.SetPdop(e.pdop);
    point.SetHposRms(e.hrms);
    point.SetVposRms(e.vrms);
    if (!e.hasCov) return;
    point.SetPosCov_xx(static_cast<float>(e.cov[0]));
    point.SetPosCov_yy(static_cast<float>(e.cov[1]));
    point.SetPosCov_zz(static_cast<float>(e.cov[2]));
    point.SetPosCov_xy(static_cast<float>(e.cov[3]));
    point.SetPosCov_xz(static_cast<float>(e.cov[4]));
    point.SetPosCov_yz(static_cast<float>(e.cov[5]));
}

void GroupFiller::Reject(Reason reason, std::int64_t line, std::string_view detail) {
    ++report_.epochs;
    report_.rejected[static_cast<std::size_t>(reason)].Add(line);
    if (watcher_) watcher_(line, ReasonText(reason), detail);
}

void GroupFiller::Ignore(Reason reason, std::int64_t line, std::string_view detail) {
    report_.ignored[static_cast<std::size_t>(reason)].Add(line);
    if (watcher_) watcher_(line, ReasonText(reason), detail);
}

void GroupFiller::FillBase(CPunGps& point, const LogHeader& header) const {
    // The base stands over its own mark: an antenna offset that the log does not give is taken as none.
    const double antenna = IsCoordValid(header.baseAntenna) ? header.baseAntenna : 0;
    const bool marker = fill_.heights == HeightsOf::marker;
    point.SetGrafBase(header.baseLat, header.baseLon,
                      marker ? header.baseHeight + antenna : header.baseHeight);
}

void GroupFiller::FillGroup(const LogHeader& header) {
    report_.header = first_.hasBase ? first_ : header;
    report_.header.format = header.format;
    CGrpGps& group = *book_.GetGrpAt(group_);
    // A group that was there before keeps its date and its base; the points have theirs from the log.
    if (const CPunGps* first = book_.GetPunAt(group_, 0); first && group.GetData().empty())
        group.SetData(fmt::format("{:04}-{:02}-{:02}", first->GetYear(), first->GetMonth(), first->GetDay()));
    const LogHeader& base = report_.header;
    if (!base.hasBase) return;
    CPunGps atBase(nullptr, false, nullptr);  // the base's phase centre, by the rule for points
    FillBase(atBase, base);
    double lat = 0, lon = 0, h = 0;
    atBase.GetGrafBase(lat, lon, h);
    if (!group.AreBaseCoordValid()) {
        group.SetBaseLat(lat);
        group.SetBaseLong(lon);
        group.SetBaseElev(h);
        group.SetBaseAltAnt(IsCoordValid(base.baseAntenna) ? base.baseAntenna : 0);
    }
    if (header_) return;  // every point got its own base when it was met
    for (int p = 0; p < book_.GetPunArSize(group_); ++p) FillBase(*book_.GetPunAt(group_, p), base);
}

}  // namespace gpsbook
