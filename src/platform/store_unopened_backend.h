#pragma once
// The backend of a store that could not be opened (or was closed): every
// call fails with one code, so reads come back empty and writes are skipped.
#include "platform/store_backend.h"

namespace braxcfg::platform {

class UnopenedBackend final : public StoreBackend {
public:
    explicit UnopenedBackend(RegResult failure) : failure_(failure) {}

    RegResult openKey(HKey, const char*, RegAccess, HKey* result) override {
        if (result) *result = kNoKey;
        return failure_;
    }
    RegResult createKey(HKey, const char*, RegAccess, HKey* result, bool*) override {
        if (result) *result = kNoKey;
        return failure_;
    }
    RegResult closeKey(HKey key) override { return key == kLocalMachine ? kErrorSuccess : kErrorInvalidHandle; }
    RegResult queryValue(HKey, const char*, RegType*, std::uint8_t*, std::uint32_t*) override { return failure_; }
    RegResult setValue(HKey, const char*, RegType, const std::uint8_t*, std::uint32_t) override { return failure_; }
    RegResult deleteValue(HKey, const char*) override { return failure_; }
    RegResult deleteKey(HKey, const char*) override { return failure_; }
    RegResult enumKey(HKey, std::uint32_t, char*, std::uint32_t) override { return failure_; }
    RegResult enumValue(HKey, std::uint32_t, char*, std::uint32_t*, RegType*, std::uint8_t*,
                        std::uint32_t*) override {
        return failure_;
    }
    RegResult queryInfoKey(HKey, std::uint32_t*, std::uint64_t*) override { return failure_; }
    RegResult beginTransaction() override { return failure_; }
    RegResult commitTransaction() override { return failure_; }
    void rollbackTransaction() override {}

private:
    RegResult failure_;
};

}  // namespace braxcfg::platform
