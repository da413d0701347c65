// SqliteSchema: the tables of a store. See docs/formats/store.md.
#pragma once

#include <cstdint>
#include <string>

#include "host/cloud/ItemFields.h"

namespace gpssync {

inline constexpr std::int64_t kStoreApplication = 0x47535953;
inline constexpr std::int64_t kStoreVersion = 1;

/// Statements that make an empty store.
std::string StoreSchema();

/// Columns that an item's values stand in, joined by ", ".
std::string ValueColumns(CloudKind kind);

/// Columns of a datum of the map library, and of the library itself.
std::string MapDatumColumns();
std::string MapLibraryColumns();

}  // namespace gpssync
