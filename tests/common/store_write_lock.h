#pragma once
// Holds a store's write lock, as another process in the middle of a change
// would, until release() or the end of the scope (which rolls back).
#include <string>

#include "platform/sqlite_db.h"

namespace braxcfg::test {

class StoreWriteLock {
public:
    explicit StoreWriteLock(const std::string& path) {
        if (db_.open(path, SQLITE_OPEN_READWRITE) == SQLITE_OK) held_ = db_.exec("BEGIN IMMEDIATE") == SQLITE_OK;
    }
    // Whether the lock was taken; a test that relies on it asserts this.
    bool held() const { return held_; }
    void release() {
        if (db_.isOpen()) db_.close();
        held_ = false;
    }

private:
    platform::SqliteConnection db_;
    bool held_ = false;
};

}  // namespace braxcfg::test
