#pragma once
// The store backend on Windows: the registry itself. Every call goes to the
// Reg*A function it is shaped after, in the 64-bit view, so the registry's
// own rules are the contract of store_backend.h. A StoreTransaction is kept
// by an undo journal (win32_undo_journal.h), not by the registry.
#ifdef _WIN32
#include <mutex>
#include <string>
#include <unordered_map>

#include "platform/store_backend.h"
#include "platform/win32_undo_journal.h"

struct HKEY__;

namespace braxcfg::platform {

class Win32Backend final : public StoreBackend {
public:
    // `root` is what kLocalMachine stands for: HKEY_LOCAL_MACHINE for the
    // machine's store, a key below HKEY_CURRENT_USER in tests; closed with
    // the backend when `ownsRoot`. Journals left by processes that died
    // mid-transaction are replayed.
    Win32Backend(HKEY__* root, bool ownsRoot);
    ~Win32Backend() override;
    Win32Backend(const Win32Backend&) = delete;
    Win32Backend& operator=(const Win32Backend&) = delete;

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
    HKEY__* native(HKey key) const;
    // Path of an open key below root, for the journal ("" for root).
    // Caller holds mutex_.
    std::string pathOf(HKey key);
    // Caller holds mutex_.
    std::string pathBelow(HKey parent, const char* subKey);

    HKEY__* root_;
    bool ownsRoot_;
    // Guards the journal and the paths of open keys. Each public call takes
    // it once and calls no other public call while holding it, and the
    // journal calls the registry directly, never back into this backend, so
    // it need not be recursive.
    std::mutex mutex_;
    std::unordered_map<HKey, std::string> paths_;
    UndoJournal journal_;
};

}  // namespace braxcfg::platform
#endif
