#include "host/cloud/SqliteFile.h"

#include <filesystem>
#include <new>
#include <system_error>

#include "host/cloud/Transport.h"

namespace gpssync {

namespace {

using Kind = TransportError::Kind;

struct Advice {
    Kind kind;
    const char* text;
};

// What it means to who has sent something, and what to do about it. As long as it can be tried again it was
// no answer.
Advice WhatToDo(int error) {
    switch (error & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return {
                Kind::noAnswer,
                "another program is at work with it: try again; when it stays like that, find the program "
                "that holds it, and on a network drive see whether its locks work"};
        case SQLITE_FULL:
            return {Kind::noAnswer, "make room on the disk, and try again"};
        case SQLITE_READONLY:
        case SQLITE_PERM:
            return {Kind::noAnswer, "it can only be read: get the right to write the file and its folder"};
        case SQLITE_CANTOPEN:
            return {Kind::noAnswer, "look at the folder, and at your rights there"};
        case SQLITE_IOERR:
        case SQLITE_PROTOCOL:
            return {Kind::noAnswer, "the disk or the network may be failing: try again, or copy the store"};
        case SQLITE_NOTADB:
            return {Kind::damaged, "it is no store of shared projects; choose another file"};
        case SQLITE_CORRUPT:
        case SQLITE_SCHEMA:
        case SQLITE_CONSTRAINT:
        case SQLITE_MISMATCH:
        case SQLITE_ERROR:
            return {Kind::damaged, "it is damaged: keep it as it is, and put back a copy"};
        case SQLITE_TOOBIG:
            return {Kind::refused, "something in it is too large"};
        default:
            return {Kind::noAnswer, "try again"};
    }
}

}  // namespace

SqliteFile::SqliteFile(const std::string& path, bool make, int patience) : path_(path) {
    // A full path is always the name of a file; others may mean something else to SQLite.
    std::error_code error;
    const std::string full = std::filesystem::absolute(path, error).string();
    sqlite3* db = nullptr;
    // Its user sees to it that only one thread at a time is here.
    const int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_READWRITE | (make ? SQLITE_OPEN_CREATE : 0);
    const int result = sqlite3_open_v2(full.c_str(), &db, flags, nullptr);
    db_.reset(db);
    if (!db) throw std::bad_alloc();
    if (result != SQLITE_OK) Fail("cannot be opened");
    sqlite3_extended_result_codes(db, 1);
    sqlite3_busy_timeout(db, patience);
}

void SqliteFile::Do(const char* what, const char* sql) {
    if (sqlite3_exec(Get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) Fail(what);
}

std::int64_t SqliteFile::Number(const char* what, const char* sql) {
    SqliteStatement statement(*this, what, sql);
    SqliteRun run(statement);
    return run.Next() ? run.Whole() : 0;
}

void SqliteFile::Fail(const char* what) const {
    const int error = sqlite3_extended_errcode(Get());
    if (error == SQLITE_NOMEM || error == SQLITE_IOERR_NOMEM) throw std::bad_alloc();
    const Advice advice = WhatToDo(error);
    throw TransportError(advice.kind,
                         path_ + ": " + what + ": " + sqlite3_errmsg(Get()) + "; " + advice.text);
}

void SqliteStatement::Prepare() {
    if (statement_) return;
    if (sqlite3_prepare_v3(file_.Get(), sql_.c_str(), static_cast<int>(sql_.size()),
                           SQLITE_PREPARE_PERSISTENT, &statement_, nullptr) != SQLITE_OK)
        file_.Fail(what_);
}

SqliteRun::SqliteRun(SqliteStatement& statement) : statement_(statement) { statement_.Prepare(); }

SqliteRun& SqliteRun::Check(int result) {
    if (result != SQLITE_OK) statement_.file_.Fail(statement_.what_);
    return *this;
}

SqliteRun& SqliteRun::Bind(std::string_view text) {
    // An empty view may have no address, which would be NULL.
    const char* const bytes = text.empty() ? "" : text.data();
    return Check(sqlite3_bind_text64(Get(), ++bound_, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8));
}

bool SqliteRun::Next() {
    column_ = -1;
    const int result = sqlite3_step(Get());
    if (result == SQLITE_ROW) return true;
    if (result != SQLITE_DONE) statement_.file_.Fail(statement_.what_);
    return false;
}

std::string_view SqliteRun::Text() {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(Get(), ++column_));
    if (!bytes) return {};
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(Get(), column_))};
}

}  // namespace gpssync
