#ifdef _WIN32
#include "platform/win32_backend.h"

#include <windows.h>

namespace braxcfg::platform {
namespace {

// The store's data lives in the 64-bit view whatever the caller asks; both
// views at once is refused as the registry refuses it.
bool viewAccess(RegAccess access, REGSAM* sam) {
    if ((access & kKeyWow64_64Key) && (access & kKeyWow64_32Key)) return false;
    *sam = (access & ~(kKeyWow64_64Key | kKeyWow64_32Key)) | KEY_WOW64_64KEY;
    return true;
}

HKey handleOf(HKEY key) { return static_cast<HKey>(reinterpret_cast<std::uintptr_t>(key)); }

// In/out DWORD for a std::uint32_t the caller may leave null.
class Dword {
public:
    explicit Dword(std::uint32_t* target) : target_(target), value_(target ? *target : 0) {}
    ~Dword() {
        if (target_) *target_ = value_;
    }
    Dword(const Dword&) = delete;
    Dword& operator=(const Dword&) = delete;
    DWORD* get() { return target_ ? &value_ : nullptr; }

private:
    std::uint32_t* target_;
    DWORD value_;
};

}  // namespace

Win32Backend::Win32Backend(HKEY__* root, bool ownsRoot) : root_(root), ownsRoot_(ownsRoot), journal_(root) {
    UndoJournal::recoverAbandoned(root);
}

Win32Backend::~Win32Backend() {
    if (ownsRoot_) RegCloseKey(root_);
}

HKEY Win32Backend::native(HKey key) const {
    return key == kLocalMachine ? root_ : reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(key));
}

std::string Win32Backend::pathOf(HKey key) {
    const auto found = paths_.find(key);
    return found == paths_.end() ? std::string() : found->second;
}

std::string Win32Backend::pathBelow(HKey parent, const char* subKey) {
    std::string path = pathOf(parent);
    const std::string sub = subKey ? subKey : "";
    for (std::size_t start = 0; start < sub.size();) {
        std::size_t end = sub.find('\\', start);
        if (end == std::string::npos) end = sub.size();
        if (end > start) path += (path.empty() ? "" : "\\") + sub.substr(start, end - start);
        start = end + 1;
    }
    return path;
}

RegResult Win32Backend::openKey(HKey parent, const char* subKey, RegAccess access, HKey* result) {
    REGSAM sam = 0;
    if (!viewAccess(access, &sam)) return kErrorInvalidParameter;
    if (parent == kLocalMachine && (!subKey || !*subKey) && result) {
        // Opening a predefined key itself gives back its pseudo-handle,
        // whatever key stands behind it here.
        *result = kLocalMachine;
        return kErrorSuccess;
    }
    // The caller's handle goes in as it was: where the registry leaves the
    // result alone (an invalid parent) it stays as the caller had it.
    HKEY opened = result ? reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(*result)) : nullptr;
    const LONG rc = RegOpenKeyExA(native(parent), subKey, 0, sam, result ? &opened : nullptr);
    if (!result) return rc;
    *result = handleOf(opened);
    if (rc == ERROR_SUCCESS) {
        std::lock_guard lock(mutex_);
        paths_[*result] = pathBelow(parent, subKey);
    }
    return rc;
}

RegResult Win32Backend::createKey(HKey parent, const char* subKey, RegAccess access, HKey* result,
                                  bool* created) {
    REGSAM sam = 0;
    if (!viewAccess(access, &sam)) return kErrorInvalidParameter;
    std::lock_guard lock(mutex_);
    const std::string path = pathBelow(parent, subKey);
    if (const RegResult rc = journal_.beforeKeyCreate(path); rc != kErrorSuccess) return rc;
    HKEY opened = nullptr;
    DWORD disposition = 0;
    const LONG rc = RegCreateKeyExA(native(parent), subKey, 0, nullptr, REG_OPTION_NON_VOLATILE, sam, nullptr,
                                    &opened, &disposition);
    if (result) *result = rc == ERROR_SUCCESS ? handleOf(opened) : kNoKey;
    if (created) *created = rc == ERROR_SUCCESS && disposition == REG_CREATED_NEW_KEY;
    if (rc == ERROR_SUCCESS && result) paths_[*result] = path;
    return rc;
}

RegResult Win32Backend::closeKey(HKey key) {
    if (key == kLocalMachine) return kErrorSuccess;
    {
        std::lock_guard lock(mutex_);
        paths_.erase(key);
    }
    return RegCloseKey(native(key));
}

RegResult Win32Backend::queryValue(HKey key, const char* name, RegType* type, std::uint8_t* data,
                                   std::uint32_t* cbData) {
    Dword typeOut(type), size(cbData);
    return RegQueryValueExA(native(key), name, nullptr, typeOut.get(), data, size.get());
}

RegResult Win32Backend::setValue(HKey key, const char* name, RegType type, const std::uint8_t* data,
                                 std::uint32_t cbData) {
    std::lock_guard lock(mutex_);
    if (journal_.active())
        if (const RegResult rc = journal_.beforeValueChange(pathOf(key)); rc != kErrorSuccess) return rc;
    return RegSetValueExA(native(key), name, 0, type, data, cbData);
}

RegResult Win32Backend::deleteValue(HKey key, const char* name) {
    std::lock_guard lock(mutex_);
    if (journal_.active())
        if (const RegResult rc = journal_.beforeValueChange(pathOf(key)); rc != kErrorSuccess) return rc;
    return RegDeleteValueA(native(key), name);
}

RegResult Win32Backend::deleteKey(HKey parent, const char* subKey) {
    std::lock_guard lock(mutex_);
    if (journal_.active() && subKey)
        if (const RegResult rc = journal_.beforeKeyDelete(pathBelow(parent, subKey)); rc != kErrorSuccess)
            return rc;
    // RegDeleteKeyA cannot name the view; RegDeleteKeyExA can.
    return RegDeleteKeyExA(native(parent), subKey, KEY_WOW64_64KEY, 0);
}

RegResult Win32Backend::enumKey(HKey key, std::uint32_t index, char* name, std::uint32_t cchName) {
    return RegEnumKeyA(native(key), index, name, cchName);
}

RegResult Win32Backend::enumValue(HKey key, std::uint32_t index, char* name, std::uint32_t* cchName, RegType* type,
                                  std::uint8_t* data, std::uint32_t* cbData) {
    Dword nameSize(cchName), typeOut(type), size(cbData);
    return RegEnumValueA(native(key), index, name, nameSize.get(), nullptr, typeOut.get(), data, size.get());
}

RegResult Win32Backend::queryInfoKey(HKey key, std::uint32_t* subKeys, std::uint64_t* lastWriteTime) {
    Dword count(subKeys);
    FILETIME written{};
    const LONG rc = RegQueryInfoKeyA(native(key), nullptr, nullptr, nullptr, count.get(), nullptr, nullptr, nullptr,
                                     nullptr, nullptr, nullptr, lastWriteTime ? &written : nullptr);
    if (rc == ERROR_SUCCESS && lastWriteTime)
        *lastWriteTime = (std::uint64_t{written.dwHighDateTime} << 32) | written.dwLowDateTime;
    return rc;
}

RegResult Win32Backend::beginTransaction() {
    std::lock_guard lock(mutex_);
    return journal_.beginScope();
}

RegResult Win32Backend::commitTransaction() {
    std::lock_guard lock(mutex_);
    return journal_.commitScope();
}

void Win32Backend::rollbackTransaction() {
    std::lock_guard lock(mutex_);
    journal_.rollbackScope();
}

}  // namespace braxcfg::platform
#endif
