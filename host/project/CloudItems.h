// CloudItems: what groups and points of a shared project have in common: names, fields, and where they stand.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "gps/cloud/FieldLayout.h"
#include "host/project/CloudMessages.h"

class CCloudItem;
class CGrpGps;
class CLibGps;

namespace gpsproject {

struct CloudTables;

/// In the order of their bits.
inline std::span<const FieldGroup> FieldGroupsOf(CloudKind kind) {
    if (kind == CloudKind::group) return GRP_FIELDS;
    return PUN_FIELDS;
}

/// The fields of one change bit; null: it stands for none.
const FieldGroup* FieldGroupOf(CloudKind kind, std::uint32_t bit);

/// Place of the group name among the fields of a group's reply; in an add record it is one less.
static_assert(GRP_FIELDS[4].bit == CHG_GRP_NOMEGRP);
inline constexpr int kGroupNameField = GRP_FIELDS[4].first;

/// What stands between the separators, as long as the text is there.
std::vector<std::string_view> SplitFields(std::string_view fields);

/// What people call a group: its group name; without one the name of its entity.
inline std::string_view GroupName(std::string_view groupName, std::string_view entityName) {
    return groupName.empty() ? entityName : groupName;
}
std::string_view GroupName(const CGrpGps& group);

struct ItemPlace {
    int g = -1, p = -1;  // p is -1 for a group
};

/// None: it is not in the book, or null. Requires: an item of the tables of that book.
std::optional<ItemPlace> PlaceOf(const CLibGps& book, CloudKind kind, CCloudItem* item);

/// "Quay/P1"; empty when it is not in the book.
std::string ItemName(const CLibGps& book, CloudKind kind, CCloudItem* item);

/// The item of an id; null: it is not in the book.
CCloudItem* FindItem(const CloudTables& tables, CloudKind kind, std::int64_t id);

}  // namespace gpsproject
