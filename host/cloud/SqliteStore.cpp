#include "host/cloud/SqliteStore.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <utility>

#include "host/cloud/SqliteFile.h"
#include "host/cloud/SqliteSchema.h"
#include "host/cloud/SyncServer.h"

namespace gpssync {

namespace {

using Kind = TransportError::Kind;

std::string Marks(std::size_t count) {
    std::string marks;
    for (std::size_t i = 0; i < count; ++i) marks += marks.empty() ? "?" : ", ?";
    return marks;
}

std::size_t CountColumns(const std::string& columns) {
    std::size_t count = 1;
    for (const char c : columns) count += c == ',';
    return count;
}

std::string TableOf(CloudKind kind) { return kind == CloudKind::group ? "groups" : "points"; }

// What a row begins with.
std::string ItemHead(CloudKind kind) {
    return std::string("id, ") + (kind == CloudKind::point ? "group_id, " : "") +
           "created_revision, created_device, changed_revision, changed_device, deleted_revision, "
           "deleted_device";
}

std::string AddItemSql(CloudKind kind) {
    const std::string columns = "project, " + ItemHead(kind) + ", " + ValueColumns(kind);
    return "INSERT INTO " + TableOf(kind) + " (" + columns + ") VALUES (" + Marks(CountColumns(columns)) +
           ")";
}

std::string ChangeItemSql(CloudKind kind) {
    std::string columns = "changed_revision, changed_device, " + ValueColumns(kind);
    return "UPDATE " + TableOf(kind) + " SET (" + columns + ") = (" + Marks(CountColumns(columns)) +
           ") WHERE project = ? AND id = ?";
}

std::string SelectItem(CloudKind kind) {
    return "SELECT " + ItemHead(kind) + ", " + ValueColumns(kind) + " FROM " + TableOf(kind);
}

std::string IsForeign(const std::string& revision) {
    return "(" + revision + " > ?3 AND " + revision + " NOT IN (SELECT value FROM json_each(?5)))";
}

// ?1 project, ?2 and ?7 ids between which the items are, ?3 revision, ?4 up to, ?5 own revisions, ?6 limit.
// `also`: what more is asked of them.
std::string NewerSql(CloudKind kind, const std::string& also) {
    const std::string table = TableOf(kind);
    return SelectItem(kind) + also +
           " AND project = ?1 AND id > ?2 AND id <= ?7 AND created_revision <= ?4 AND "
           "(deleted_revision IS NULL OR deleted_revision > ?4) AND (" +
           IsForeign("changed_revision") + " OR " + IsForeign("created_revision") +
           // A group can have setters though it is as it was made: those of the map library.
           (kind == CloudKind::group ? " OR " : " OR changed_revision > created_revision AND ") +
           "EXISTS (SELECT 1 FROM setters WHERE "
           "setters.project = ?1 AND setters.kind = " +
           std::to_string(static_cast<int>(kind)) + " AND setters.id = " + table + ".id AND " +
           IsForeign("setters.revision") + ")) ORDER BY id LIMIT ?6";
}

// Items that were there before the revision and changed behind it: by the index when they are few, else by
// going through all of them.
std::string ChangedSql(CloudKind kind, bool few) {
    const std::string changed = "changed_revision > created_revision AND ";
    return few ? NewerSql(kind, " INDEXED BY " + TableOf(kind) + "_by_change WHERE " + changed +
                                    "changed_revision > ?3")
               : NewerSql(kind, " WHERE " + changed + "+changed_revision > ?3");
}

// ?1 project, ?2 revision, ?3 how many are asked after.
std::string CountChangedSql(CloudKind kind) {
    const std::string table = TableOf(kind);
    return "SELECT count(*) FROM (SELECT 1 FROM " + table + " INDEXED BY " + table +
           "_by_change WHERE changed_revision > created_revision AND project = ?1 AND "
           "changed_revision > ?2 LIMIT ?3)";
}

// Whether device ?8 made an item, or set a field of it, and the commit that deleted it had not seen that.
std::string IsUnseen(CloudKind kind, const std::string& item) {
    const auto isUnseen = [](const std::string& mark) {
        return mark + "device = ?8 AND " + mark + "revision > commits.base AND " + mark +
               "revision < commits.revision AND " + mark +
               "revision NOT IN (SELECT value FROM json_each(commits.own))";
    };
    return "(" + isUnseen(item + ".created_") +
           " OR EXISTS (SELECT 1 FROM setters WHERE setters.project = ?1 " +
           "AND setters.kind = " + std::to_string(static_cast<int>(kind)) + " AND setters.id = " + item +
           ".id AND setters.bit < " + std::to_string(kDatumBit) + " AND " + isUnseen("setters.") + "))";
}

// ?1 project, ?2 up to, ?3 revision, ?4 and ?6 revision and id behind which it begins, ?5 own revisions,
// ?7 limit, ?8 device that asks.
std::string NewerDeletionsSql(CloudKind kind) {
    const std::string table = TableOf(kind);
    std::string unseen = IsUnseen(kind, table);
    if (kind == CloudKind::group)
        unseen +=
            " OR EXISTS (SELECT 1 FROM points AS p WHERE p.project = ?1 AND p.group_id = groups.id AND "
            "p.deleted_revision = groups.deleted_revision AND " +
            IsUnseen(CloudKind::point, "p") + ")";
    std::string sql = "SELECT " + table + ".id, deleted_revision, deleted_device, coalesce(" + unseen +
                      ", 0) FROM " + table + " LEFT JOIN commits ON commits.project = ?1 AND " +
                      "commits.revision = deleted_revision WHERE " + table + ".project = ?1 AND " +
                      IsForeign("deleted_revision") + " AND deleted_revision <= ?2 AND (deleted_revision, " +
                      table + ".id) > (?4, ?6)";
    if (kind == CloudKind::point)
        sql +=
            " AND NOT EXISTS (SELECT 1 FROM groups WHERE groups.project = ?1 AND groups.id = points.group_id "
            "AND groups.deleted_revision = points.deleted_revision)";
    return sql + " ORDER BY deleted_revision, " + table + ".id LIMIT ?7";
}

std::string OwnText(const std::vector<std::int64_t>& own) {
    std::string text = "[";
    for (const std::int64_t revision : own) text += (text.size() > 1 ? "," : "") + std::to_string(revision);
    return text + "]";
}

std::vector<std::int64_t> ReadOwn(std::string_view text) {
    std::vector<std::int64_t> own;
    for (std::size_t at = 1; at < text.size();) {
        std::int64_t revision = 0;
        const auto [end, error] = std::from_chars(text.data() + at, text.data() + text.size(), revision);
        if (error != std::errc()) break;
        own.push_back(revision);
        at = static_cast<std::size_t>(end - text.data()) + 1;
    }
    return own;
}

// --- rows --------------------------------------------------------------------------------------------------

void BindMark(SqliteRun& run, Mark mark) { run.With(mark.revision, std::int64_t{mark.device}); }

void BindValue(SqliteRun& run, const Value& value) {
    if (const auto* real = std::get_if<double>(&value))
        run.Bind(*real);
    else if (const auto* whole = std::get_if<std::int64_t>(&value))
        run.Bind(*whole);
    else if (const auto* text = std::get_if<std::string>(&value))
        run.Bind(std::string_view(*text));
    else
        run.BindNull();
}

void BindValues(SqliteRun& run, const StoredItem& item) {
    for (std::size_t i = 0; i < item.values.size(); ++i)
        if (!IsOfMap(item.kind, i)) BindValue(run, item.values[i]);
}

Mark ReadMark(SqliteRun& run) {
    const std::int64_t revision = run.Whole();
    return {revision, run.Device()};
}

Value ReadValue(SqliteRun& run, FieldType type) {
    if (type == FieldType::text) return std::string(run.Text());
    if (type == FieldType::whole) return run.Whole();
    const double real = run.Real();
    if (real == 0 && run.WasNull()) return Unset();
    return real;
}

void ReadItem(SqliteRun& run, CloudKind kind, StoredItem& item) {
    item.kind = kind;
    item.id = run.Whole();
    item.group = kind == CloudKind::point ? run.Whole() : 0;
    item.created = ReadMark(run);
    item.changed = ReadMark(run);
    item.deleted = ReadMark(run);
    const auto fields = FieldsOf(kind);
    item.values.resize(fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i)
        item.values[i] = IsOfMap(kind, i) ? Value() : ReadValue(run, fields[i].type);
}

std::optional<StoredProject> ReadProject(SqliteRun&& run) {
    if (!run.Next()) return std::nullopt;
    StoredProject project;
    project.number = run.Whole();
    project.key = run.Text();
    project.name = run.Text();
    project.revision = run.Whole();
    project.lastId = run.Whole();
    return project;
}

std::optional<MapPart> ReadMapPart(SqliteRun&& run, std::size_t first, std::size_t count) {
    if (!run.Next()) return std::nullopt;
    MapPart part;
    part.set = ReadMark(run);
    for (std::size_t i = first; i < first + count; ++i)
        part.values.push_back(ReadValue(run, kGroupFields[i].type));
    return part;
}

constexpr const char* kRead = "cannot be read";
constexpr const char* kWrite = "cannot be written";

// --- statements of one kind of items -----------------------------------------------------------------------

struct ItemStatements {
    ItemStatements(SqliteFile& file, CloudKind kind)
        : find(file, kRead, SelectItem(kind) + " WHERE project = ? AND id = ?"),
          add(file, kWrite, AddItemSql(kind)),
          change(file, kWrite, ChangeItemSql(kind)),
          remove(file, kWrite,
                 "UPDATE " + TableOf(kind) +
                     " SET deleted_revision = ?, deleted_device = ? WHERE project = ? AND id = ?"),
          countChanged(file, kRead, CountChangedSql(kind)),
          fewChanged(file, kRead, ChangedSql(kind, true)),
          manyChanged(file, kRead, ChangedSql(kind, false)),
          made(file, kRead, NewerSql(kind, " WHERE true")),
          newerDeletions(file, kRead, NewerDeletionsSql(kind)) {}

