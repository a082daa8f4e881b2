#pragma once
// The process's configuration store: which file it is, opening it, and the
// transaction scope callers hold across many operations.
#include <cstdint>
#include <string>

#include "platform/store_backend.h"

namespace braxcfg::platform {

enum class StoreOpenState {
    Open,        // usable (possibly read-only, see writable)
    Missing,     // the file does not exist and could not be created
    Corrupt,     // not a store file, or damaged; never overwritten
    Unreadable,  // permissions or I/O
};

struct StoreStatus {
    StoreOpenState state = StoreOpenState::Missing;
    bool writable = false;
    std::string path;
    std::string error;  // what went wrong, for the tool to print
};

// Where the store lives: BRAXCFG_STORE when set; otherwise the machine-wide
// file when it exists or can be created; otherwise the per-user file below
// $XDG_STATE_HOME (or ~/.local/state).
std::string resolveStorePath();
std::string machineWideStorePath();
std::string perUserStorePath();

// Opens `path` as the process's store, replacing the current one. A store
// that cannot be opened leaves a backend whose every call fails (reads
// empty, writes skipped) after one debug line; the damaged file is left as
// it is.
StoreStatus openStore(const std::string& path);

// Closes the process's store; until the next openStore every call fails
// as on an unopened key (it is not reopened from resolveStorePath()).
void closeStore();

// The process's store, opened from resolveStorePath() on first use.
StoreBackend& currentStore();
const StoreStatus& currentStoreStatus();

// Changes each time openStore replaces the store, so caches of values read
// from the store (product settings) know to read again.
std::uint64_t storeGeneration();

// Holds one transaction across many store operations. Commits on commit()
// or, when it was not committed, rolls back when it goes out of scope.
// Scopes nest; only the outermost one reaches the file.
class StoreTransaction {
public:
    StoreTransaction();
    explicit StoreTransaction(StoreBackend& store);
    ~StoreTransaction();
    StoreTransaction(const StoreTransaction&) = delete;
    StoreTransaction& operator=(const StoreTransaction&) = delete;
    // False when the transaction could not be started or committed.
    bool commit();
    bool active() const { return active_; }

private:
    StoreBackend& store_;
    bool active_ = false;
};

}  // namespace braxcfg::platform
