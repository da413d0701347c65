// JournalSalvage: takes the points of a damaged journal, or of one of another save, into a book.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "host/project/Project.h"

namespace gpsbook {

/// A group that was made for points of the journal.
struct SalvagedGroup {
    int group = -1;           // position in the book
    int from = 0;             // position that the journal states
    std::int64_t points = 0;  // added
    bool conversion = false;  // it has one
};

struct SalvageReport {
    std::vector<SalvagedGroup> groups;
    std::int64_t points = 0;           // added
    std::int64_t there = 0;            // points that the book has already, with the same content
    std::int64_t unreadable = 0;       // entries of points that are not what they should be
    std::map<int, std::int64_t> left;  // entries of other kinds, by code: they stay in the journal alone
};

/// Whether there is something in the journal that opening the book did not bring back.
bool NeedsSalvage(const gpsproject::Project& project);

/// Adds every point that an entry states and that was not brought back to a new group, one for each group
/// that the entries name: an edit that is torn out of its place can say what was measured, not what becomes
/// of other items. What the book has already, with the same content, is not added; nothing of the book is
/// changed. A group gets the conversion that gives the plane coordinates of its points: that of an entry of
/// its group, else that of the book's group at the position.
///
/// `project` was opened for salvage. Errors: ProjectError (system), std::bad_alloc.
SalvageReport SalvagePoints(gpsproject::Project& project);

}  // namespace gpsbook
