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
            return "the store cannot be written";
        case kErrorBusy:
            return "the store is busy";
        case kErrorDiskFull:
            return "the disk is full";
        default:
            return "store error " + std::to_string(result);
    }
}

}  // namespace braxcfg::platform::regfile
