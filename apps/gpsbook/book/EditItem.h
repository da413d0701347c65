// EditItem: new values for the fields of a group or point, and what follows from them.
#pragma once

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/fields/Assignment.h"
#include "host/project/BookEdits.h"

namespace gpsbook {

/// What an edit made of an item.
struct EditResult {
    std::vector<FieldChange> changes;  // with plane coordinates that followed
    bool planeLeft = false;            // they should have followed, but there is no usable conversion
    int pointsRefreshed = 0;           // points of the group whose plane coordinates were computed anew
};

/// Stores values and computes the plane coordinates that depend on them anew, unless they are among the
/// values or `keepPlane` is set.
EditResult EditGroup(gpsproject::BookEdits& edits, int group, const std::vector<Edit<CGrpGps>>& values,
                     bool keepPlane);
EditResult EditPoint(gpsproject::BookEdits& edits, const Place& place,
                     const std::vector<Edit<CPunGps>>& values, bool keepPlane);

}  // namespace gpsbook
