// NomeMinGps: order of points by name, as a group's point sets keep them.
#pragma once

#include <set>

#include "gps/GpsExport.h"

class CPunGps;

/// `a` comes before `b` when its name is less, byte by byte and case-sensitive: P10 before P2, P1 before p1.
/// Points of equal names are one key: a set keeps the first of them.
template <class Pointer>
class NomeMinGps {
public:
    bool operator()(Pointer a, Pointer b) const { return a->GetNome() < b->GetNome(); }
};

/// Advances an iterator of a point set by one element, for hosts that cannot do so themselves.
GPS_API void IncrPunGpsItr(std::set<CPunGps*, NomeMinGps<CPunGps*>>::iterator& it);
