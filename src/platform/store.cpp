#include "platform/store.h"

#include <atomic>
#include <memory>
#include <mutex>

#include "platform/debug_output.h"
#include "platform/store_unopened_backend.h"
#ifdef _WIN32
#include "platform/win32_store_key.h"
#else
#include "platform/sqlite_store_file.h"
#endif

namespace braxcfg::platform {
namespace {

// currentStore() hands out this one object for the life of the process and
// openStore swaps what is behind it, so a reference a caller kept (a
// Registry, a transaction) never dangles; handles from the previous store
// are simply unknown to the next one.
class StoreSwitch final : public StoreBackend {
public:
    StoreSwitch() : target_(std::make_shared<UnopenedBackend>(kErrorInvalidHandle)) {}

    void replace(std::shared_ptr<StoreBackend> next) {
        std::lock_guard lock(mutex_);
        target_ = std::move(next);
    }

    RegResult openKey(HKey parent, const char* subKey, RegAccess access, HKey* result) override {
        return target()->openKey(parent, subKey, access, result);
    }
    RegResult createKey(HKey parent, const char* subKey, RegAccess access, HKey* result,
                        bool* created) override {
        return target()->createKey(parent, subKey, access, result, created);
    }
    RegResult closeKey(HKey key) override { return target()->closeKey(key); }
    RegResult queryValue(HKey key, const char* name, RegType* type, std::uint8_t* data,
                         std::uint32_t* cbData) override {
        return target()->queryValue(key, name, type, data, cbData);
    }
    RegResult setValue(HKey key, const char* name, RegType type, const std::uint8_t* data,
                       std::uint32_t cbData) override {
        return target()->setValue(key, name, type, data, cbData);
    }
    RegResult deleteValue(HKey key, const char* name) override { return target()->deleteValue(key, name); }
    RegResult deleteKey(HKey parent, const char* subKey) override { return target()->deleteKey(parent, subKey); }
    RegResult enumKey(HKey key, std::uint32_t index, char* name, std::uint32_t cchName) override {
        return target()->enumKey(key, index, name, cchName);
    }
    RegResult enumValue(HKey key, std::uint32_t index, char* name, std::uint32_t* cchName, RegType* type,
                        std::uint8_t* data, std::uint32_t* cbData) override {
        return target()->enumValue(key, index, name, cchName, type, data, cbData);
    }
    RegResult queryInfoKey(HKey key, std::uint32_t* subKeys, std::uint64_t* lastWriteTime) override {
        return target()->queryInfoKey(key, subKeys, lastWriteTime);
    }
    RegResult beginTransaction() override { return target()->beginTransaction(); }
    RegResult commitTransaction() override { return target()->commitTransaction(); }
    void rollbackTransaction() override { target()->rollbackTransaction(); }

private:
    std::shared_ptr<StoreBackend> target() {
        std::lock_guard lock(mutex_);
        return target_;
    }

