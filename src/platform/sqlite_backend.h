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
#include "platform/sqlite_subkey_lists.h"
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
    RegResult queryInfoKey(HKey key, std::uint32_t* subKeys, std::uint64_t* lastWriteTime) override;
    RegResult beginTransaction() override;
    RegResult commitTransaction() override;
    void rollbackTransaction() override;

private:
    friend class ReadScope;
    friend class WriteScope;

    // What the backend keeps for each handle it gave out: the key behind it
    // (the handle's owner, a StoreKey, lives above the backend).
    struct HandleState {
        std::int64_t id = 0;
        // An enumeration going on index by index through this handle: the
        // index that continues it and the list state it was served from.
        std::uint32_t nextIndex = 0;
        std::uint64_t scanStamp = 0;
    };
    struct StoredValue {
        std::string name;
        RegType type = kRegNone;
        std::string data;
    };

    // Runs `work(keyId)` on the live key behind `key` as one operation in
    // a ReadScope or WriteScope; a write commits when work succeeds. Takes
    // mutex_ itself: the public calls use it.
    template <typename Scope, typename Work>
    RegResult onKey(HKey key, Work&& work);

    // Every helper from here on runs with mutex_ held by its caller (a
    // public call, or a scope object one created); none takes it.

    // Handles and keys. Caller holds mutex_.
    HandleState* handleStateOf(HKey key);
    RegResult keyIdOf(HKey key, std::int64_t* id);
    bool keyExists(std::int64_t id);
    HKey newHandle(std::int64_t id);
    RegResult findPath(std::int64_t from, const char* subKey, std::int64_t* id);
    RegResult createPath(std::int64_t from, const char* subKey, std::int64_t* id, bool* created);
    RegResult findChild(std::int64_t parent, std::string_view name, std::int64_t* id);
    RegResult addChild(std::int64_t parent, std::string_view name, std::int64_t* id);
    RegResult removeLeafKey(std::int64_t id);

    // Values. Caller holds mutex_.
    RegResult readValue(std::int64_t keyId, const char* name, StoredValue* value);
    RegResult readValueAt(std::int64_t keyId, std::uint32_t index, StoredValue* value);
    RegResult storeValue(std::int64_t keyId, const char* name, RegType type, const std::string& bytes);

    // Kept subkey lists. Caller holds mutex_.
    // The current list of `open`'s key. `index` is the index asked for: an
    // enumeration that goes on through the same handle is served from the
    // list it began with, without asking the file again.
    RegResult currentChildren(HandleState& open, std::uint32_t index, const SubkeyLists::List** list);
    RegResult loadChildren(std::int64_t id, std::int64_t version, const SubkeyLists::List** list);
    // The list of key `id` when it is kept and current in this snapshot.
    const SubkeyLists::List* currentListOf(std::int64_t id);
    // The file's data version, read once per snapshot.
    std::int64_t dataVersion();
    // After a rollback that undid key creations or deletions no kept list
    // can be trusted; one that undid only value changes leaves them valid.
    void forgetSubkeyListsSince(std::uint64_t keyChanges);

    // Statements and transactions. Caller holds mutex_.
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
    void rollbackLocked();

    std::mutex mutex_;  // guards everything below
    std::unique_ptr<SqliteConnection> db_;
    bool writable_;
    int depth_ = 0;                // nesting of held transaction scopes
    RegResult failedWrite_ = kErrorSuccess;  // first write that failed inside them
    struct HeldScope {
        std::int64_t highestKeyId;  // as the scope began
        std::uint64_t keyChanges;   // keyChanges_ as the scope began
    };
    std::vector<HeldScope> scopes_;
    std::uint64_t keyChanges_ = 0;  // keys created or deleted by this process so far
    std::int64_t snapshotVersion_ = -1;  // the file's data version in this snapshot; -1 until read
    std::unordered_map<HKey, HandleState> handles_;
    HandleState root_;  // behind the predefined kLocalMachine
    SubkeyLists subkeyLists_;
};

}  // namespace braxcfg::platform
