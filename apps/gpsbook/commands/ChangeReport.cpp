#include "apps/gpsbook/commands/ChangeReport.h"

#include <fmt/format.h>

#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/commands/TextTable.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostItems = 20;

// A text in quotes, so that an empty one is seen.
std::string Shown(const FieldChange& change, const FieldValue& value) {
    if (change.field->kind == FieldKind::text) return '"' + Printable(ValueText(*change.field, value)) + '"';
    return ValueWithUnit(*change.field, value);
}

}  // namespace

std::string ChangesText(const std::vector<ItemChanges>& items) {
    std::string out;
    const auto add = std::back_inserter(out);
    for (std::size_t i = 0; i < items.size() && i < kMostItems; ++i)
        for (const FieldChange& change : items[i].changes)
            fmt::format_to(add, "{}: {} {} -> {}\n", Printable(items[i].text), change.field->name,
                           Shown(change, change.before), Shown(change, change.after));
    if (items.size() > kMostItems) fmt::format_to(add, "... and {} more\n", items.size() - kMostItems);
    return out;
}

Json ChangesJson(const std::vector<ItemChanges>& items) {
    Json all = Json::array();
    for (const ItemChanges& item : items) {
        Json fields = Json::object();
        for (const FieldChange& change : item.changes)
            fields[change.field->name] = {{"before", ValueJson(change.before)},
                                          {"after", ValueJson(change.after)}};
        all.push_back({{"group", item.place.group},
                       {"point", item.place.IsPoint() ? Json(item.place.point) : Json(nullptr)},
                       {"name", item.text},
                       {"fields", fields}});
    }
    return all;
}

}  // namespace gpsbook
