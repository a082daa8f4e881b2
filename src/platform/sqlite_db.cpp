#include "platform/sqlite_db.h"

namespace braxcfg::platform {

SqliteStatement::~SqliteStatement() {
    if (stmt_) sqlite3_finalize(stmt_);
}

SqliteStatement& SqliteStatement::bind(int index, std::int64_t value) {
    sqlite3_bind_int64(stmt_, index, value);
    return *this;
}

SqliteStatement& SqliteStatement::bindBlob(int index, std::string_view bytes) {
    // A zero-length blob must still be a blob, not NULL: give SQLite a
    // non-null pointer.
    static const char empty = 0;
    sqlite3_bind_blob(stmt_, index, bytes.empty() ? &empty : bytes.data(), static_cast<int>(bytes.size()),
                      SQLITE_TRANSIENT);
    return *this;
}

int SqliteStatement::step() { return sqlite3_step(stmt_); }

void SqliteStatement::reset() {
    sqlite3_reset(stmt_);
    sqlite3_clear_bindings(stmt_);
}

std::int64_t SqliteStatement::columnInt(int column) const { return sqlite3_column_int64(stmt_, column); }

std::string_view SqliteStatement::columnBlob(int column) const {
    const void* data = sqlite3_column_blob(stmt_, column);
    const int size = sqlite3_column_bytes(stmt_, column);
    if (!data || size <= 0) return {};
    return {static_cast<const char*>(data), static_cast<std::size_t>(size)};
}

SqliteConnection::~SqliteConnection() { close(); }

int SqliteConnection::open(const std::string& uri, int flags) {
    close();
    const int rc = sqlite3_open_v2(uri.c_str(), &db_, flags | SQLITE_OPEN_URI, nullptr);
    if (rc != SQLITE_OK) {
        // Keep the handle long enough to read the message, then drop it.
        return rc;
    }
    sqlite3_extended_result_codes(db_, 0);
    return rc;
}

void SqliteConnection::close() {
    statements_.clear();
    if (db_) sqlite3_close_v2(db_);
    db_ = nullptr;
}

int SqliteConnection::exec(const char* sql) { return sqlite3_exec(db_, sql, nullptr, nullptr, nullptr); }

SqliteStatement* SqliteConnection::cached(const char* sql) {
    auto& slot = statements_[sql];
    if (!slot) {
        sqlite3_stmt* stmt = nullptr;
        if (sqlite3_prepare_v3(db_, sql, -1, SQLITE_PREPARE_PERSISTENT, &stmt, nullptr) != SQLITE_OK) {
            sqlite3_finalize(stmt);
            statements_.erase(sql);
            return nullptr;
        }
        slot = std::make_unique<SqliteStatement>(stmt);
    }
    return slot.get();
}

std::int64_t SqliteConnection::queryInt(const char* sql, std::int64_t fallback) {
    StatementUse stmt(cached(sql));
    if (!stmt.valid() || stmt->step() != SQLITE_ROW) return fallback;
    return stmt->columnInt(0);
}

std::string SqliteConnection::lastError() const { return db_ ? sqlite3_errmsg(db_) : "out of memory"; }

}  // namespace braxcfg::platform
