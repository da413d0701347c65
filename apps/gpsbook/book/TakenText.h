// TakenText: what came from others with a sync, for people.
#pragma once

#include <string>

#include "host/project/BookCloud.h"

namespace gpsbook {

/// "added", "changed", "deleted"
const char* WhatText(gpsproject::BookCloud::TakenItem::What what);

/// What the item is called: "Quay/P1", "Quay".
std::string TakenName(const gpsproject::BookCloud::TakenItem& item);

/// One line, with its line break: "point Quay/P1 (id 3): code-text, antenna, by anna".
std::string TakenLine(const gpsproject::BookCloud::TakenItem& item);

}  // namespace gpsbook
