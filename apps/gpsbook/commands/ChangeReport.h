// ChangeReport: which fields a command changed, for people and for machines.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/fields/Assignment.h"

namespace gpsbook {

/// A group or point with what changed in it.
struct ItemChanges {
    Place place;
    std::string text;  // the place in words, before the change
    std::vector<FieldChange> changes;
};

/// A line a field, "Quay/P1: antenna 2.0000 metres -> 1.8000 metres"; of very many items the first ones.
std::string ChangesText(const std::vector<ItemChanges>& items);

/// An array of objects: group, point, name, and fields with "before" and "after".
nlohmann::ordered_json ChangesJson(const std::vector<ItemChanges>& items);

}  // namespace gpsbook
