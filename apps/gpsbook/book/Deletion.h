// Deletion: groups and points that leave the book.
#pragma once

#include <vector>

#include "apps/gpsbook/book/Address.h"
#include "host/project/BookEdits.h"

namespace gpsbook {

/// Deletes the places, each one once, in any order. Items that a cloud table knows are announced to it
/// first, with a group each of its points, so that the deletion is sent.
/// Requires: positions of the book as it is now.
void DeletePlaces(gpsproject::BookEdits& edits, const std::vector<Place>& places);

/// How many points go: those named, and all points of groups named.
int PointsWithin(const CLibGps& book, const std::vector<Place>& places);

}  // namespace gpsbook
