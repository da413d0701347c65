// Address: how groups and points are named on the command line.
#pragma once

#include <compare>
#include <string>
#include <vector>

class CGrpGps;
class CLibGps;

namespace gpsbook {

/// A group, or a point of it, by positions.
struct Place {
    int group = 0;
    int point = -1;  // -1: the group itself

    bool IsPoint() const { return point >= 0; }
    friend auto operator<=>(const Place&, const Place&) = default;  // NOLINT(modernize-use-nullptr)
};

/// What a group is called: its group name; without one the name of its entity.
const std::string& NameOf(const CGrpGps& group);

/// What an address names:
///   `#2`           the group at position 2, from 0
///   `Quay`         the group of that name
///   `Quay/P1`      the point of that name; both parts can be positions: `#2/#7`
///   `Quay/#3..#7`  points 3 to 7, `Quay/#3..` all from 3 on; `#1..#2` and `#1..` groups
/// Names may hold '/': every way to split the address is tried. `#` with digits is always a position.
/// Errors: CommandError; exitNotFound with names that are like it, exitUsage when the address fits several,
/// whose positions are told.
std::vector<Place> FindPlaces(const CLibGps& book, const std::string& address);

/// The same for several addresses: each place once, in the order of the book.
std::vector<Place> FindPlaces(const CLibGps& book, const std::vector<std::string>& addresses);

/// The same for an address that has to name one group or point.
Place FindPlace(const CLibGps& book, const std::string& address);

/// The position of a group. Errors: as above, exitUsage for a point.
int FindGroup(const CLibGps& book, const std::string& address);

/// The positions of groups. Errors: as above.
std::vector<int> FindGroups(const CLibGps& book, const std::vector<std::string>& addresses);

/// The place in words: names, where there are any, else positions: "Quay/P1", "Quay/#3", "#0".
std::string PlaceText(const CLibGps& book, const Place& place);

}  // namespace gpsbook
