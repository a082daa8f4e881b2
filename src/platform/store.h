#pragma once
// The process's configuration store: which file it is, opening it, and the
// transaction scope callers hold across many operations.
#include <cstdint>
#include <string>

#include "platform/store_backend.h"
#include "platform/store_status.h"

namespace braxcfg::platform {

// Where the store lives: BRAXCFG_STORE when set (set but empty gives the
// empty path, which openStore refuses); otherwise the machine-wide file when
// it exists or can be created; otherwise the per-user file below
// $XDG_STATE_HOME (or ~/.local/state).
std::string resolveStorePath();
std::string machineWideStorePath();
std::string perUserStorePath();
bool isMachineWideStore(const std::string& path);

// Empty when the machine-wide store's folder and file (when there) are
// owned by root and writable by nobody else; otherwise why it is refused.
std::string machineWideStoreProblem();

// Opens `path` as the process's store, replacing the current one. The
// machine-wide store is refused (Unreadable) while machineWideStoreProblem()
// says so, before and after it is created. A store that cannot be opened leaves a backend whose every call fails (reads
// empty, writes skipped) after one debug line; the damaged file is left as
// it is.
StoreStatus openStore(const std::string& path, StoreAccess access = StoreAccess::Change);

// Closes the process's store; until the next openStore every call fails
// as on an unopened key (it is not reopened from resolveStorePath()).
void closeStore();

// The process's store, opened from resolveStorePath() on first use.
StoreBackend& currentStore();
const StoreStatus& currentStoreStatus();

// Changes each time openStore replaces the store, so caches of values read
// from the store (product settings) know to read again.
std::uint64_t storeGeneration();

// Why a change to the store was not written, in the terms a person acts on.
enum class StoreFailure {
    None,
    Busy,      // another process held the write lock for the whole bounded wait
    DiskFull,  // the disk (or the file system's quota) is full
    ReadOnly,  // this user cannot write the store
    Other,     // damaged file, I/O error
};

StoreFailure storeFailureOf(RegResult result);

// The sentence for a person, naming the store file: "the store PATH is busy
// (another program is changing it), try again; nothing was changed", "...
// the disk is full; ...". Empty for StoreFailure::None. The one-argument
// form names the process's store.
std::string storeFailureMessage(StoreFailure failure, const std::string& storePath);
std::string storeFailureMessage(StoreFailure failure);

// Holds one transaction across many store operations. Commits on commit()
// or, when it was not committed, rolls back when it goes out of scope.
// Scopes nest; only the outermost one reaches the file.
//
// A change that rewrites a list is written whole or not at all:
//     StoreTransaction transaction;
//     if (!transaction.active()) return transaction.failure();  // nothing written
//     ... store operations (they join this transaction) ...
//     if (!transaction.commit()) return transaction.failure();  // nothing written
// A write that fails inside the transaction (disk full) makes commit() fail
// and roll everything back. Each failure leaves one debug line.
class StoreTransaction {
public:
    StoreTransaction();
    explicit StoreTransaction(StoreBackend& store);
    ~StoreTransaction();
    StoreTransaction(const StoreTransaction&) = delete;
    StoreTransaction& operator=(const StoreTransaction&) = delete;
    // False when the transaction could not be started or committed; then
    // nothing of it was written and failure() says why.
    bool commit();
    // False when the transaction could not start (failure() says why) or
    // has ended.
    bool active() const { return active_; }
    StoreFailure failure() const { return failure_; }
    std::string failureMessage() const { return storeFailureMessage(failure_); }

private:
    void noteFailure(RegResult result, const char* what);

    StoreBackend& store_;
    bool active_ = false;
    StoreFailure failure_ = StoreFailure::None;
};

}  // namespace braxcfg::platform
