#include "apps/gpsbook/book/EditItem.h"

#include "apps/gpsbook/book/PlaneRefresh.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

template <class Item>
bool GivesPlane(const std::vector<Edit<Item>>& edits) {
    return Sets(edits, "east") || Sets(edits, "north") || Sets(edits, "height");
}

}  // namespace

EditResult EditGroup(CLibGps& book, int group, const std::vector<Edit<CGrpGps>>& edits, bool keepPlane) {
    CGrpGps& item = *book.GetGrpAt(group);
    const std::vector<FieldValue> before = ValuesOf(item);
    Store(item, edits);
    EditResult result;
    if (!keepPlane && !GivesPlane(edits)) {
        if (Feeding(edits, Feeds::groupPlanes)) {
            result.planeLeft = !RefreshGroup(book, group);
            if (!result.planeLeft) result.pointsRefreshed = book.GetPunArSize(group);
        } else if (Feeding(edits, Feeds::plane)) {
            result.planeLeft = !RefreshPlane(book, {group, -1});
        }
    }
    result.changes = ChangesSince(before, item);
    return result;
}

EditResult EditPoint(CLibGps& book, const Place& place, const std::vector<Edit<CPunGps>>& edits,
                     bool keepPlane) {
    CPunGps& item = *book.GetPunAt(place.group, place.point);
    const std::vector<FieldValue> before = ValuesOf(item);
    Store(item, edits);
    EditResult result;
    if (!keepPlane && Feeding(edits, Feeds::plane) && !GivesPlane(edits))
        result.planeLeft = !RefreshPlane(book, place);
    result.changes = ChangesSince(before, item);
    return result;
}

}  // namespace gpsbook
