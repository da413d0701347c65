// FieldsJson: all fields of a group or point as one JSON object.
#pragma once

#include <nlohmann/json.hpp>

#include "apps/gpsbook/fields/Field.h"

namespace gpsbook {

template <class Item>
nlohmann::ordered_json FieldsJson(Item& item) {
    nlohmann::ordered_json fields = nlohmann::ordered_json::object();
    for (const Field<Item>& field : FieldsOf<Item>()) fields[field.name] = ValueJson(field.get(item));
    return fields;
}

}  // namespace gpsbook
