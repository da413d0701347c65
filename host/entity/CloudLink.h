// How items know their table: a small shared object that outlives it.
#pragma once

#include "platform/entity/CCloudItem.h"

struct CCloudItem::TableLink {
    CCloudTable* table;
    long users = 1;  // the table and its items

    static TableLink* Share(TableLink* link) noexcept {
        if (link) ++link->users;
        return link;
    }
    static void Leave(TableLink* link) noexcept {
        if (link && --link->users == 0) delete link;
    }
};
