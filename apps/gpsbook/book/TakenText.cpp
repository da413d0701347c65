#include "apps/gpsbook/book/TakenText.h"

#include <fmt/format.h>

#include "apps/gpsbook/book/CloudText.h"
#include "apps/gpsbook/commands/TextTable.h"

namespace gpsbook {

using gpsproject::CloudKind;
using TakenItem = gpsproject::BookCloud::TakenItem;

const char* WhatText(TakenItem::What what) {
    switch (what) {
        case TakenItem::What::added:
            return "added";
        case TakenItem::What::changed:
            return "changed";
        case TakenItem::What::deleted:
            break;
    }
    return "deleted";
}

std::string TakenName(const TakenItem& item) {
    return item.kind == CloudKind::group ? item.name : item.group + '/' + item.name;
}

std::string TakenLine(const TakenItem& item) {
    std::string what;
    if (item.what != TakenItem::What::changed) what = std::string(", ") + WhatText(item.what);
    for (const std::string& name : FieldNames(item.kind, item.fields)) what += ", " + name;
    return fmt::format("{} {} (id {}): {}, by {}\n", KindText(item.kind), Printable(TakenName(item)), item.id,
                       what.substr(2), Printable(item.author));
}

}  // namespace gpsbook
