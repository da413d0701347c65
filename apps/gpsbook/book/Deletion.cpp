#include "apps/gpsbook/book/Deletion.h"

#include <algorithm>

#include "gps/model/CLibGps.h"
#include "platform/entity/CCloudTable.h"

namespace gpsbook {

namespace {

using gpsproject::BookEdits;

void Announce(CCloudItem* item) {
    if (CCloudTable* table = item->GetTable()) table->ItemDeletedLocally(item);
}

void DeleteGroup(BookEdits& edits, int g) {
    CLibGps& book = edits.GetBook();
    CGrpGps* group = book.GetGrpAt(g);
    for (int p = 0; p < book.GetPunArSize(g); ++p) Announce(CPunGps::CloudItemOf(book.GetPunAt(g, p)));
    Announce(CGrpGps::CloudItemOf(group));
    group->AzzeraPunSet();
    edits.DeletingGroup(g);
    book.DelGrpAt(g);
}

void DeletePoint(BookEdits& edits, const Place& place) {
    CLibGps& book = edits.GetBook();
    Announce(CPunGps::CloudItemOf(book.GetPunAt(place.group, place.point)));
    edits.DeletingPoint(place.group, place.point);
    book.DelPunAt(place.group, place.point);
}

// Sorted, each once, and no points of groups that go themselves.
std::vector<Place> Outermost(std::vector<Place> places) {
    std::sort(places.begin(), places.end());
    std::vector<Place> outermost;
    for (const Place& place : places) {
        const bool covered = !outermost.empty() && outermost.back().group == place.group &&
                             (!outermost.back().IsPoint() || outermost.back() == place);
        if (!covered) outermost.push_back(place);
    }
    return outermost;
}

}  // namespace

void DeletePlaces(BookEdits& edits, const std::vector<Place>& places) {
    const std::vector<Place> all = Outermost(places);
    for (auto place = all.rbegin(); place != all.rend(); ++place) {  // positions before stay as they are
        if (place->IsPoint())
            DeletePoint(edits, *place);
        else
            DeleteGroup(edits, place->group);
    }
}

int PointsWithin(const CLibGps& book, const std::vector<Place>& places) {
    int n = 0;
    for (const Place& place : Outermost(places)) n += place.IsPoint() ? 1 : book.GetPunArSize(place.group);
    return n;
}

}  // namespace gpsbook
