#include "host/project/NotHeld.h"

#include <functional>

#include "gps/options/COpzPostProc.h"
#include "gps/persist/StreamVersions.h"
#include "platform/base/GpsValues.h"
#include "platform/entity/CCloudManager.h"

namespace gpsproject {

namespace {

/// One kind of value that came with a version: which groups or points have one.
struct GroupValue {
    short from;
    const char* what;
    std::function<bool(const CGrpGps&)> isSet;
};
struct PointValue {
    short from;
    const char* what;
    std::function<bool(CPunGps&)> isSet;
};

bool HasGrafBase(CPunGps& point) {
    double lat, lon, h;
    point.GetGrafBase(lat, lon, h);
    return lat != GPS_VAL_UNSET || lon != GPS_VAL_UNSET || h != GPS_VAL_UNSET;
}

const GroupValue kGroupValues[] = {
    {kVerTipiGruppo, "factors of groups",
     [](const CGrpGps& g) { return g.GetGrpFactorA() != 1.0 || g.GetGrpFactorB() != 1.0; }},
    {kVerTipiGruppo, "survey types of groups", [](const CGrpGps& g) { return g.GetTipoRilievo() != 0; }},
    {kVerTipiGruppo, "receiver types of groups", [](const CGrpGps& g) { return g.GetTipoRicevitore() != 0; }},
    {kVerDisegni, "drawings of groups", [](const CGrpGps& g) { return g.GetTargetDrawing() != 0; }},
    {kVerRiserve, "reserved values of groups", [](const CGrpGps& g) { return g.GetGrpRis32() != 0; }},
    // A group that is read without one gets that of this device.
    {kVerDispositivo, "creator devices of groups",
     [](const CGrpGps& g) { return !g.IsCloudMine(CCloudManager::GetInstance()->GetDevId()); }},
};

const PointValue kPointValues[] = {
    {kVerGrafBase, "base positions of points", HasGrafBase},
    {kVerSecondaPunDup, "marks of secondary duplicates", [](CPunGps& p) { return p.IsSecondaryPtDup(); }},
    {kVerRiserve, "reserved values of points", [](CPunGps& p) { return p.GetPunRis32() != 0; }},
};

class Finder {
public:
    Finder(Project& project, short version) : book_(project.GetBook()), version_(version) {}

    std::vector<std::string> Find() {
        for (const GroupValue& value : kGroupValues) {
            if (version_ < value.from) InGroups(value);
        }
        for (const PointValue& value : kPointValues) {
            if (version_ < value.from) InPoints(value);
        }
        if (version_ < kVerDisegni && book_.GetTargetDrawing() != 0)
            Say("drawing of the field book", kVerDisegni, "");
        if (book_.HasOpzPostProc()) InPostProc(*book_.GetOpzPostProc());
        return std::move(lines_);
    }

private:
    void Say(const std::string& what, short from, const std::string& where) {
        lines_.push_back(what + " (from version " + std::to_string(from) + ")" + where);
    }
    void Say(const std::string& what, short from, std::int64_t count, const std::string& first) {
        if (count > 0) Say(what, from, ": " + std::to_string(count) + ", the first in " + first);
    }

    void InGroups(const GroupValue& value) {
        std::int64_t count = 0;
        std::string first;
        for (int g = 0; g < book_.GetGrpArSize(); ++g) {
            if (value.isSet(*book_.GetGrpAt(g)) && count++ == 0) first = "group " + std::to_string(g);
        }
        Say(value.what, value.from, count, first);
    }

    void InPoints(const PointValue& value) {
        std::int64_t count = 0;
        std::string first;
        for (int g = 0; g < book_.GetGrpArSize(); ++g) {
            for (int p = 0; p < book_.GetPunArSize(g); ++p) {
                if (value.isSet(*book_.GetPunAt(g, p)) && count++ == 0)
                    first = "group " + std::to_string(g) + ", point " + std::to_string(p);
            }
        }
        Say(value.what, value.from, count, first);
    }

    void InPostProc(const COpzPostProc& options) {
        if (version_ < kVerOpzPostProc) return Say("post-processing options", kVerOpzPostProc, "");
        InFiles(options, 1003, "names, numbers and kinds of values of observation files",
                [](const auto& file) {
                    return file.nIdx3 != 1 || !file.sText2.empty() ||
                           (file.bAltValue && !IsCoordValid(file.dValue));
                });
        InFiles(options, 1300, "marks of observation files",
                [](const auto& file) { return !file.bFlag3 || file.bFlag4; });
    }

    template <class IsSet>
    void InFiles(const COpzPostProc& options, short from, const char* what, IsSet isSet) {
        if (version_ >= from) return;
        std::int64_t count = 0;
        std::string first;
        for (const auto* list : {&options.vecPtBaseLineDett, &options.vecPtBaseLineBase}) {
            for (const auto& file : *list) {
                if (isSet(file) && count++ == 0) first = file.sFile;
            }
        }
        Say(what, from, count, first);
    }

    CLibGps& book_;
    short version_;
    std::vector<std::string> lines_;
};

}  // namespace

std::vector<std::string> NotHeldBy(Project& project, short version) {
    return Finder(project, version).Find();
}

}  // namespace gpsproject
