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

EditResult EditGroup(gpsproject::BookEdits& edits, int group, const std::vector<Edit<CGrpGps>>& values,
                     bool keepPlane) {
    CLibGps& book = edits.GetBook();
    CGrpGps& item = *book.GetGrpAt(group);
    const std::vector<FieldValue> before = ValuesOf(item);
    Store(item, values);
    EditResult result;
    if (!keepPlane && !GivesPlane(values)) {
        if (Feeding(values, Feeds::groupPlanes)) {
            result.planeLeft = !RefreshGroup(book, group);
            if (!result.planeLeft) result.pointsRefreshed = book.GetPunArSize(group);
        } else if (Feeding(values, Feeds::plane)) {
            result.planeLeft = !RefreshPlane(book, {group, -1});
        }
    }
    result.changes = ChangesSince(before, item);
    edits.GroupChanged(group);
    for (int p = 0; p < result.pointsRefreshed; ++p) edits.PointChanged(group, p);
    return result;
}

EditResult EditPoint(gpsproject::BookEdits& edits, const Place& place,
                     const std::vector<Edit<CPunGps>>& values, bool keepPlane) {
    CLibGps& book = edits.GetBook();
    CPunGps& item = *book.GetPunAt(place.group, place.point);
    const std::vector<FieldValue> before = ValuesOf(item);
    Store(item, values);
    EditResult result;
    if (!keepPlane && Feeding(values, Feeds::plane) && !GivesPlane(values))
        result.planeLeft = !RefreshPlane(book, place);
    result.changes = ChangesSince(before, item);
    edits.PointChanged(place.group, place.point);
    return result;
}

}  // namespace gpsbook
