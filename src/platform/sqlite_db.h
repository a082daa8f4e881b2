#pragma once
// Thin RAII wrappers over the SQLite C API: a connection and prepared
// statements with cached preparation. Nothing here throws; every call
// reports the SQLite result code.
#include <sqlite3.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace braxcfg::platform {

class SqliteStatement {
public:
    SqliteStatement() = default;
    explicit SqliteStatement(sqlite3_stmt* stmt) : stmt_(stmt) {}
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;
    SqliteStatement(SqliteStatement&& other) noexcept : stmt_(other.stmt_) { other.stmt_ = nullptr; }

    bool valid() const { return stmt_ != nullptr; }
    // Bind parameters by 1-based position.
    SqliteStatement& bind(int index, std::int64_t value);
    SqliteStatement& bindBlob(int index, std::string_view bytes);
    // SQLITE_ROW, SQLITE_DONE or an error code.
    int step();
    // Resets and clears bindings so the statement can run again.
    void reset();

    std::int64_t columnInt(int column) const;
    std::string_view columnBlob(int column) const;

private:
    sqlite3_stmt* stmt_ = nullptr;
};

class SqliteConnection {
public:
    SqliteConnection() = default;
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    // flags: SQLITE_OPEN_* (SQLITE_OPEN_URI is always added).
    int open(const std::string& uri, int flags);
    void close();
    bool isOpen() const { return db_ != nullptr; }
    sqlite3* handle() const { return db_; }

    // Runs SQL that returns no rows we need.
    int exec(const char* sql);
    // A prepared statement kept for the life of the connection, reset and
    // ready to bind. Null (invalid) when preparation failed.
    SqliteStatement* cached(const char* sql);
    // A single integer result (first column of the first row); `fallback`
    // when there is no row or the query fails.
    std::int64_t queryInt(const char* sql, std::int64_t fallback);
    std::string lastError() const;

private:
    sqlite3* db_ = nullptr;
    std::map<const char*, std::unique_ptr<SqliteStatement>> statements_;
};

// Resets a cached statement when the scope ends, so it holds no read lock.
class StatementUse {
public:
    explicit StatementUse(SqliteStatement* stmt) : stmt_(stmt) {}
    ~StatementUse() {
        if (stmt_) stmt_->reset();
    }
    StatementUse(const StatementUse&) = delete;
    StatementUse& operator=(const StatementUse&) = delete;
    SqliteStatement* operator->() const { return stmt_; }
    bool valid() const { return stmt_ != nullptr && stmt_->valid(); }

private:
    SqliteStatement* stmt_;
};

}  // namespace braxcfg::platform
