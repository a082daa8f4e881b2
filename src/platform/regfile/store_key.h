#pragma once
// Store helpers the .reg import and export share: a key handle closed on
// scope exit, and store results in words for error messages.
#include <string>

#include "platform/store_backend.h"

namespace braxcfg::platform::regfile {

class ScopedKey {
public:
    explicit ScopedKey(StoreBackend& store) : store_(store) {}
    ~ScopedKey() { reset(); }
    ScopedKey(const ScopedKey&) = delete;
    ScopedKey& operator=(const ScopedKey&) = delete;

    HKey get() const { return key_; }
    // Closes the key held so far and gives the slot to an open/create call.
    HKey* receive() {
        reset();
        return &key_;
    }
    void reset();

private:
    StoreBackend& store_;
    HKey key_ = kNoKey;
};

std::string storeResultText(RegResult result);

}  // namespace braxcfg::platform::regfile
