#include "platform/sqlite_backend.h"

#include <atomic>
#include <cstring>
#include <utility>

#include "platform/debug_output.h"
#include "platform/sqlite_key_path.h"
#include "platform/sqlite_name_fold.h"
#include "platform/sqlite_schema.h"

namespace braxcfg::platform {
namespace {

constexpr RegResult kErrorNoAccess = 998;  // ERROR_NOACCESS: bad data pointer

bool bothViewFlags(RegAccess access) {
    return (access & kKeyWow64_64Key) != 0 && (access & kKeyWow64_32Key) != 0;
}

bool valueNameTooLong(const char* name) {
    return name != nullptr && std::strlen(name) > kMaxValueNameLength;
}

std::string_view valueName(const char* name) { return name ? std::string_view(name) : std::string_view(); }

// Handles are unique within the process, across every store it opens, so a
// handle kept from a store that was since replaced is simply unknown.
std::atomic<HKey> nextHandleNumber{0x1000};

// Copies stored bytes to a caller's buffer of `capacity` bytes. A string that
// was stored without its terminator gets one when there is room; it is not
// counted in the size reported back.
void copyData(const std::string& stored, RegType type, std::uint8_t* data, std::uint32_t capacity) {
    if (stored.empty()) return;
    std::memcpy(data, stored.data(), stored.size());
    if (isTextType(type) && stored.size() < capacity && stored.back() != '\0') data[stored.size()] = 0;
}

}  // namespace

// One store operation that only reads: its own snapshot unless a held
// transaction already provides one. Made and ended with the backend's
// mutex_ held by the caller.
class ReadScope {
public:
    explicit ReadScope(SqliteBackend& backend) : backend_(backend) {
        if (backend_.transactionLost()) return;
        if (backend_.depth_ == 0) {
            backend_.snapshotVersion_ = -1;
            began_ = backend_.run("BEGIN");
            ok_ = began_;
        } else {
            ok_ = true;
        }
    }
    ~ReadScope() {
        if (began_ && !backend_.run("COMMIT")) backend_.run("ROLLBACK");
    }
    ReadScope(const ReadScope&) = delete;
    ReadScope& operator=(const ReadScope&) = delete;
    RegResult status() const { return ok_ ? kErrorSuccess : kErrorBadDatabase; }
    // Reading needs no commit; the snapshot ends with the scope.
    RegResult commit() const { return kErrorSuccess; }

private:
    SqliteBackend& backend_;
    bool began_ = false;
    bool ok_ = false;
};

// One store operation that writes: a transaction of its own holding the
// write lock (waiting for other processes up to the busy timeout), or a
// savepoint inside a held transaction, so a failed operation leaves nothing
// half done either way. Made and ended with the backend's mutex_ held by
// the caller.
class WriteScope {
public:
    explicit WriteScope(SqliteBackend& backend) : backend_(backend) {
        if (!backend_.writable_ || backend_.transactionLost()) {
            status_ = kErrorCantWrite;
            backend_.noteFailedWrite(status_);
            return;
        }
        if (backend_.depth_ == 0) backend_.snapshotVersion_ = -1;
        const char* begin = backend_.depth_ == 0 ? "BEGIN IMMEDIATE" : "SAVEPOINT op";
        if (!backend_.run(begin)) {
            status_ = backend_.sqlFailure(sqlite3_errcode(backend_.db_->handle()), true);
            return;
        }
        open_ = true;
        changesAtStart_ = backend_.keyChanges_;
    }
    ~WriteScope() {
        if (open_) undo();
    }
    WriteScope(const WriteScope&) = delete;
    WriteScope& operator=(const WriteScope&) = delete;

    RegResult status() const { return status_; }

    RegResult commit() {
        open_ = false;
        const char* end = backend_.depth_ == 0 ? "COMMIT" : "RELEASE op";
        if (backend_.run(end)) return kErrorSuccess;
        const RegResult failure = backend_.sqlFailure(sqlite3_errcode(backend_.db_->handle()), true);
        undo();
        return failure;
    }

private:
    void undo() {
        open_ = false;
        backend_.forgetSubkeyListsSince(backend_.transactionLost() ? ~std::uint64_t{0} : changesAtStart_);
        if (backend_.depth_ == 0) {
            backend_.run("ROLLBACK");
        } else if (!backend_.transactionLost()) {
            backend_.run("ROLLBACK TO op");
            backend_.run("RELEASE op");
        }
    }

