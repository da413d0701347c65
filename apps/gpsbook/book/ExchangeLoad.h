// ExchangeLoad: points or groups of a file, put into a book.
#pragma once

#include <cstdint>
#include <string>

#include "apps/gpsbook/book/ExchangeCheck.h"
#include "gps/model/CLibGps.h"

namespace gpsproject {
class Project;
}

namespace gpsbook {

struct LoadPlace {
    std::string file;
    int after = -1;      // the position behind which they come; -1: in front of all
    bool force = false;  // whatever the file is, and wherever that is
};

/// What came of a load.
struct LoadedItems {
    CLibGps::TResActionObj result = CLibGps::TResActionObj::done;
    ExchangeContent content;  // of the file
    int first = 0;            // position of the first one, of groups or points
    int groups = 0;           // that are new
    int points = 0;
    int withoutPlane = 0;        // of the new points
    std::int64_t lostPlane = 0;  // new points without plane coordinates that have them in the file
    std::int64_t lostFix = 0;
    int otherDatums = 0;  // new groups whose datum is none of this book's, or has other values here
};

/// Looks through the file, and loads it only when it is whole and the place exists: nothing is changed
/// before. With `force` it is loaded as the library does it, whatever comes of it; even then not one that
/// would fill the memory with items that it does not hold. What is new is noted in the journal; the book is
/// not saved.
/// Errors: CommandError; exitRefused says where the file is damaged, exitUsage is for the place.
/// When the file was changed meanwhile, or memory did not suffice, the book holds a part: it is not to be
/// saved.
LoadedItems LoadPoints(gpsproject::Project& project, const LoadPlace& place, int group, bool fromPlane);

/// `mode`: 0. With `force` also others, with which nothing is loaded.
LoadedItems LoadGroups(gpsproject::Project& project, const LoadPlace& place, short mode);

}  // namespace gpsbook
