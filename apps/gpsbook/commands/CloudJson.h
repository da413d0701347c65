// CloudJson: what a book knows of its shared project, for machines.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "apps/gpsbook/book/Address.h"
#include "host/project/Project.h"

namespace gpsbook {

/// Book, store, project, key and revision; all but the book null when it is not shared.
nlohmann::ordered_json LinkJson(gpsproject::Project& project);

/// A group or point of the book.
nlohmann::ordered_json PlaceJson(const CLibGps& book, const Place& place);

/// What no record can carry, with the reason.
nlohmann::ordered_json HeldJson(gpsproject::Project& project);

nlohmann::ordered_json RefusedJson(const gpsproject::CloudState& state);

nlohmann::ordered_json ConflictJson(gpsproject::Project& project, const gpsproject::CloudConflict& conflict);

}  // namespace gpsbook