    SqliteStatement find, add, change, remove, countChanged, fewChanged, manyChanged, made, newerDeletions;
};

}  // namespace

struct SqliteStore::Connection {
    Connection(const std::string& path, bool make, int patience) : file(path, make, patience) {}

    ItemStatements& Of(CloudKind kind) { return kind == CloudKind::group ? groups : points; }

    SqliteFile file;
    ItemStatements groups{file, CloudKind::group};
    ItemStatements points{file, CloudKind::point};

    SqliteStatement projectByName{file, kRead,
                                  "SELECT number, key, name, revision, last_id FROM projects WHERE name = ?"};
    SqliteStatement projectByKey{file, kRead,
                                 "SELECT number, key, name, revision, last_id FROM projects WHERE key = ?"};
    SqliteStatement addProject{file, kWrite,
                               "INSERT INTO projects (key, name, revision, last_id) VALUES (?, ?, 0, 0)"};
    SqliteStatement advanceProject{file, kWrite,
                                   "UPDATE projects SET revision = ?, last_id = ? WHERE number = ?"};
    SqliteStatement findCommit{
        file, kRead,
        "SELECT device, author, base, own, revision, head, last_id, digest, answer FROM commits "
        "WHERE project = ? AND id = ?"};
    SqliteStatement addCommit{
        file, kWrite,
        "INSERT INTO commits (project, id, device, author, base, own, revision, head, last_id, "
        "digest, answer) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"};
    SqliteStatement headOf{file, kRead,
                           "SELECT head FROM commits WHERE project = ?1 AND revision = ?2 AND revision >= 1"};
    SqliteStatement authorOf{
        file, kRead, "SELECT author FROM commits WHERE project = ?1 AND revision = ?2 AND revision >= 1"};
    SqliteStatement lastId{file, kRead,
                           "SELECT last_id FROM commits WHERE project = ? AND revision BETWEEN 1 AND ? "
                           "ORDER BY revision DESC LIMIT 1"};
    SqliteStatement deletePoints{file, kWrite,
                                 "UPDATE points SET deleted_revision = ?, deleted_device = ? "
                                 "WHERE project = ? AND group_id = ? AND deleted_revision IS NULL"};
    SqliteStatement changedPoints{file, kRead,
                                  SelectItem(CloudKind::point) +
                                      " WHERE project = ? AND group_id = ? AND +changed_revision > ? AND "
                                      "deleted_revision IS NULL ORDER BY id"};
    SqliteStatement setters{
        file, kRead,
        "SELECT bit, revision, device FROM setters WHERE project = ? AND kind = ? AND id = ? ORDER BY bit"};
    SqliteStatement setSetter{file, kWrite,
                              "INSERT OR REPLACE INTO setters (project, kind, id, bit, revision, device) "
                              "VALUES (?, ?, ?, ?, ?, ?)"};
    SqliteStatement addHistory{
        file, kWrite,
        "INSERT INTO history (project, kind, id, bit, value, set_revision, set_device, replaced_revision, "
        "replaced_device) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"};
    SqliteStatement history{
        file, kRead,
        "SELECT bit, value, set_revision, set_device, replaced_revision, replaced_device FROM history "
        "WHERE project = ? AND kind = ? AND id = ? ORDER BY number"};
    SqliteStatement mapDatum{
        file, kRead,
        "SELECT revision, device, " + MapDatumColumns() +
            " FROM map_data WHERE project = ? AND selector_1 = ? AND selector_2 = ? AND map_index = ?"};
    SqliteStatement setMapDatum{
        file, kWrite,
        "INSERT OR REPLACE INTO map_data (project, selector_1, selector_2, map_index, "
        "revision, device, " +
            MapDatumColumns() + ") VALUES (" + Marks(6 + kDatumFields) + ")"};
    SqliteStatement mapLibrary{
        file, kRead,
        "SELECT revision, device, " + MapLibraryColumns() + " FROM map_libraries WHERE project = ?"};
    SqliteStatement setMapLibrary{file, kWrite,
                                  "INSERT OR REPLACE INTO map_libraries (project, revision, device, " +
                                      MapLibraryColumns() + ") VALUES (" + Marks(3 + kLibraryFields) + ")"};
    SqliteStatement groupsAt{file, kRead,
                             "SELECT id FROM groups WHERE project = ?1 AND deleted_revision IS NULL AND "
                             "(?2 IS NULL OR (map_selector_1, map_selector_2, map_index) = (?2, ?3, ?4)) "
                             "ORDER BY id"};
};

SqliteStore::SqliteStore(std::string path, int patience) : path_(std::move(path)), patience_(patience) {}
SqliteStore::~SqliteStore() = default;

// --- the file ----------------------------------------------------------------------------------------------

void SqliteStore::Open(bool make) {
    if (path_.empty()) throw TransportError(Kind::refused, "the store has no name; give that of a file");
    std::error_code error;
    const bool isThere = std::filesystem::exists(path_, error);
    if (error)
        throw TransportError(Kind::noAnswer, path_ + ": cannot be opened: " + error.message() +
                                                 "; look at the folder, and at your rights there");
    if (!isThere && !make)
        throw TransportError(Kind::notFound,
                             path_ + ": there is no such store; look at its name, or make it");
    auto connection = std::make_unique<Connection>(path_, make, patience_);
    // EXTRA: what was answered is still there when the power goes right behind it; FULL alone may undo it.
    connection->file.Do(
        "cannot be opened",
        "PRAGMA synchronous = EXTRA; PRAGMA cache_size = -32768; PRAGMA trusted_schema = OFF");
    connection_ = std::move(connection);
}

void SqliteStore::Begin(Access access) {
    if (!connection_) Open(access == Access::make);
    SqliteFile& file = connection_->file;
    file.Do(access == Access::read ? kRead : kWrite, access == Access::read ? "BEGIN" : "BEGIN IMMEDIATE");
    // The file may have been made, or half made, by another program since it was opened.
    const std::int64_t application = file.Number(kRead, "PRAGMA application_id");
    const std::int64_t version = file.Number(kRead, "PRAGMA user_version");
    if (application == kStoreApplication && version == kStoreVersion) return;
    std::string wrong;
    if (application == kStoreApplication && version > kStoreVersion)
        wrong = "was made by a newer program; update this one";
    else if (file.Number(kRead, "SELECT count(*) FROM sqlite_schema") > 0 || application != 0 || version != 0)
        wrong = "is no store of shared projects; choose another file";
    if (!wrong.empty()) throw TransportError(Kind::damaged, path_ + ": it " + wrong);
    if (access != Access::make)
        throw TransportError(Kind::notFound, path_ + ": the store is empty; make it, or choose another file");
    file.Do(kWrite, StoreSchema().c_str());
}

void SqliteStore::Commit() { connection_->file.Do(kWrite, "COMMIT"); }

void SqliteStore::Rollback() noexcept {
    if (connection_ && !sqlite3_get_autocommit(connection_->file.Get()))
        sqlite3_exec(connection_->file.Get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

// --- projects ----------------------------------------------------------------------------------------------

std::optional<StoredProject> SqliteStore::FindProjectByName(const std::string& name) {
    return ReadProject(std::move(SqliteRun(connection_->projectByName).With(std::string_view(name))));
}

std::optional<StoredProject> SqliteStore::FindProjectByKey(const std::string& key) {
    return ReadProject(std::move(SqliteRun(connection_->projectByKey).With(std::string_view(key))));
}

StoredProject SqliteStore::AddProject(const std::string& key, const std::string& name) {
    SqliteRun(connection_->addProject).With(std::string_view(key), std::string_view(name)).Finish();
    return {sqlite3_last_insert_rowid(connection_->file.Get()), key, name, 0, 0};
}

void SqliteStore::AdvanceProject(const StoredProject& project) {
    SqliteRun(connection_->advanceProject).With(project.revision, project.lastId, project.number).Finish();
}

// --- commits -----------------------------------------------------------------------------------------------

std::optional<StoredCommit> SqliteStore::FindCommit(std::int64_t project, const std::string& id) {
    SqliteRun run(connection_->findCommit);
    if (!run.With(project, std::string_view(id)).Next()) return std::nullopt;
    StoredCommit commit;
    commit.id = id;
    commit.device = run.Device();
    commit.author = run.Text();
    commit.base = run.Whole();
    commit.own = ReadOwn(run.Text());
    commit.revision = run.Whole();
    commit.head = run.Text();
    commit.lastId = run.Whole();
    commit.digest = run.Text();
    commit.answer = run.Text();
    return commit;
}

void SqliteStore::AddCommit(std::int64_t project, const StoredCommit& commit) {
    const std::string own = OwnText(commit.own);
    SqliteRun(connection_->addCommit)
        .With(project, std::string_view(commit.id), std::int64_t{commit.device},
              std::string_view(commit.author), commit.base, std::string_view(own), commit.revision,
              std::string_view(commit.head), commit.lastId, std::string_view(commit.digest),
              std::string_view(commit.answer))
        .Finish();
}

std::string SqliteStore::HeadOf(std::int64_t project, std::int64_t revision) {
    SqliteRun run(connection_->headOf);
    return run.With(project, revision).Next() ? std::string(run.Text()) : std::string();
}

std::string SqliteStore::AuthorOf(std::int64_t project, std::int64_t revision) {
    SqliteRun run(connection_->authorOf);
    return run.With(project, revision).Next() ? std::string(run.Text()) : std::string();
}

// --- items -------------------------------------------------------------------------------------------------

bool SqliteStore::FindItem(std::int64_t project, CloudKind kind, std::int64_t id, StoredItem& item) {
    SqliteRun run(connection_->Of(kind).find);
    if (!run.With(project, id).Next()) return false;
    ReadItem(run, kind, item);
    return true;
}

void SqliteStore::AddItem(std::int64_t project, const StoredItem& item) {
    SqliteRun run(connection_->Of(item.kind).add);
    run.With(project, item.id);
    if (item.kind == CloudKind::point) run.Bind(item.group);
    BindMark(run, item.created);
    BindMark(run, item.changed);
    run.BindNull().BindNull();
    BindValues(run, item);
    run.Finish();
}

void SqliteStore::ChangeItem(std::int64_t project, const StoredItem& item) {
    SqliteRun run(connection_->Of(item.kind).change);
    BindMark(run, item.changed);
    BindValues(run, item);
    run.With(project, item.id).Finish();
}

void SqliteStore::DeleteItem(std::int64_t project, CloudKind kind, std::int64_t id, Mark deleted) {
    SqliteRun run(connection_->Of(kind).remove);
    BindMark(run, deleted);
    run.With(project, id).Finish();
}

void SqliteStore::DeletePointsOf(std::int64_t project, std::int64_t group, Mark deleted) {
    SqliteRun run(connection_->deletePoints);
    BindMark(run, deleted);
    run.With(project, group).Finish();
}

void SqliteStore::ChangedPointsOf(std::int64_t project, std::int64_t group, std::int64_t after,
                                  const TakeItem& take) {
    StoredItem point;
    SqliteRun run(connection_->changedPoints);
    run.With(project, group, after);
    while (run.Next()) {
        ReadItem(run, CloudKind::point, point);
        take(point);
    }
}

std::vector<Setter> SqliteStore::SettersOf(std::int64_t project, CloudKind kind, std::int64_t id) {
    std::vector<Setter> setters;
    SqliteRun run(connection_->setters);
    run.With(project, static_cast<std::int64_t>(kind), id);
    while (run.Next()) {
        const auto bit = static_cast<std::uint32_t>(run.Whole());
        setters.push_back({bit, ReadMark(run)});
    }
    return setters;
}

void SqliteStore::SetSetter(std::int64_t project, CloudKind kind, std::int64_t id, const Setter& setter) {
    SqliteRun run(connection_->setSetter);
    run.With(project, static_cast<std::int64_t>(kind), id, std::int64_t{setter.bit});
    BindMark(run, setter.set);
    run.Finish();
}

void SqliteStore::AddHistory(std::int64_t project, const HistoryEntry& entry) {
    SqliteRun run(connection_->addHistory);
    run.With(project, static_cast<std::int64_t>(entry.kind), entry.id, std::int64_t{entry.bit},
             std::string_view(entry.value));
    BindMark(run, entry.set);
    BindMark(run, entry.replaced);
    run.Finish();
}

std::vector<HistoryEntry> SqliteStore::HistoryOf(std::int64_t project, CloudKind kind, std::int64_t id) {
    std::vector<HistoryEntry> entries;
    SqliteRun run(connection_->history);
    run.With(project, static_cast<std::int64_t>(kind), id);
    while (run.Next()) {
        HistoryEntry& entry = entries.emplace_back();
        entry.kind = kind;
        entry.id = id;
        entry.bit = static_cast<std::uint32_t>(run.Whole());
        entry.value = run.Text();
        entry.set = ReadMark(run);
        entry.replaced = ReadMark(run);
    }
    return entries;
}

// --- the map library ---------------------------------------------------------------------------------------

std::optional<MapPart> SqliteStore::MapDatum(std::int64_t project, MapPlace place) {
    return ReadMapPart(
        std::move(
            SqliteRun(connection_->mapDatum).With(project, place.selector1, place.selector2, place.index)),
        kSelectedDatum, kDatumFields);
}

void SqliteStore::SetMapDatum(std::int64_t project, MapPlace place, const MapPart& datum) {
    SqliteRun run(connection_->setMapDatum);
    run.With(project, place.selector1, place.selector2, place.index);
    BindMark(run, datum.set);
    for (const Value& value : datum.values) BindValue(run, value);
    run.Finish();
}

std::optional<MapPart> SqliteStore::MapLibrary(std::int64_t project) {
    return ReadMapPart(std::move(SqliteRun(connection_->mapLibrary).With(project)), kMapLibrary,
                       kLibraryFields);
}

void SqliteStore::SetMapLibrary(std::int64_t project, const MapPart& library) {
    SqliteRun run(connection_->setMapLibrary);
    run.With(project);
    BindMark(run, library.set);
    for (const Value& value : library.values) BindValue(run, value);
    run.Finish();
}

std::vector<std::int64_t> SqliteStore::GroupsAt(std::int64_t project, const std::optional<MapPlace>& place) {
    std::vector<std::int64_t> ids;
    SqliteRun run(connection_->groupsAt);
    run.With(project);
    if (place)
        run.With(place->selector1, place->selector2, place->index);
    else
        run.BindNull().BindNull().BindNull();
    while (run.Next()) ids.push_back(run.Whole());
    return ids;
}

// --- what is newer -----------------------------------------------------------------------------------------

// Ids grow with revisions: what was made behind a revision is found by its id.
std::int64_t SqliteStore::LastIdAt(std::int64_t project, std::int64_t revision) {
    SqliteRun run(connection_->lastId);
    return run.With(project, revision).Next() ? run.Whole() : 0;
}

std::size_t SqliteStore::Newer(std::int64_t project, CloudKind kind, const PullWindow& window,
                               std::int64_t after, std::size_t limit, const TakeItem& take) {
    ItemStatements& statements = connection_->Of(kind);
    const std::string own = OwnText(window.own);
    std::size_t given = 0;
    StoredItem item;
    const auto give = [&](SqliteStatement& statement, std::int64_t behind, std::int64_t last) {
        SqliteRun run(statement);
        run.With(project, behind, window.revision, window.upTo, std::string_view(own),
                 static_cast<std::int64_t>(limit - given), last);
        for (; run.Next(); ++given) {
            ReadItem(run, kind, item);
            take(item);
        }
    };
    const std::int64_t old = LastIdAt(project, window.revision);
    if (after < old) {
        const auto most = static_cast<std::int64_t>(limit);
        SqliteRun count(statements.countChanged);
        const bool few = count.With(project, window.revision, most + 1).Next() && count.Whole() <= most;
        give(few ? statements.fewChanged : statements.manyChanged, after, old);
    }
    if (given < limit) give(statements.made, std::max(after, old), LastIdAt(project, window.upTo));
    return given;
}

std::vector<Deletion> SqliteStore::NewerDeletions(std::int64_t project, CloudKind kind,
                                                  const PullWindow& window, const Deletion& after,
                                                  std::size_t limit) {
    const std::string own = OwnText(window.own);
    SqliteRun run(connection_->Of(kind).newerDeletions);
    run.With(project, window.upTo, window.revision, after.deleted.revision, std::string_view(own), after.id,
             static_cast<std::int64_t>(limit), std::int64_t{window.device});
    std::vector<Deletion> deletions;
    while (run.Next()) {
        Deletion& deletion = deletions.emplace_back();
        deletion.id = run.Whole();
        deletion.deleted = ReadMark(run);
        deletion.unseen = run.Whole() != 0;
    }
    return deletions;
}

std::unique_ptr<Transport> OpenStore(const std::string& path) {
    return std::make_unique<SyncServer>(std::make_unique<SqliteStore>(path));
}

}  // namespace gpssync
