// Field: one field of a point or a group, with the way to it.
#pragma once

#include <span>

#include "apps/gpsbook/fields/FieldValue.h"

class CGrpGps;
class CPunGps;

namespace gpsbook {

/// `set` goes through the setters of the library, which report what changes. It takes a value of the kind
/// that `get` gives, also one that could not be entered.
template <class Item>
struct Field : FieldInfo {
    FieldValue (*get)(Item& item);
    void (*set)(Item& item, const FieldValue& value);
};

using PointField = Field<CPunGps>;
using GroupField = Field<CGrpGps>;

/// All fields of a point. Those of the first kPointColumns are columns of a table, too, and have its order.
std::span<const PointField> PointFields();
inline constexpr std::size_t kPointColumns = 16;

/// All fields of a group.
std::span<const GroupField> GroupFields();

template <class Item>
std::span<const Field<Item>> FieldsOf();
template <>
inline std::span<const PointField> FieldsOf<CPunGps>() {
    return PointFields();
}
template <>
inline std::span<const GroupField> FieldsOf<CGrpGps>() {
    return GroupFields();
}

/// The field of a name; null when there is none.
template <class Item>
const Field<Item>* FindField(std::string_view name) {
    for (const Field<Item>& field : FieldsOf<Item>())
        if (field.name == name) return &field;
    return nullptr;
}

}  // namespace gpsbook
