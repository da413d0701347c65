#include "apps/gpsbook/fields/Assignment.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/fields/NearNames.h"
#include "gps/model/CGrpGps.h"

namespace gpsbook {

namespace {

const char* KindOf(const PointField*) { return "point"; }
const char* KindOf(const GroupField*) { return "group"; }

template <class Item>
const Field<Item>& Known(const std::string& name) {
    if (const Field<Item>* field = FindField<Item>(name)) return *field;
    const char* kind = KindOf(static_cast<const Field<Item>*>(nullptr));
    NearNames near(name);
    for (const Field<Item>& field : FieldsOf<Item>()) near.Consider(field.name);
    std::string question = near.Question();
    if (question.empty()) question = "; gpsbook show --json tells all fields";
    throw CommandError(exitUsage, "\"" + name + "\" is no field of a " + kind + question);
}

bool Holds(const std::vector<FieldChange>& changes, std::initializer_list<std::string_view> names) {
    return std::any_of(changes.begin(), changes.end(), [&](const FieldChange& change) {
        return std::find(names.begin(), names.end(), change.field->name) != names.end();
    });
}

void Drop(std::vector<FieldChange>& changes, std::initializer_list<std::string_view> names) {
    std::erase_if(changes, [&](const FieldChange& change) {
        return std::find(names.begin(), names.end(), change.field->name) != names.end();
    });
}

}  // namespace

bool IsAssignment(const std::string& argument) {
    const std::size_t equals = argument.find('=');
    if (equals == std::string::npos || equals == 0) return false;
    return std::all_of(argument.begin(), argument.begin() + static_cast<std::ptrdiff_t>(equals),
                       [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_'; });
}

Assignment SplitAssignment(const std::string& argument) {
    const std::size_t equals = argument.find('=');
    return {argument.substr(0, equals), argument.substr(equals + 1)};
}

template <class Item>
std::vector<Edit<Item>> ParseEdits(const std::vector<Assignment>& assignments) {
    std::vector<Edit<Item>> edits;
    for (const Assignment& assignment : assignments) {
        const Field<Item>& field = Known<Item>(assignment.field);
        const auto same = [&](const Edit<Item>& edit) { return edit.field == &field; };
        if (std::any_of(edits.begin(), edits.end(), same))
            throw CommandError(exitUsage, assignment.field + ": given twice; give one value");
        edits.push_back({&field, ParseValue(field, assignment.text)});
    }
    std::sort(edits.begin(), edits.end(),
              [](const Edit<Item>& a, const Edit<Item>& b) { return a.field < b.field; });
    return edits;
}

template <class Item>
std::vector<FieldValue> ValuesOf(Item& item) {
    std::vector<FieldValue> values;
    values.reserve(FieldsOf<Item>().size());
    for (const Field<Item>& field : FieldsOf<Item>()) values.push_back(field.get(item));
    return values;
}

template <class Item>
std::vector<FieldChange> ChangesSince(const std::vector<FieldValue>& before, Item& item) {
    std::vector<FieldChange> changes;
    std::size_t i = 0;
    for (const Field<Item>& field : FieldsOf<Item>()) {
        FieldValue after = field.get(item);
        if (!SameValue(before[i], after)) changes.push_back({&field, before[i], std::move(after)});
        ++i;
    }
    // What another change says already.
    if (Holds(changes, {"time"})) Drop(changes, {"year", "month", "day", "tod"});
    if (Holds(changes, {"east", "north", "height"})) Drop(changes, {"validity"});
    return changes;
}

template std::vector<Edit<CPunGps>> ParseEdits<CPunGps>(const std::vector<Assignment>&);
template std::vector<Edit<CGrpGps>> ParseEdits<CGrpGps>(const std::vector<Assignment>&);
template std::vector<FieldValue> ValuesOf<CPunGps>(CPunGps&);
template std::vector<FieldValue> ValuesOf<CGrpGps>(CGrpGps&);
template std::vector<FieldChange> ChangesSince<CPunGps>(const std::vector<FieldValue>&, CPunGps&);
template std::vector<FieldChange> ChangesSince<CGrpGps>(const std::vector<FieldValue>&, CGrpGps&);

}  // namespace gpsbook
