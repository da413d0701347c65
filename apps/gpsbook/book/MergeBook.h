// MergeBook: groups and points of another book, put into a book.
#pragma once

#include <cstdint>

namespace gpsproject {
class Project;
}

namespace gpsbook {

/// What came of it.
struct MergedItems {
    int first = 0;  // position of the first new group
    std::int64_t groups = 0;
    std::int64_t points = 0;        // new ones, those of new groups included
    std::int64_t filledGroups = 0;  // that were here, and got something that they lacked
    std::int64_t filledPoints = 0;
    std::int64_t asNew = 0;        // of the new ones: that the shared project does not know
    std::int64_t notTaken = 0;     // changed or deleted in the other book, and not sent
    std::int64_t otherDatums = 0;  // new groups whose datum is none of this book's, or has other values here

    bool IsAnything() const { return groups + points + filledGroups + filledPoints > 0; }
};

// Neither notes anything in the journal: the book is to be saved, or nothing of it stays.
// Errors: CommandError; the book is then not to be saved.

/// Fills the gaps of what both copies of a shared book have, and adds what only the other one has; what
/// others deleted of that goes again with the next sync.
/// Errors: exitConflict when they are no copies of the same shared book, when one of them waits for the
/// answer to what it has sent, or when the other one still has what was deleted here and not sent.
MergedItems MergeBook(gpsproject::Project& project, gpsproject::Project& other);

/// Appends copies of all groups and points, as new ones.
/// Errors: exitConflict when both belong to the same shared project, unless `asNew`.
MergedItems ImportBook(gpsproject::Project& project, gpsproject::Project& other, bool asNew);

}  // namespace gpsbook
