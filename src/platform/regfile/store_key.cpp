#include "platform/regfile/store_key.h"

#include <array>

namespace braxcfg::platform::regfile {

void ScopedKey::reset() {
    // The predefined root is not ours to close.
    if (key_ != kNoKey && key_ != kLocalMachine) store_.closeKey(key_);
    key_ = kNoKey;
}

std::string storeResultText(RegResult result) {
    switch (result) {
        case kErrorFileNotFound:
            return "not found";
        case kErrorAccessDenied:
            return "access denied";
        case kErrorInvalidParameter:
            return "invalid name or parameter";
        case kErrorBadPathname:
            return "bad path name";
        case kErrorKeyDeleted:
            return "the key was deleted";
        case kErrorBadDatabase:
            return "the store file is damaged";
        case kErrorCantWrite:
            return "the store cannot be written (read-only or busy)";
        default:
            return "store error " + std::to_string(result);
    }
}

RegResult deleteKeyTree(StoreBackend& store, HKey parent, const std::string& path) {
    {
        ScopedKey key(store);
        if (const RegResult opened = store.openKey(parent, path.c_str(), kKeyAllAccess, key.receive());
            opened != kErrorSuccess)
            return opened;
        std::array<char, kMaxKeyNameLength + 1> child{};
        // Always index 0: each delete shifts the remaining subkeys down.
        while (store.enumKey(key.get(), 0, child.data(), static_cast<std::uint32_t>(child.size())) == kErrorSuccess) {
            if (const RegResult deleted = deleteKeyTree(store, key.get(), child.data()); deleted != kErrorSuccess)
                return deleted;
        }
    }
    return store.deleteKey(parent, path.c_str());
}

}  // namespace braxcfg::platform::regfile
