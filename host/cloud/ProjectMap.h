// ProjectMap: the map library that all groups of a project share.
#pragma once

#include <map>
#include <optional>

#include "host/cloud/SyncStore.h"

namespace gpssync {

/// Lives inside one transaction. What was never set has the values of a library that was just made, and a
/// mark without a revision.
class ProjectMap {
public:
    ProjectMap(SyncStore& store, std::int64_t project) : store_(store), project_(project) {}

    static MapPlace PlaceOf(const Values& group);

    const MapPart& Datum(MapPlace place);
    const MapPart& Library();
    void SetDatum(MapPlace place, MapPart datum);
    void SetLibrary(MapPart library);

    /// Puts the library's part into the fields of a group: the datum that the group selects, and the
    /// library's own.
    void Fill(Values& group);

private:
    SyncStore& store_;
    std::int64_t project_;
    std::map<MapPlace, MapPart> data_;
    std::optional<MapPart> library_;
};

}  // namespace gpssync