    std::mutex mutex_;
    std::shared_ptr<StoreBackend> target_;
};

struct ProcessStore {
    std::mutex mutex;
    StoreSwitch backend;
    StoreStatus status;
    bool chosen = false;  // opened once, or closed on purpose
    std::atomic<std::uint64_t> generation{0};
};

// Destroyed when the process ends or the plug-in is unloaded, which closes
// the store file; a host that unloads the plug-in gets its memory back.
ProcessStore& processStore() {
    static ProcessStore store;
    return store;
}

RegResult failureFor(StoreOpenState state) {
    switch (state) {
        case StoreOpenState::Corrupt: return kErrorBadDatabase;
        case StoreOpenState::Unreadable: return kErrorAccessDenied;
        default: return kErrorFileNotFound;
    }
}

// The store itself: the registry on Windows, an SQLite file elsewhere.
#ifdef _WIN32
using StoreOpening = RegistryStoreOpening;
// The registry grants or refuses each key's access itself; a read-only
// command simply never asks to write.
StoreOpening openBackend(const std::string& path, StoreAccess) { return openRegistryStore(path); }
#else
using StoreOpening = SqliteStoreOpening;
StoreOpening openBackend(const std::string& path, StoreAccess access) { return openSqliteStore(path, access); }
#endif

// The machine-wide store decides where modules are loaded from ("BaseDir"):
// one that anybody but root could have changed is not used at all.
StoreOpening openChecked(const std::string& path, StoreAccess access) {
    const bool machineWide = isMachineWideStore(path);
    std::string problem = machineWide ? machineWideStoreProblem() : std::string();
    StoreOpening opening;
    if (problem.empty()) opening = openBackend(path, access);
    if (problem.empty() && machineWide && opening.backend) problem = machineWideStoreProblem();
    if (!problem.empty()) {
        opening.backend.reset();
        opening.status = StoreStatus{StoreOpenState::Unreadable, false, path, problem};
    }
    return opening;
}

StoreStatus openLocked(ProcessStore& store, const std::string& path, StoreAccess access = StoreAccess::Change) {
    StoreOpening opening = openChecked(path, access);
    if (opening.backend) {
        store.backend.replace(std::shared_ptr<StoreBackend>(std::move(opening.backend)));
    } else {
        debugOutput("Configuration store not opened: " + opening.status.error + "\n");
        store.backend.replace(std::make_shared<UnopenedBackend>(failureFor(opening.status.state)));
    }
    store.status = opening.status;
    store.chosen = true;
    ++store.generation;
    return store.status;
}

ProcessStore& openedProcessStore() {
    ProcessStore& store = processStore();
    std::lock_guard lock(store.mutex);
    if (!store.chosen) openLocked(store, resolveStorePath());
    return store;
}

}  // namespace

StoreStatus openStore(const std::string& path, StoreAccess access) {
    ProcessStore& store = processStore();
    std::lock_guard lock(store.mutex);
    return openLocked(store, path, access);
}

void closeStore() {
    ProcessStore& store = processStore();
    std::lock_guard lock(store.mutex);
    store.backend.replace(std::make_shared<UnopenedBackend>(kErrorInvalidHandle));
    store.status = StoreStatus{};
    store.status.error = "no store is open";
    store.chosen = true;
    ++store.generation;
}

StoreBackend& currentStore() { return openedProcessStore().backend; }

const StoreStatus& currentStoreStatus() { return openedProcessStore().status; }

std::uint64_t storeGeneration() { return processStore().generation.load(); }

StoreFailure storeFailureOf(RegResult result) {
    switch (result) {
        case kErrorSuccess: return StoreFailure::None;
        case kErrorBusy: return StoreFailure::Busy;
        case kErrorDiskFull: return StoreFailure::DiskFull;
        case kErrorCantWrite:
        case kErrorAccessDenied: return StoreFailure::ReadOnly;
        default: return StoreFailure::Other;
    }
}

std::string storeFailureMessage(StoreFailure failure, const std::string& storePath) {
    const std::string store = "the store " + storePath;
    switch (failure) {
        case StoreFailure::None: return {};
        case StoreFailure::Busy: return store + " is busy (another program is changing it), try again; nothing was changed";
        case StoreFailure::DiskFull: return store + " cannot be written: the disk is full; nothing was changed";
        case StoreFailure::ReadOnly: return store + " cannot be written by this user; nothing was changed";
        case StoreFailure::Other: break;
    }
    return store + " could not be written (damaged or I/O error); nothing was changed";
}

std::string storeFailureMessage(StoreFailure failure) {
    ProcessStore& store = processStore();
    std::lock_guard lock(store.mutex);
    return storeFailureMessage(failure, store.status.path);
}

StoreTransaction::StoreTransaction() : StoreTransaction(currentStore()) {}

StoreTransaction::StoreTransaction(StoreBackend& store) : store_(store) {
    const RegResult result = store_.beginTransaction();
    active_ = result == kErrorSuccess;
    if (!active_) noteFailure(result, "could not start");
}

StoreTransaction::~StoreTransaction() {
    if (active_) store_.rollbackTransaction();
}

bool StoreTransaction::commit() {
    if (!active_) return false;
    active_ = false;
    const RegResult result = store_.commitTransaction();
    if (result != kErrorSuccess) noteFailure(result, "was rolled back");
    return result == kErrorSuccess;
}

void StoreTransaction::noteFailure(RegResult result, const char* what) {
    failure_ = storeFailureOf(result);
    debugOutput(std::string("Configuration store: a change ") + what + ", nothing of it was written (" +
                storeFailureMessage(failure_) + ")\n");
}

}  // namespace braxcfg::platform
