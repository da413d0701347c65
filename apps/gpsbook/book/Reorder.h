// Reorder: groups and points that change their place.
#pragma once

#include <vector>

#include "apps/gpsbook/book/Address.h"
#include "host/project/BookEdits.h"

namespace gpsbook {

/// The order after some positions of a list have moved: `order[i]` is the present position of what will
/// stand at i. They keep their order among themselves and stand from `to` on, or at the end when fewer
/// places are left there. `moved`: ascending, each once.
std::vector<int> OrderAfterMove(int size, const std::vector<int>& moved, int to);

/// Brings the groups of the book, or the points of a group, into an order, by the swaps of the library:
/// objects stay what they are. Requires: a permutation of all positions.
void OrderGroups(gpsproject::BookEdits& edits, const std::vector<int>& order);
void OrderPoints(gpsproject::BookEdits& edits, int group, const std::vector<int>& order);

/// Moves points, all of one group, into another one, from position `to` on. A point belongs to one group for
/// life: a new one is made with the same values, the former is deleted, and a cloud project takes it for new.
/// Requires: `points` ascending, each once; 0 <= to <= number of points of the other group.
void MoveToGroup(gpsproject::BookEdits& edits, int from, const std::vector<int>& points, int group, int to);

}  // namespace gpsbook
