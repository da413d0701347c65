// PointSearch: the order in which a search goes through the points of a field book.
#pragma once

#include <algorithm>

#include "gps/model/CLibGps.h"

/// The first point of group g, from p on, for which `matches(const CPunGps&)` is true; -1 when there is none.
/// A place without a point never matches.
template <class Matches>
int FirstInGroup(const CLibGps& book, int g, int p, const Matches& matches) {
    const int size = book.GetPunArSize(g);
    for (int i = std::max(p, 0); i < size; ++i) {
        const CPunGps* point = book.GetPunAt(g, i);
        if (point && matches(*point)) return i;
    }
    return -1;
}

/// The same through the whole book: from point p of group g to the end, then from the first group to group g,
/// which is gone through again as a whole. True with g and p of the point found; else they stay.
/// A group before the first or behind the last one is empty. Behind the last one the second round meets no
/// group where it began, and ends with the book.
template <class Matches>
bool FirstInBook(const CLibGps& book, int& g, int& p, const Matches& matches) {
    const auto found = [&](int group, int from) {
        const int at = FirstInGroup(book, group, from, matches);
        if (at < 0) return false;
        g = group;
        p = at;
        return true;
    };
    const int groups = book.GetGrpArSize(), start = g;
    if (found(start, p)) return true;
    // Groups before the first one are passed over at once, and there is none behind the last: g may be any
    // number.
    for (int group = std::max(std::min(start, groups), -1) + 1; group < groups; ++group)
        if (found(group, 0)) return true;
    for (int group = 0; group < groups; ++group) {
        if (found(group, 0)) return true;
        if (group == start) break;
    }
    return false;
}
