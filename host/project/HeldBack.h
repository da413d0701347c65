// HeldBack: what a commit cannot carry.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/project/CloudTables.h"

class CLibGps;

namespace gpsproject {

/// Why no record can carry a text; empty: one can.
std::string WhyNotCarried(std::string_view text);

/// An item that waits, and will not be sent.
struct HeldItem {
    CCloudItem* item;
    bool isGroup;
    int g, p;  // position; p is -1 for a group
    std::string why;
};

/// Added items with a text that no record can carry, changed ones where such a text is what changed, new
/// points of new groups that are held, and points that wait with a position when their group's conversion is
/// held.
std::vector<HeldItem> FindHeld(CLibGps& book, CloudTables& tables);

/// Keeps them out of what the tables send, as long as it lives.
class Holding {
public:
    Holding(CloudTables& tables, const std::vector<HeldItem>& held);
    ~Holding();
    Holding(const Holding&) = delete;
    Holding& operator=(const Holding&) = delete;

private:
    CloudTables& tables_;
};

}  // namespace gpsproject
