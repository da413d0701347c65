// SqliteFile: a database file and its statements, with errors as TransportError.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace gpssync {

class SqliteFile {
public:
    /// Opens, and makes the file when it is not there and `make` says so. Waits up to `patience` milliseconds
    /// for other programs whenever these are at the file.
    SqliteFile(const std::string& path, bool make, int patience);

    sqlite3* Get() const { return db_.get(); }
    const std::string& Path() const { return path_; }

    void Do(const char* what, const char* sql);
    std::int64_t Number(const char* what, const char* sql);

    /// Throws what the last error was. `what`: what could not be done.
    [[noreturn]] void Fail(const char* what) const;

private:
    struct Close {
        void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
    };
    std::string path_;
    std::unique_ptr<sqlite3, Close> db_;
};

/// A prepared statement, which is made at its first use.
class SqliteStatement {
public:
    SqliteStatement(SqliteFile& file, const char* what, std::string sql)
        : file_(file), what_(what), sql_(std::move(sql)) {}
    ~SqliteStatement() { sqlite3_finalize(statement_); }
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

private:
    friend class SqliteRun;
    void Prepare();

    SqliteFile& file_;
    const char* what_;
    std::string sql_;
    sqlite3_stmt* statement_ = nullptr;
};

/// One use of a statement: parameters in their order, then rows. Texts have to stay until it is over.
class SqliteRun {
public:
    explicit SqliteRun(SqliteStatement& statement);
    ~SqliteRun() { sqlite3_reset(statement_.statement_); }
    SqliteRun(const SqliteRun&) = delete;
    SqliteRun& operator=(const SqliteRun&) = delete;

    template <class... Values>
    SqliteRun& With(const Values&... values) {
        (Bind(values), ...);
        return *this;
    }
    SqliteRun& Bind(std::int64_t value) { return Check(sqlite3_bind_int64(Get(), ++bound_, value)); }
    SqliteRun& Bind(double value) { return Check(sqlite3_bind_double(Get(), ++bound_, value)); }
    SqliteRun& Bind(std::string_view text);
    SqliteRun& BindNull() { return Check(sqlite3_bind_null(Get(), ++bound_)); }

    /// True with a row, false at the end.
    bool Next();
    /// For a statement without rows.
    void Finish() {
        while (Next()) {
        }
    }

    /// Columns of the row, from the first one on.
    std::int64_t Whole() { return sqlite3_column_int64(Get(), ++column_); }
    std::int32_t Device() { return sqlite3_column_int(Get(), ++column_); }
    double Real() { return sqlite3_column_double(Get(), ++column_); }
    /// Of the column that was read last.
    bool WasNull() const { return sqlite3_column_type(Get(), column_) == SQLITE_NULL; }
    std::string_view Text();

private:
    sqlite3_stmt* Get() const { return statement_.statement_; }
    SqliteRun& Check(int result);

    SqliteStatement& statement_;
    int bound_ = 0;
    int column_ = -1;
};

}  // namespace gpssync