    SqliteBackend& backend_;
    RegResult status_ = kErrorSuccess;
    bool open_ = false;
    std::uint64_t changesAtStart_ = 0;
};

SqliteBackend::SqliteBackend(std::unique_ptr<SqliteConnection> db, bool writable)
    : db_(std::move(db)), writable_(writable) {
    root_.id = kRootKeyId;
}

SqliteBackend::~SqliteBackend() {
    std::lock_guard lock(mutex_);
    while (depth_ > 0) rollbackLocked();
}

template <typename Scope, typename Work>
RegResult SqliteBackend::onKey(HKey key, Work&& work) {
    std::lock_guard lock(mutex_);
    Scope scope(*this);
    if (scope.status() != kErrorSuccess) return scope.status();
    std::int64_t id = 0;
    if (const RegResult rc = keyIdOf(key, &id); rc != kErrorSuccess) return rc;
    if (const RegResult rc = work(id); rc != kErrorSuccess) return rc;
    return scope.commit();
}

bool SqliteBackend::run(const char* sql) {
    StatementUse stmt(db_->cached(sql));
    return stmt.valid() && stmt->step() == SQLITE_DONE;
}

bool SqliteBackend::transactionLost() const {
    return depth_ > 0 && sqlite3_get_autocommit(db_->handle()) != 0;
}

RegResult SqliteBackend::sqlFailure(int rc, bool whileWriting) {
    debugOutput("Configuration store: " + db_->lastError() + "\n");
    RegResult result = kErrorBadDatabase;
    switch (rc & 0xFF) {
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return kErrorBadDatabase;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            result = kErrorBusy;
            break;
        case SQLITE_FULL:
            result = kErrorDiskFull;
            break;
        default:
            result = whileWriting ? kErrorCantWrite : kErrorBadDatabase;
    }
    if (whileWriting) noteFailedWrite(result);
    return result;
}

// A write that failed inside a held transaction makes the whole transaction
// fail at its commit: a list is written whole or not at all.
void SqliteBackend::noteFailedWrite(RegResult failure) {
    if (depth_ > 0 && failedWrite_ == kErrorSuccess) failedWrite_ = failure;
}

HKey SqliteBackend::newHandle(std::int64_t id) {
    HKey handle = nextHandleNumber++;
    if (handle == kLocalMachine) handle = nextHandleNumber++;
    handles_[handle].id = id;
    return handle;
}

SqliteBackend::HandleState* SqliteBackend::handleStateOf(HKey key) {
    if (key == kLocalMachine) return &root_;
    const auto it = handles_.find(key);
    return it == handles_.end() ? nullptr : &it->second;
}

bool SqliteBackend::keyExists(std::int64_t id) {
    if (currentListOf(id)) return true;
    StatementUse stmt(db_->cached("SELECT 1 FROM keys WHERE id = ?"));
    return stmt.valid() && stmt->bind(1, id).step() == SQLITE_ROW;
}

RegResult SqliteBackend::keyIdOf(HKey key, std::int64_t* id) {
    const HandleState* open = handleStateOf(key);
    if (!open) return kErrorInvalidHandle;
    *id = open->id;
    return keyExists(open->id) ? kErrorSuccess : kErrorKeyDeleted;
}

// Looks the name up in the parent's kept list, read first when needed, so
// that walking a path reads each key's list once rather than querying the
// file per component on every open.
RegResult SqliteBackend::findChild(std::int64_t parent, std::string_view name, std::int64_t* id) {
    const SubkeyLists::List* list = currentListOf(parent);
    if (!list)
        if (const RegResult rc = loadChildren(parent, dataVersion(), &list); rc != kErrorSuccess) return rc;
    const std::string folded = foldName(name);
    const auto at = SubkeyLists::lowerBound(list->children, folded);
    if (at == list->children.end() || at->folded != folded) return kErrorFileNotFound;
    *id = at->id;
    return kErrorSuccess;
}

RegResult SqliteBackend::addChild(std::int64_t parent, std::string_view name, std::int64_t* id) {
    StatementUse stmt(db_->cached("INSERT INTO keys (parent, name, folded) VALUES (?, ?, ?)"));
    if (!stmt.valid()) return sqlFailure(sqlite3_errcode(db_->handle()), true);
    std::string folded = foldName(name);
    const int rc = stmt->bind(1, parent).bindBlob(2, name).bindBlob(3, folded).step();
    if (rc != SQLITE_DONE) return sqlFailure(rc, true);
    *id = sqlite3_last_insert_rowid(db_->handle());
    ++keyChanges_;
    subkeyLists_.added(parent, std::move(folded), name, *id);
    return kErrorSuccess;
}

RegResult SqliteBackend::findPath(std::int64_t from, const char* subKey, std::int64_t* id) {
    std::vector<std::string_view> names;
    if (const RegResult rc = splitKeyPath(subKey, &names); rc != kErrorSuccess) return rc;
    *id = from;
    for (const auto name : names)
        if (const RegResult rc = findChild(*id, name, id); rc != kErrorSuccess) return rc;
    return kErrorSuccess;
}

RegResult SqliteBackend::createPath(std::int64_t from, const char* subKey, std::int64_t* id, bool* created) {
    std::vector<std::string_view> names;
    if (const RegResult rc = splitKeyPath(subKey, &names); rc != kErrorSuccess) return rc;
    *id = from;
    *created = false;
    for (const auto name : names) {
        RegResult rc = findChild(*id, name, id);
        if (rc == kErrorFileNotFound) {
            rc = addChild(*id, name, id);
            *created = true;
        }
        if (rc != kErrorSuccess) return rc;
    }
    return kErrorSuccess;
}

RegResult SqliteBackend::openKey(HKey parent, const char* subKey, RegAccess access, HKey* result) {
    if (!result || bothViewFlags(access)) return kErrorInvalidParameter;
    std::lock_guard lock(mutex_);
    ReadScope scope(*this);
    if (scope.status() != kErrorSuccess) return scope.status();
    std::int64_t from = 0;
    RegResult rc = keyIdOf(parent, &from);
    if (rc == kErrorInvalidHandle) return rc;
    if (rc == kErrorSuccess && parent == kLocalMachine && (!subKey || !*subKey)) {
        *result = kLocalMachine;
        return kErrorSuccess;
    }
    std::int64_t id = 0;
    if (rc == kErrorSuccess) rc = findPath(from, subKey, &id);
    *result = rc == kErrorSuccess ? newHandle(id) : kNoKey;
    return rc;
}

RegResult SqliteBackend::createKey(HKey parent, const char* subKey, RegAccess access, HKey* result,
                                   bool* created) {
    if (!result || bothViewFlags(access)) return kErrorInvalidParameter;
    std::lock_guard lock(mutex_);
    std::int64_t id = 0;
    bool isNew = false;
    RegResult rc = kErrorSuccess;
    {
        // An existing key needs no write, so it opens in a read-only store too.
        ReadScope scope(*this);
        if (scope.status() != kErrorSuccess) return scope.status();
        std::int64_t from = 0;
        rc = keyIdOf(parent, &from);
        if (rc == kErrorInvalidHandle) return rc;
        if (rc == kErrorSuccess) rc = findPath(from, subKey, &id);
    }
    if (rc == kErrorFileNotFound) {
        WriteScope scope(*this);
        rc = scope.status();
        std::int64_t from = 0;
        if (rc == kErrorSuccess) rc = keyIdOf(parent, &from);
        if (rc == kErrorSuccess) rc = createPath(from, subKey, &id, &isNew);
        if (rc == kErrorSuccess) rc = scope.commit();
    }
    *result = rc == kErrorSuccess ? newHandle(id) : kNoKey;
    if (created && rc == kErrorSuccess) *created = isNew;
    return rc;
}

RegResult SqliteBackend::closeKey(HKey key) {
    std::lock_guard lock(mutex_);
    if (key == kLocalMachine) return kErrorSuccess;
    return handles_.erase(key) == 1 ? kErrorSuccess : kErrorInvalidHandle;
}

RegResult SqliteBackend::readValue(std::int64_t keyId, const char* name, StoredValue* value) {
    StatementUse stmt(db_->cached("SELECT name, type, data FROM key_values WHERE key_id = ? AND folded = ?"));
    if (!stmt.valid()) return sqlFailure(sqlite3_errcode(db_->handle()), false);
    const int rc = stmt->bind(1, keyId).bindBlob(2, foldName(valueName(name))).step();
    if (rc != SQLITE_ROW) return rc == SQLITE_DONE ? kErrorFileNotFound : sqlFailure(rc, false);
    value->name = stmt->columnBlob(0);
    value->type = static_cast<RegType>(stmt->columnInt(1));
    value->data = stmt->columnBlob(2);
    return kErrorSuccess;
}

RegResult SqliteBackend::readValueAt(std::int64_t keyId, std::uint32_t index, StoredValue* value) {
    StatementUse stmt(db_->cached(
        "SELECT name, type, data FROM key_values WHERE key_id = ? ORDER BY seq LIMIT 1 OFFSET ?"));
    if (!stmt.valid()) return sqlFailure(sqlite3_errcode(db_->handle()), false);
    const int rc = stmt->bind(1, keyId).bind(2, index).step();
    if (rc != SQLITE_ROW) return rc == SQLITE_DONE ? kErrorNoMoreItems : sqlFailure(rc, false);
    value->name = stmt->columnBlob(0);
    value->type = static_cast<RegType>(stmt->columnInt(1));
    value->data = stmt->columnBlob(2);
    return kErrorSuccess;
}

RegResult SqliteBackend::queryValue(HKey key, const char* name, RegType* type, std::uint8_t* data,
                                    std::uint32_t* cbData) {
    if ((data && !cbData) || valueNameTooLong(name)) return kErrorInvalidParameter;
    return onKey<ReadScope>(key, [&](std::int64_t id) {
        StoredValue value;
        if (const RegResult rc = readValue(id, name, &value); rc != kErrorSuccess) {
            if (rc == kErrorFileNotFound && !data && cbData) *cbData = 0;
            return rc;
        }
        if (type) *type = value.type;
        const auto size = static_cast<std::uint32_t>(value.data.size());
        if (data) {
            if (size > *cbData) {
                *cbData = size;
                return kErrorMoreData;
            }
            copyData(value.data, value.type, data, *cbData);
        }
        if (cbData) *cbData = size;
        return kErrorSuccess;
    });
}

RegResult SqliteBackend::setValue(HKey key, const char* name, RegType type, const std::uint8_t* data,
                                  std::uint32_t cbData) {
    if (valueNameTooLong(name)) return kErrorInvalidParameter;
    if (!data && cbData > 0) return kErrorNoAccess;
    std::uint32_t size = cbData;
    // A caller that counted a string without its terminator gets it stored
    // anyway when the byte after the data is the terminator.
    if (data && isTextType(type) && cbData > 0 && data[cbData - 1] != 0 && data[cbData] == 0) ++size;
    const std::string bytes = size ? std::string(reinterpret_cast<const char*>(data), size) : std::string();
    return onKey<WriteScope>(key, [&](std::int64_t id) { return storeValue(id, name, type, bytes); });
}

RegResult SqliteBackend::storeValue(std::int64_t keyId, const char* name, RegType type, const std::string& bytes) {
    StoredValue existing;
    const RegResult found = readValue(keyId, name, &existing);
    if (found == kErrorSuccess) {
        // Rewriting identical data changes nothing.
        if (existing.type == type && existing.data == bytes) return kErrorSuccess;
        // An existing value keeps its place in the enumeration and its name.
        StatementUse stmt(db_->cached("UPDATE key_values SET type = ?, data = ? WHERE key_id = ? AND folded = ?"));
        if (!stmt.valid()) return sqlFailure(sqlite3_errcode(db_->handle()), true);
        const int step =
            stmt->bind(1, type).bindBlob(2, bytes).bind(3, keyId).bindBlob(4, foldName(valueName(name))).step();
        return step == SQLITE_DONE ? kErrorSuccess : sqlFailure(step, true);
    }
    if (found != kErrorFileNotFound) return found;
    // A new value goes after every value the key has.
    StatementUse stmt(db_->cached(
        "INSERT INTO key_values (key_id, seq, name, folded, type, data) "
        "VALUES (?1, (SELECT IFNULL(MAX(seq), 0) + 1 FROM key_values WHERE key_id = ?1), ?2, ?3, ?4, ?5)"));
    if (!stmt.valid()) return sqlFailure(sqlite3_errcode(db_->handle()), true);
    const int step = stmt->bind(1, keyId)
                         .bindBlob(2, valueName(name))
                         .bindBlob(3, foldName(valueName(name)))
                         .bind(4, type)
                         .bindBlob(5, bytes)
                         .step();
    return step == SQLITE_DONE ? kErrorSuccess : sqlFailure(step, true);
}

RegResult SqliteBackend::deleteValue(HKey key, const char* name) {
    if (valueNameTooLong(name)) return kErrorInvalidParameter;
    return onKey<WriteScope>(key, [&](std::int64_t id) {
        StatementUse stmt(db_->cached("DELETE FROM key_values WHERE key_id = ? AND folded = ?"));
        if (!stmt.valid()) return sqlFailure(sqlite3_errcode(db_->handle()), true);
        const int step = stmt->bind(1, id).bindBlob(2, foldName(valueName(name))).step();
        if (step != SQLITE_DONE) return sqlFailure(step, true);
        return sqlite3_changes(db_->handle()) == 0 ? kErrorFileNotFound : kErrorSuccess;
    });
}

RegResult SqliteBackend::deleteKey(HKey parent, const char* subKey) {
    if (!subKey) return kErrorInvalidParameter;
    return onKey<WriteScope>(parent, [&](std::int64_t from) {
        std::int64_t id = 0;
        if (const RegResult rc = findPath(from, subKey, &id); rc != kErrorSuccess) return rc;
        if (id == kRootKeyId) return kErrorAccessDenied;
        return removeLeafKey(id);
    });
}

RegResult SqliteBackend::removeLeafKey(std::int64_t id) {
    std::int64_t parent = 0;
    std::string folded;
    {
        StatementUse key(db_->cached("SELECT parent, folded FROM keys WHERE id = ?"));
        if (!key.valid()) return sqlFailure(sqlite3_errcode(db_->handle()), true);
        const int step = key->bind(1, id).step();
        if (step != SQLITE_ROW) return step == SQLITE_DONE ? kErrorKeyDeleted : sqlFailure(step, true);
        parent = key->columnInt(0);
        folded = key->columnBlob(1);
    }
    {
        StatementUse children(db_->cached("SELECT 1 FROM keys WHERE parent = ? LIMIT 1"));
        if (!children.valid()) return sqlFailure(sqlite3_errcode(db_->handle()), true);
        const int step = children->bind(1, id).step();
        if (step == SQLITE_ROW) return kErrorAccessDenied;
        if (step != SQLITE_DONE) return sqlFailure(step, true);
    }
    // Values go with their key.
    for (const char* sql : {"DELETE FROM key_values WHERE key_id = ?", "DELETE FROM keys WHERE id = ?"}) {
        StatementUse stmt(db_->cached(sql));
        if (!stmt.valid()) return sqlFailure(sqlite3_errcode(db_->handle()), true);
        if (const int step = stmt->bind(1, id).step(); step != SQLITE_DONE) return sqlFailure(step, true);
    }
    ++keyChanges_;
    subkeyLists_.removed(parent, folded);
    subkeyLists_.drop(id);
    return kErrorSuccess;
}

std::int64_t SqliteBackend::dataVersion() {
    // Within one snapshot (a scope's or a held transaction's) the version
    // cannot move once read.
    if (snapshotVersion_ < 0) snapshotVersion_ = db_->queryInt("PRAGMA data_version", -1);
    return snapshotVersion_;
}

const SubkeyLists::List* SqliteBackend::currentListOf(std::int64_t id) {
    const SubkeyLists::List* list = subkeyLists_.find(id);
    return list != nullptr && list->dataVersion == dataVersion() ? list : nullptr;
}

RegResult SqliteBackend::currentChildren(HandleState& open, std::uint32_t index, const SubkeyLists::List** list) {
    // An enumeration that goes on through this handle, with nothing
    // changed here since its last step, is served from the same list.
    const SubkeyLists::List* kept = subkeyLists_.find(open.id);
    if (kept != nullptr && index > 0 && index == open.nextIndex && kept->stamp == open.scanStamp) {
        *list = kept;
        return kErrorSuccess;
    }
    ReadScope scope(*this);
    if (scope.status() != kErrorSuccess) return scope.status();
    // A list read at the current version is current: only another process
    // could have changed the key (its deletion here drops the list).
    if ((*list = currentListOf(open.id))) return kErrorSuccess;
    return loadChildren(open.id, dataVersion(), list);
}

RegResult SqliteBackend::loadChildren(std::int64_t id, std::int64_t version, const SubkeyLists::List** list) {
    if (!keyExists(id)) {
        subkeyLists_.drop(id);
        return kErrorKeyDeleted;
    }
    StatementUse stmt(db_->cached("SELECT folded, name, id FROM keys WHERE parent = ? ORDER BY folded"));
    if (!stmt.valid()) return sqlFailure(sqlite3_errcode(db_->handle()), false);
    stmt->bind(1, id);
    std::deque<SubkeyLists::Child> children;
    int rc = SQLITE_ROW;
    while ((rc = stmt->step()) == SQLITE_ROW)
        children.push_back({std::string(stmt->columnBlob(0)), std::string(stmt->columnBlob(1)), stmt->columnInt(2)});
    if (rc != SQLITE_DONE) return sqlFailure(rc, false);
    *list = &subkeyLists_.store(id, std::move(children), version);
    return kErrorSuccess;
}

void SqliteBackend::forgetSubkeyListsSince(std::uint64_t keyChanges) {
    if (keyChanges != keyChanges_) subkeyLists_.clear();
}

RegResult SqliteBackend::enumKey(HKey key, std::uint32_t index, char* name, std::uint32_t cchName) {
    if (!name) return kErrorInvalidParameter;
    std::lock_guard lock(mutex_);
    HandleState* open = handleStateOf(key);
    if (!open) return kErrorInvalidHandle;
    const SubkeyLists::List* list = nullptr;
    if (const RegResult rc = currentChildren(*open, index, &list); rc != kErrorSuccess) return rc;
    if (index >= list->children.size()) return kErrorNoMoreItems;
    const std::string& found = list->children[index].name;
    if (found.size() + 1 > cchName) return kErrorMoreData;
    std::memcpy(name, found.c_str(), found.size() + 1);
    open->nextIndex = index + 1;
    open->scanStamp = list->stamp;
    return kErrorSuccess;
}

RegResult SqliteBackend::queryInfoKey(HKey key, std::uint32_t* subKeys, std::uint64_t* lastWriteTime) {
    std::lock_guard lock(mutex_);
    HandleState* open = handleStateOf(key);
    if (!open) return kErrorInvalidHandle;
    const SubkeyLists::List* list = nullptr;
    if (const RegResult rc = currentChildren(*open, 0, &list); rc != kErrorSuccess) return rc;
    if (subKeys) *subKeys = static_cast<std::uint32_t>(list->children.size());
    if (lastWriteTime) *lastWriteTime = list->stamp;
    return kErrorSuccess;
}

RegResult SqliteBackend::enumValue(HKey key, std::uint32_t index, char* name, std::uint32_t* cchName,
                                   RegType* type, std::uint8_t* data, std::uint32_t* cbData) {
    if (!name || !cchName || (data && !cbData)) return kErrorInvalidParameter;
    return onKey<ReadScope>(key, [&](std::int64_t id) {
        StoredValue value;
        if (const RegResult rc = readValueAt(id, index, &value); rc != kErrorSuccess) return rc;
        if (type) *type = value.type;
        const auto size = static_cast<std::uint32_t>(value.data.size());
        const std::uint32_t capacity = cbData ? *cbData : 0;
        if (cbData) *cbData = size;
        // Either buffer too small: neither is written and the name size
        // stays as the caller passed it.
        if (value.name.size() + 1 > *cchName || (data && size > capacity)) return kErrorMoreData;
        std::memcpy(name, value.name.c_str(), value.name.size() + 1);
        *cchName = static_cast<std::uint32_t>(value.name.size());
        if (data) copyData(value.data, value.type, data, capacity);
        return kErrorSuccess;
    });
}

std::int64_t SqliteBackend::highestKeyId() {
    return db_->queryInt("SELECT IFNULL(MAX(seq), 0) FROM sqlite_sequence WHERE name = 'keys'", 0);
}

void SqliteBackend::forgetKeysAfter(std::int64_t id) {
    // Id 0 is never a key, so such a handle answers kErrorKeyDeleted.
    for (auto& [handle, open] : handles_)
        if (open.id > id) open.id = 0;
}

RegResult SqliteBackend::beginTransaction() {
    std::lock_guard lock(mutex_);
    if (transactionLost()) return kErrorCantWrite;
    const char* begin = depth_ > 0 ? "SAVEPOINT nest" : writable_ ? "BEGIN IMMEDIATE" : "BEGIN";
    if (!run(begin)) return sqlFailure(sqlite3_errcode(db_->handle()), true);
    if (depth_ == 0) snapshotVersion_ = -1;
    ++depth_;
    scopes_.push_back(HeldScope{highestKeyId(), keyChanges_});
    return kErrorSuccess;
}

RegResult SqliteBackend::commitTransaction() {
    std::lock_guard lock(mutex_);
    if (depth_ == 0) return kErrorInvalidParameter;
    const HeldScope scope = scopes_.back();
    scopes_.pop_back();
    const bool lost = transactionLost();
    --depth_;
    if (lost) {
        subkeyLists_.clear();
        forgetKeysAfter(scope.highestKeyId);
        const RegResult failed = failedWrite_ != kErrorSuccess ? failedWrite_ : kErrorCantWrite;
        if (depth_ == 0) failedWrite_ = kErrorSuccess;
        return failed;
    }
    if (depth_ > 0) return !run("RELEASE nest") ? kErrorCantWrite : failedWrite_;
    if (const RegResult failed = std::exchange(failedWrite_, kErrorSuccess); failed != kErrorSuccess) {
        run("ROLLBACK");
        forgetSubkeyListsSince(scope.keyChanges);
        forgetKeysAfter(scope.highestKeyId);
        return failed;
    }
    if (run("COMMIT")) return kErrorSuccess;
    const RegResult failure = sqlFailure(sqlite3_errcode(db_->handle()), true);
    run("ROLLBACK");
    forgetSubkeyListsSince(scope.keyChanges);
    forgetKeysAfter(scope.highestKeyId);
    return failure;
}

void SqliteBackend::rollbackTransaction() {
    std::lock_guard lock(mutex_);
    rollbackLocked();
}

void SqliteBackend::rollbackLocked() {
    if (depth_ == 0) return;
    const HeldScope scope = scopes_.back();
    scopes_.pop_back();
    const bool lost = transactionLost();
    --depth_;
    if (lost)
        subkeyLists_.clear();
    else
        forgetSubkeyListsSince(scope.keyChanges);
    forgetKeysAfter(scope.highestKeyId);
    if (depth_ == 0) failedWrite_ = kErrorSuccess;
    if (lost) return;
    if (depth_ == 0) {
        run("ROLLBACK");
    } else {
        run("ROLLBACK TO nest");
        run("RELEASE nest");
    }
}

}  // namespace braxcfg::platform
