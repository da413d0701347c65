#include "host/project/HeldBack.h"

#include <set>

#include "gps/model/CLibGps.h"
#include "host/base/Utf8.h"
#include "platform/coord/CLibMap.h"

namespace gpsproject {

namespace {

std::string Named(const char* what, std::string_view text) {
    const std::string why = WhyNotCarried(text);
    return why.empty() ? why : std::string(what) + " " + why;
}

std::string WhyHeld(CConvCoord& conversion) {
    if (conversion.GetConvLocal()->GetProiezPla().IsDefinizioneText() ||
        conversion.GetConvAltez()->GetProiezPla().IsDefinizioneText())
        return "the conversion's projection is defined by a text, of which a record has no place; give it by "
               "its EPSG code";
    std::string why = Named("the name of the conversion's datum", conversion.GetConvDtBaseGps()->GetNome());
    CLibMap* map = conversion.GetLibMap();
    if (!why.empty() || !map) return why;
    const CDatumConv* selected =
        map->GetDatAt(conversion.GetImp(CConvCoord::impDatSel1), conversion.GetImp(CConvCoord::impDatSel2),
                      conversion.GetImp(CConvCoord::impDatIndice));
    if (selected) why = Named("the name of the project's datum", selected->GetNome());
    if (why.empty()) why = Named("the name of the map library's datum", map->GetConvDtBaseGps()->GetNome());
    return why;
}

std::string WhyHeld(CGrpGps& group, std::uint32_t mask) {
    std::string why;
    if (mask & CHG_NOME) why = Named("the name", group.GetNome());
    if (why.empty() && mask & CHG_SECSCRI) why = Named("the code text", group.GetSecScri());
    if (why.empty() && mask & CHG_GRP_NOMEGRP) why = Named("the group name", group.GetNomeGrp());
    if (why.empty() && mask & CHG_GRP_CONVCOORD) why = WhyHeld(*group.GetConvCoord());
    return why;
}

std::string WhyHeld(const CPunGps& point, std::uint32_t mask) {
    std::string why;
    if (mask & CHG_NOME) why = Named("the name", point.GetNome());
    if (why.empty() && mask & CHG_SECSCRI) why = Named("the code text", point.GetSecScri());
    return why;
}

}  // namespace

std::string WhyNotCarried(std::string_view text) {
    for (const char c : text) {
        if (c == ';') return "holds a ';'";
        if (c == '\n' || c == '\r') return "holds a line break";
        if (c == '\0') return "holds a zero byte";
    }
    return IsUtf8(text) ? "" : "is not UTF-8";
}

std::vector<HeldItem> FindHeld(CLibGps& book, CloudTables& tables) {
    // What is waiting is looked through, not the book: mostly nothing of it is held.
    std::set<const CCloudItem*> held;
    constexpr std::uint32_t all = ~std::uint32_t{0};
    const auto look = [&](CCloudItem* item, bool isGroup, std::uint32_t mask) {
        const std::string why = isGroup ? WhyHeld(static_cast<CGrpGps&>(*item), mask)
                                        : WhyHeld(static_cast<const CPunGps&>(*item), mask);
        if (!why.empty()) held.insert(item);
    };
    for (CCloudItem* item : tables.base.GetAdded()) look(item, true, all);
    for (CCloudItem* item : tables.base.GetChanged()) look(item, true, item->GetCloudFlag());
    for (CCloudItem* item : tables.points.GetAdded()) look(item, false, all);
    for (CCloudItem* item : tables.points.GetChanged()) look(item, false, item->GetCloudFlag());

    std::vector<HeldItem> found;
    if (held.empty()) return found;
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        CGrpGps& group = *book.GetGrpAt(g);
        const bool isNew = group.GetCloudId() < 1;
        const bool groupHeld = held.contains(CGrpGps::CloudItemOf(&group));
        if (groupHeld)
            found.push_back({CGrpGps::CloudItemOf(&group), true, g, -1,
                             WhyHeld(group, isNew ? all : group.GetCloudFlag())});
        // With others they would stand in another plane system.
        const bool conversionHeld = groupHeld && !isNew && (group.GetCloudFlag() & CHG_GRP_CONVCOORD);
        for (int p = 0; p < book.GetPunArSize(g); ++p) {
            CPunGps& point = *book.GetPunAt(g, p);
            CCloudItem* item = CPunGps::CloudItemOf(&point);
            const bool hasPosition = point.GetCloudId() < 1 || (point.GetCloudFlag() & CHG_COORD);
            if (held.contains(item))
                found.push_back(
                    {item, false, g, p, WhyHeld(point, point.GetCloudId() < 1 ? all : point.GetCloudFlag())});
            else if (groupHeld && isNew && point.GetCloudId() < 1)
                found.push_back({item, false, g, p, "its group is held back"});
            else if (conversionHeld && hasPosition)
                found.push_back({item, false, g, p,
                                 "its group's conversion is held back, and its position belongs to that"});
        }
    }
    return found;
}

Holding::Holding(CloudTables& tables, const std::vector<HeldItem>& held) : tables_(tables) {
    std::vector<CCloudItem*> groups, points;
    for (const HeldItem& one : held) (one.isGroup ? groups : points).push_back(one.item);
    try {
        tables_.base.HoldBack(groups);
        tables_.points.HoldBack(points);
    } catch (...) {
        tables_.base.ReleaseHeld();
        throw;
    }
}

Holding::~Holding() {
    tables_.base.ReleaseHeld();
    tables_.points.ReleaseHeld();
}

}  // namespace gpsproject
