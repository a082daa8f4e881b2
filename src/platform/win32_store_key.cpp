#ifdef _WIN32
#include "platform/win32_store_key.h"

#include <windows.h>

#include "platform/win32_backend.h"

namespace braxcfg::platform {

RegistryStoreOpening openRegistryStore(const std::string& location) {
    RegistryStoreOpening opening;
    opening.status.path = location;
    HKEY root = nullptr;
    bool owned = false;
    if (location == kMachineRegistry) {
        root = HKEY_LOCAL_MACHINE;
    } else if (location.rfind(kUserRegistryPrefix, 0) == 0 && location.size() > std::string(kUserRegistryPrefix).size()) {
        const std::string sub = location.substr(std::string(kUserRegistryPrefix).size());
        const LONG rc = RegCreateKeyExA(HKEY_CURRENT_USER, sub.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                        KEY_ALL_ACCESS | KEY_WOW64_64KEY, nullptr, &root, nullptr);
        if (rc != ERROR_SUCCESS) {
            opening.status.state = StoreOpenState::Unreadable;
            opening.status.error = "cannot open or create the key (error " + std::to_string(rc) + ")";
            return opening;
        }
        owned = true;
    } else {
        opening.status.error = "not a registry location: use HKEY_LOCAL_MACHINE or HKEY_CURRENT_USER\\<key>";
        return opening;
    }
    // Writable when this user may change the product's part of the tree.
    HKEY probe = nullptr;
    opening.status.writable = RegCreateKeyExA(root, "SOFTWARE", 0, nullptr, REG_OPTION_NON_VOLATILE,
                                              KEY_SET_VALUE | KEY_CREATE_SUB_KEY | KEY_WOW64_64KEY, nullptr, &probe,
                                              nullptr) == ERROR_SUCCESS;
    if (probe) RegCloseKey(probe);
    opening.status.state = StoreOpenState::Open;
    opening.backend = std::make_unique<Win32Backend>(root, owned);
    return opening;
}

}  // namespace braxcfg::platform
#endif
