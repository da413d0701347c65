#include "host/cloud/SqliteSchema.h"

#include <limits>
#include <span>
#include <string_view>

namespace gpssync {

namespace {

std::string Join(std::string list, const std::string& more) {
    return list.empty() ? more : std::move(list) + ", " + more;
}

// A column with its type and what may stand in it. Real columns are NULL where a value is not set.
std::string Column(const Field& field, const std::string& name) {
    if (field.type == FieldType::text) return name + " TEXT NOT NULL";
    if (field.type == FieldType::real) return name + " REAL";
    const std::string whole = name + " INTEGER NOT NULL";
    if (field.most == std::numeric_limits<std::int32_t>::max()) return whole;
    return whole + " CHECK (" + name + " BETWEEN " + std::to_string(field.least) + " AND " +
           std::to_string(field.most) + ")";
}

std::string ItemColumns(CloudKind kind) {
    std::string columns;
    const auto fields = FieldsOf(kind);
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (!IsOfMap(kind, i)) columns = Join(std::move(columns), Column(fields[i], fields[i].column));
    return columns;
}

// The columns of the map library's tables have no "selected_" or "map_" in front.
std::string MapName(const Field& field) {
    std::string_view name = field.column;
    for (const std::string_view front : {"selected_", "map_"})
        if (name.starts_with(front)) name.remove_prefix(front.size());
    return std::string(name);
}

std::span<const Field> MapFields(std::size_t first, std::size_t count) {
    return std::span(kGroupFields).subspan(first, count);
}

std::string MapColumns(std::span<const Field> fields, bool withTypes) {
    std::string columns;
    for (const Field& field : fields)
        columns = Join(std::move(columns), withTypes ? Column(field, MapName(field)) : MapName(field));
    return columns;
}

std::string ItemTable(const std::string& table, CloudKind kind) {
    const bool isPoint = kind == CloudKind::point;
    return "CREATE TABLE " + table + " (project INTEGER NOT NULL, id INTEGER NOT NULL CHECK (id >= 1), " +
           (isPoint ? "group_id INTEGER NOT NULL CHECK (group_id >= 1), " : "") +
           "created_revision INTEGER NOT NULL CHECK (created_revision >= 1), "
           "created_device INTEGER NOT NULL CHECK (created_device >= 1), "
           "changed_revision INTEGER NOT NULL CHECK (changed_revision >= created_revision), "
           "changed_device INTEGER NOT NULL CHECK (changed_device >= 1), "
           "deleted_revision INTEGER CHECK (deleted_revision >= changed_revision), "
           "deleted_device INTEGER CHECK (deleted_device >= 1), " +
           ItemColumns(kind) +
           ", PRIMARY KEY (project, id)) STRICT, WITHOUT ROWID;"
           "CREATE INDEX " +
           table + "_by_change ON " + table +
           " (project, changed_revision) WHERE changed_revision > created_revision;"
           "CREATE INDEX " +
           table + "_by_deletion ON " + table +
           " (project, deleted_revision, id) WHERE deleted_revision IS NOT NULL;";
}

}  // namespace

std::string ValueColumns(CloudKind kind) {
    std::string columns;
    const auto fields = FieldsOf(kind);
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (!IsOfMap(kind, i)) columns = Join(std::move(columns), fields[i].column);
    return columns;
}

std::string MapDatumColumns() { return MapColumns(MapFields(kSelectedDatum, kDatumFields), false); }
std::string MapLibraryColumns() { return MapColumns(MapFields(kMapLibrary, kLibraryFields), false); }

std::string StoreSchema() {
    return "PRAGMA application_id = " + std::to_string(kStoreApplication) +
           "; PRAGMA user_version = " + std::to_string(kStoreVersion) +
           ";"
           "CREATE TABLE projects (number INTEGER PRIMARY KEY, "
           "key TEXT NOT NULL UNIQUE CHECK (length(key) = 32), name TEXT NOT NULL UNIQUE, "
           "revision INTEGER NOT NULL CHECK (revision >= 0), last_id INTEGER NOT NULL CHECK (last_id >= 0)) "
           "STRICT;"
           "CREATE TABLE commits (number INTEGER PRIMARY KEY, project INTEGER NOT NULL, "
           "id TEXT NOT NULL CHECK (length(id) = 32), device INTEGER NOT NULL, "
           "author TEXT NOT NULL, base INTEGER NOT NULL CHECK (base >= 0), own TEXT NOT NULL, "
           "revision INTEGER NOT NULL CHECK (revision >= 0), head TEXT NOT NULL, "
           "last_id INTEGER NOT NULL, digest TEXT NOT NULL, "
           "answer TEXT NOT NULL, UNIQUE (project, id)) STRICT;"
           "CREATE INDEX commits_by_revision ON commits (project, revision);" +
           ItemTable("groups", CloudKind::group) + ItemTable("points", CloudKind::point) +
           "CREATE INDEX points_by_group ON points (project, group_id);"
           "CREATE TABLE setters (project INTEGER NOT NULL, kind INTEGER NOT NULL CHECK (kind IN (3, 4)), "
           "id INTEGER NOT NULL, bit INTEGER NOT NULL CHECK (bit >= 1), revision INTEGER NOT NULL, "
           "device INTEGER NOT NULL, PRIMARY KEY (project, kind, id, bit)) STRICT, WITHOUT ROWID;"
           "CREATE TABLE history (number INTEGER PRIMARY KEY, project INTEGER NOT NULL, "
           "kind INTEGER NOT NULL CHECK (kind IN (3, 4)), id INTEGER NOT NULL, bit INTEGER NOT NULL, "
           "value TEXT NOT NULL, set_revision INTEGER NOT NULL, set_device INTEGER NOT NULL, "
           "replaced_revision INTEGER NOT NULL, replaced_device INTEGER NOT NULL) STRICT;"
           "CREATE INDEX history_by_item ON history (project, kind, id);"
           "CREATE TABLE map_data (project INTEGER NOT NULL, selector_1 INTEGER NOT NULL, "
           "selector_2 INTEGER NOT NULL, map_index INTEGER NOT NULL, revision INTEGER NOT NULL, "
           "device INTEGER NOT NULL, " +
           MapColumns(MapFields(kSelectedDatum, kDatumFields), true) +
           ", PRIMARY KEY (project, selector_1, selector_2, map_index)) STRICT, WITHOUT ROWID;"
           "CREATE TABLE map_libraries (project INTEGER PRIMARY KEY, revision INTEGER NOT NULL, "
           "device INTEGER NOT NULL, " +
           MapColumns(MapFields(kMapLibrary, kLibraryFields), true) + ") STRICT;";
}

}  // namespace gpssync
