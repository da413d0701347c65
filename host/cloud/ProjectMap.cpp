#include "host/cloud/ProjectMap.h"

#include <algorithm>
#include <utility>

namespace gpssync {

namespace {

// Name, direction, seven coefficients, origin.
Values PlainDatum() {
    Values values{std::string(), std::int64_t{0}};
    values.resize(9, 0.0);
    values.resize(kDatumFields, Unset());
    return values;
}

Values PlainLibrary() {
    Values values = PlainDatum();
    values.insert(values.begin(), std::int64_t{0});
    return values;
}

void CopyTo(const Values& from, Values& to, std::size_t place) {
    std::copy(from.begin(), from.end(), to.begin() + static_cast<std::ptrdiff_t>(place));
}

}  // namespace

MapPlace ProjectMap::PlaceOf(const Values& group) {
    const auto whole = [&](std::size_t i) { return std::get<std::int64_t>(group[kMapSelector + i]); };
    return {whole(0), whole(1), whole(2)};
}

const MapPart& ProjectMap::Datum(MapPlace place) {
    const auto found = data_.find(place);
    if (found != data_.end()) return found->second;
    return data_.emplace(place, store_.MapDatum(project_, place).value_or(MapPart{{}, PlainDatum()}))
        .first->second;
}

const MapPart& ProjectMap::Library() {
    if (!library_) library_ = store_.MapLibrary(project_).value_or(MapPart{{}, PlainLibrary()});
    return *library_;
}

void ProjectMap::SetDatum(MapPlace place, MapPart datum) {
    store_.SetMapDatum(project_, place, datum);
    data_.insert_or_assign(place, std::move(datum));
}

void ProjectMap::SetLibrary(MapPart library) {
    store_.SetMapLibrary(project_, library);
    library_ = std::move(library);
}

void ProjectMap::Fill(Values& group) {
    CopyTo(Datum(PlaceOf(group)).values, group, kSelectedDatum);
    CopyTo(Library().values, group, kMapLibrary);
}

}  // namespace gpssync
