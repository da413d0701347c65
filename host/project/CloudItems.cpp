#include "host/project/CloudItems.h"

#include "gps/model/CLibGps.h"
#include "host/project/CloudTables.h"

namespace gpsproject {

const FieldGroup* FieldGroupOf(CloudKind kind, std::uint32_t bit) {
    for (const FieldGroup& fields : FieldGroupsOf(kind))
        if (fields.bit == bit) return &fields;
    return nullptr;
}

std::vector<std::string_view> SplitFields(std::string_view fields) {
    std::vector<std::string_view> texts;
    for (;;) {
        const std::size_t end = fields.find(';');
        texts.push_back(fields.substr(0, end));
        if (end == std::string_view::npos) return texts;
        fields.remove_prefix(end + 1);
    }
}

std::string_view GroupName(const CGrpGps& group) { return GroupName(group.GetNomeGrp(), group.GetNome()); }

std::optional<ItemPlace> PlaceOf(const CLibGps& book, CloudKind kind, CCloudItem* item) {
    ItemPlace place;
    const bool found = kind == CloudKind::group
                           ? book.GetIndiciDiGrp(static_cast<CGrpGps*>(item), place.g)
                           : book.GetIndiciDiPun(static_cast<CPunGps*>(item), place.g, place.p);
    return found ? std::optional(place) : std::nullopt;
}

std::string ItemName(const CLibGps& book, CloudKind kind, CCloudItem* item) {
    const auto place = PlaceOf(book, kind, item);
    if (!place) return {};
    std::string name(GroupName(*book.GetGrpAt(place->g)));
    if (kind == CloudKind::point) name += '/' + book.GetPunAt(place->g, place->p)->GetNome();
    return name;
}

CCloudItem* FindItem(const CloudTables& tables, CloudKind kind, std::int64_t id) {
    CCloudItem* item = nullptr;
    if (kind == CloudKind::group)
        tables.base.FindItem(id, item);
    else
        tables.points.FindItem(id, item);
    return item;
}

}  // namespace gpsproject
