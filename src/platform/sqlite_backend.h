#pragma once
// The store backend over one SQLite file (see store_backend.h for the
// contract). Keys are rows with ids that are never reused, so a handle on a
// deleted key can tell it was deleted and never reaches a newer key of the
// same name. Handles belong to this process.
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/sqlite_db.h"
#include "platform/store_backend.h"

namespace braxcfg::platform {

class SqliteBackend final : public StoreBackend {
public:
    // `db` is open and holds the store schema; `writable` false makes every
    // write fail with kErrorCantWrite.
    SqliteBackend(std::unique_ptr<SqliteConnection> db, bool writable);
    ~SqliteBackend() override;

    RegResult openKey(HKey parent, const char* subKey, RegAccess access, HKey* result) override;
    RegResult createKey(HKey parent, const char* subKey, RegAccess access, HKey* result,
                        bool* created) override;
    RegResult closeKey(HKey key) override;
    RegResult queryValue(HKey key, const char* name, RegType* type, std::uint8_t* data,
                         std::uint32_t* cbData) override;
    RegResult setValue(HKey key, const char* name, RegType type, const std::uint8_t* data,
                       std::uint32_t cbData) override;
    RegResult deleteValue(HKey key, const char* name) override;
    RegResult deleteKey(HKey parent, const char* subKey) override;
    RegResult enumKey(HKey key, std::uint32_t index, char* name, std::uint32_t cchName) override;
    RegResult enumValue(HKey key, std::uint32_t index, char* name, std::uint32_t* cchName, RegType* type,
                        std::uint8_t* data, std::uint32_t* cbData) override;
    RegResult beginTransaction() override;
    RegResult commitTransaction() override;
    void rollbackTransaction() override;

private:
    friend class ReadScope;
    friend class WriteScope;

    // Subkey names of one open key in enumeration order, valid while
    // nothing has changed the store since they were read.
    struct ChildList {
        bool loaded = false;
        std::uint64_t localStamp = 0;
        std::int64_t dataVersion = 0;
        std::vector<std::string> names;
    };
    struct OpenKey {
        std::int64_t id = 0;
        ChildList children;
    };
    struct StoredValue {
        std::string name;
        RegType type = kRegNone;
        std::string data;
    };

    // Runs `work(keyId)` on the live key behind `key` as one operation in
    // a ReadScope or WriteScope; a write commits when work succeeds.
    template <typename Scope, typename Work>
    RegResult onKey(HKey key, Work&& work);

    OpenKey* openKeyOf(HKey key);
    RegResult keyIdOf(HKey key, std::int64_t* id);
    RegResult findPath(std::int64_t from, const char* subKey, std::int64_t* id);
    RegResult createPath(std::int64_t from, const char* subKey, std::int64_t* id, bool* created);
    RegResult findChild(std::int64_t parent, std::string_view name, std::int64_t* id);
    RegResult addChild(std::int64_t parent, std::string_view name, std::int64_t* id);
    RegResult readValue(std::int64_t keyId, const char* name, StoredValue* value);
    RegResult readValueAt(std::int64_t keyId, std::uint32_t index, StoredValue* value);
    RegResult storeValue(std::int64_t keyId, const char* name, RegType type, const std::string& bytes);
    RegResult removeLeafKey(std::int64_t id);
    RegResult loadChildren(OpenKey& key);
    bool keyExists(std::int64_t id);
    HKey newHandle(std::int64_t id);
    std::int64_t dataVersion();
    RegResult sqlFailure(int rc, bool whileWriting);
    void noteFailedWrite(RegResult failure);
    bool run(const char* sql);
    // A statement failed in a way that ended a held transaction behind our
    // back; nothing more may run until the scope is closed.
    bool transactionLost() const;
    // Rolling back gives the ids of keys created since the scope began to
    // later keys; handles on those keys must not reach them.
    std::int64_t highestKeyId();
    void forgetKeysAfter(std::int64_t id);

    std::recursive_mutex mutex_;
    std::unique_ptr<SqliteConnection> db_;
    bool writable_;
    int depth_ = 0;                // nesting of held transaction scopes
    RegResult failedWrite_ = kErrorSuccess;  // first write that failed inside them
    std::vector<std::int64_t> scopeStartIds_;  // highestKeyId() as each scope began
    std::uint64_t localStamp_ = 1; // bumped on every change made or undone here
    std::unordered_map<HKey, OpenKey> handles_;
    OpenKey root_;  // behind the predefined kLocalMachine
};

}  // namespace braxcfg::platform
