// CFindInLibGps: finds points of a field book by name or code.
#pragma once

#include <string>

#include "gps/GpsExport.h"

class CLibGps;

/// Find and find-next over a field book, which it does not own and which outlives it. A copy searches the
/// same book.
///
/// Texts are compared as they stand, byte by byte. The search begins with the point at the given position
/// itself: for the next one, pass the position after the last. A position of a group that does not exist is
/// that of an empty group.
class GPS_API CFindInLibGps {
public:
    // What the text is compared with; both: first with the name. Without one of them nothing is found.
    static constexpr int BY_NOME = 1;
    static constexpr int BY_CODE = 2;

    explicit CFindInLibGps(CLibGps* book) : LibGps(book) {}
    CFindInLibGps(const CFindInLibGps&) = default;
    CFindInLibGps& operator=(const CFindInLibGps&) = default;
    virtual ~CFindInLibGps();

    /// Searches group g from point p to its end. Returns the position of the point found and stores it in p;
    /// -1, with p as it was, when there is none.
    int TrovaPunLocal(std::string text, int flags, int g, int& p);

    /// Searches the whole book from point p of group g, once around: up to the end of the book, then from its
    /// first group to the end of group g. Returns the position of the point found and stores it in g and p;
    /// -1, with both as they were, when there is none. No point is looked at more than twice.
    int TrovaPunGlobal(std::string text, int flags, int& g, int& p);

private:
    CLibGps* LibGps;
};
