// Assignment: FIELD=VALUE of a command line, read and stored.
#pragma once

#include <string>
#include <vector>

#include "apps/gpsbook/fields/Field.h"

namespace gpsbook {

struct Assignment {
    std::string field;
    std::string text;
};

/// True when the argument reads as one: what stands before its first '=' is made of small letters, digits
/// and '_'. A group or point with such a name is addressed by its position.
bool IsAssignment(const std::string& argument);

/// Requires: IsAssignment(argument).
Assignment SplitAssignment(const std::string& argument);

/// A field with the value it is to get.
template <class Item>
struct Edit {
    const Field<Item>* field;
    FieldValue value;
};

/// All values, checked, in the order of the table. Nothing is stored yet.
/// Errors: CommandError (exitUsage) for a field that does not exist, one given twice, and a value that cannot
/// be.
template <class Item>
std::vector<Edit<Item>> ParseEdits(const std::vector<Assignment>& assignments);

/// A field that changed.
struct FieldChange {
    const FieldInfo* field;
    FieldValue before;
    FieldValue after;
};

/// The values of all fields of an item, to compare with later.
template <class Item>
std::vector<FieldValue> ValuesOf(Item& item);

/// What differs from the values before; without the parts of a time that is told itself, and without the
/// validity word that follows plane coordinates.
template <class Item>
std::vector<FieldChange> ChangesSince(const std::vector<FieldValue>& before, Item& item);

/// Stores the values through the setters of the library.
template <class Item>
void Store(Item& item, const std::vector<Edit<Item>>& edits) {
    for (const Edit<Item>& edit : edits) edit.field->set(item, edit.value);
}

/// True when one of the edits is of that kind.
template <class Item>
bool Feeding(const std::vector<Edit<Item>>& edits, Feeds feeds) {
    for (const Edit<Item>& edit : edits)
        if (edit.field->feeds == feeds) return true;
    return false;
}

/// True when one of the edits is of the field with this name.
template <class Item>
bool Sets(const std::vector<Edit<Item>>& edits, std::string_view name) {
    for (const Edit<Item>& edit : edits)
        if (edit.field->name == name) return true;
    return false;
}

}  // namespace gpsbook
