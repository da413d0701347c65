// New points sent to a shared project in a file and pulled by another program, against bare inserts and
// selects of the same columns.
#include "bench/SyncStore.h"

#include <sqlite3.h>

#include <charconv>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Store.h"
#include "bench/Work.h"
#include "bench/Workload.h"
#include "host/cloud/SqliteStore.h"

namespace bench {

namespace {

namespace fs = std::filesystem;

void Need(bool ok, const char* what) {
    if (!ok) throw std::runtime_error(std::string("bench: ") + what);
}

std::string Fresh(const std::string& name) {
    const std::string path = ScratchFile(name);
    fs::remove(path);
    return path;
}

// Calls text, real and whole for every column of a point, in the order of a record.
template <class Point, class Text, class Real, class Whole>
void ForColumns(Point& p, Text text, Real real, Whole whole) {
    text(p.name);
    text(p.code);
    for (auto* value : {&p.lat, &p.lon, &p.h}) real(*value);  // as plane coordinates
    whole(p.quality);
    whole(p.year);
    whole(p.month);
    whole(p.day);
    whole(p.tod);
    whole(p.quality);
    whole(p.gps);
    whole(p.glonass);
    for (auto* value : {&p.lat, &p.lon, &p.h, &p.antenna, &p.pdop, &p.pdop, &p.hrms, &p.vrms}) real(*value);
    for (auto& value : p.cov) whole(value);
}

// --- the server --------------------------------------------------------------------------------------------

class Line {
public:
    void Text(const std::string& text) { text_ += ";" + text; }
    template <class Number>
    void Value(Number value) {
        char digits[32];
        text_ += ';';
        text_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    }
    std::string text_;
};

std::string PointRecords(std::size_t n) {
    std::string records;
    for (std::size_t i = 0; i < n; ++i) {
        Fix fix = MakeFix(i);
        for (float& cov : fix.cov) cov *= 1e9F;
        Line line;
        line.text_ = records.empty() ? "IPTGPS;1" : "\r\nIPTGPS;1";
        ForColumns(
            fix, [&](const std::string& t) { line.Text(t); }, [&](double v) { line.Value(v); },
            [&](auto v) { line.Value(static_cast<std::int32_t>(v)); });
        records += line.text_;
    }
    return records;
}

std::string GroupRecord() {
    std::string record = "IBAS;base;;0;0;0;0;;0;0;0;0;0;0;0";
    record += ";0;0;0;0;0;0;0;0;0;0;0;0;0;0";  // settings of the conversion
    for (const char* type : {"", "", ";0"}) {  // the three datums
        record += type;
        record += ";;0;0;0;0;0;0;0;0;NULLVAL;NULLVAL";
    }
    for (int i = 0; i < 22; ++i) record += ";0";  // plane and height
    return record;
}

std::string CommitId(int number) {
    const std::string digits = std::to_string(number);
    return std::string(32 - digits.size(), '0') + digits;
}

struct Shared {
    std::string path = ScratchFile("shared");
    std::string records, key;
    std::unique_ptr<gpssync::Transport> first, second;
};

void SendAndPull(Shared& shared, std::size_t n) {
    const auto answer =
        shared.first->Commit(shared.key, {1, "Anna"}, {CommitId(2), 1, {}, {}, shared.records});
    Need(answer.refused.empty() && answer.ids.size() == n, "the server refuses points");
    gpssync::PullRequest request{1, {}, {}, 0, ""};
    std::size_t pulled = 0;
    for (;;) {
        const auto page = shared.second->Pull(shared.key, {2, "Bruno"}, request);
        pulled += page.replies.size();
        if (page.last) break;
        request.upTo = page.upTo;
        request.next = page.next;
    }
    Need(pulled == n, "the server gave other points");
}

Work ServerWork() {
    return {"sync.server", [](std::size_t n) -> Run {
                auto shared = std::make_shared<Shared>();
                shared->records = PointRecords(n);
                return Run{[shared, n] { SendAndPull(*shared, n); },
                           [shared] {
                               shared->first.reset();
                               shared->second.reset();
                               fs::remove(shared->path);
                               shared->first = gpssync::OpenStore(shared->path);
                               shared->second = gpssync::OpenStore(shared->path);
                               shared->key = shared->first->OpenProject("site", true).key;
                               const auto answer = shared->first->Commit(
                                   shared->key, {1, "Anna"}, {CommitId(1), 0, {}, {}, GroupRecord()});
                               Need(answer.refused.empty(), "the server refuses a group");
                           }};
            }};
}

// --- SQLite itself -----------------------------------------------------------------------------------------

using Db = std::unique_ptr<sqlite3, int (*)(sqlite3*)>;
using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

void Do(sqlite3* db, const std::string& sql) {
    Need(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, sqlite3_errmsg(db));
}

Db Open(const std::string& file) {
    sqlite3* db = nullptr;
    Need(sqlite3_open(file.c_str(), &db) == SQLITE_OK, "SQLite cannot open its file");
    Do(db, "PRAGMA synchronous = EXTRA; PRAGMA cache_size = -32768");
    return {db, sqlite3_close};
}

Statement Prepare(sqlite3* db, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    Need(sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK, sqlite3_errmsg(db));
    return {statement, sqlite3_finalize};
}

struct Bare {
    std::vector<Fix> fixes;
    std::string insert, select;
    Db first{nullptr, sqlite3_close}, second{nullptr, sqlite3_close};
};

void Close(Bare& bare) {
    bare.first.reset();
    bare.second.reset();
}

// A table of the same columns, and nothing else.
void MakePlainTable(Bare& bare) {
    Close(bare);
    const std::string file = Fresh("bare");
    bare.first = Open(file);
    std::string columns = "id INTEGER PRIMARY KEY, group_id INTEGER";
    int i = 0;
    const auto column = [&](const char* type) { columns += ", c" + std::to_string(++i) + " " + type; };
    Fix any;
    ForColumns(
        any, [&](auto&) { column("TEXT"); }, [&](auto&) { column("REAL"); },
        [&](auto&) { column("INTEGER"); });
    Do(bare.first.get(), "CREATE TABLE points (" + columns + ") STRICT");
    std::string marks = "?, ?";
    for (int k = 0; k < i; ++k) marks += ", ?";
    bare.insert = "INSERT INTO points VALUES (" + marks + ")";
    bare.select = "SELECT * FROM points ORDER BY id";
    bare.second = Open(file);
}

// The store's own table, with its key, its checks and its indexes.
void MakeStoreTable(Bare& bare) {
    Close(bare);
    const std::string file = Fresh("bare");
    Need(gpssync::OpenStore(file)->OpenProject("site", true).made, "the store was there");
    bare.first = Open(file);
    std::string values;
    const Statement columns =
        Prepare(bare.first.get(), "SELECT name FROM pragma_table_info('points') ORDER BY cid");
    for (int i = 0; sqlite3_step(columns.get()) == SQLITE_ROW; ++i)
        if (i >= 9)  // project, id, group, and three marks in front
            values +=
                std::string(", ") + reinterpret_cast<const char*>(sqlite3_column_text(columns.get(), 0));
    std::string marks = "?, ?";
    for (const char c : values) marks += c == ',' ? ", ?" : "";
    bare.insert =
        "INSERT INTO points (project, created_revision, created_device, changed_revision, changed_device, "
        "id, group_id" +
        values + ") VALUES (1, 2, 1, 2, 1, " + marks + ")";
    bare.select = "SELECT id, group_id" + values +
                  ", created_revision, changed_revision, changed_device, deleted_revision FROM points WHERE "
                  "project = 1 ORDER BY id";
    bare.second = Open(file);
}

void InsertAndSelect(Bare& bare) {
    Do(bare.first.get(), "BEGIN IMMEDIATE");
    const Statement insert = Prepare(bare.first.get(), bare.insert);
    sqlite3_int64 id = 0;
    for (const Fix& fix : bare.fixes) {
        int i = 2;
        sqlite3_bind_int64(insert.get(), 1, ++id);
        sqlite3_bind_int64(insert.get(), 2, 1);
        ForColumns(
            fix,
            [&](const std::string& t) {
                sqlite3_bind_text(insert.get(), ++i, t.data(), static_cast<int>(t.size()), SQLITE_STATIC);
            },
            [&](double v) { sqlite3_bind_double(insert.get(), ++i, v); },
            [&](auto v) { sqlite3_bind_int64(insert.get(), ++i, static_cast<std::int32_t>(v)); });
        Need(sqlite3_step(insert.get()) == SQLITE_DONE, sqlite3_errmsg(bare.first.get()));
        sqlite3_reset(insert.get());
    }
    Do(bare.first.get(), "COMMIT");

    const Statement select = Prepare(bare.second.get(), bare.select);
    std::vector<Fix> read;
    while (sqlite3_step(select.get()) == SQLITE_ROW) {
        int i = 1;
        ForColumns(
            read.emplace_back(),
            [&](std::string& t) {
                const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(select.get(), ++i));
                t.assign(bytes, static_cast<std::size_t>(sqlite3_column_bytes(select.get(), i)));
            },
            [&](double& v) { v = sqlite3_column_double(select.get(), ++i); },
            [&](auto& v) {
                v = static_cast<std::remove_reference_t<decltype(v)>>(sqlite3_column_int(select.get(), ++i));
            });
    }
    Need(read.size() == bare.fixes.size(), "SQLite gave other points");
}

Work BareWork(const std::string& name, void (*makeTable)(Bare&)) {
    return {name, [makeTable](std::size_t n) -> Run {
                auto bare = std::make_shared<Bare>();
                bare->fixes = MakeFixes(n);
                for (Fix& fix : bare->fixes)
                    for (float& cov : fix.cov) cov *= 1e9F;
                return Run{[bare] { InsertAndSelect(*bare); }, [bare, makeTable] { makeTable(*bare); }};
            }};
}

}  // namespace

Work BareStoreWork() { return BareWork("sync.bare.store", MakeStoreTable); }
Work BareTableWork() { return BareWork("sync.bare.table", MakePlainTable); }

std::vector<Ratio> SyncStoreRatios() {
    return {{"sync.server/bare",
             ServerWork(),
             BareStoreWork(),
             {100'000},
             [](std::size_t) { return 3.0; },
             0,
             0,
             true}};
}

}  // namespace bench
