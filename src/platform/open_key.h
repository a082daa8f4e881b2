#pragma once
// A raw store key for the code that sits below Registry (the product key and
// the product settings): opened with the access rights it asks for, closed
// when it goes out of scope.
#include <cstdint>
#include <string>

#include "platform/reg_types.h"
#include "platform/store.h"
#include "platform/store_backend.h"

namespace braxcfg::platform {

class OpenKey {
public:
    OpenKey(HKey parent, const std::string& path, RegAccess access) : store_(currentStore()) {
        if (store_.openKey(parent, path.c_str(), access | kKeyWow64_64Key, &key_) != kErrorSuccess) key_ = kNoKey;
    }
    ~OpenKey() {
        if (key_ != kNoKey) store_.closeKey(key_);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    explicit operator bool() const { return key_ != kNoKey; }
    HKey get() const { return key_; }
    StoreBackend& store() const { return store_; }

private:
    StoreBackend& store_;
    HKey key_ = kNoKey;
};

// Reads a value into a zeroed buffer of `capacity` bytes; false when it is
// missing or does not fit.
inline bool queryInto(const OpenKey& key, const std::string& name, std::uint32_t capacity, RegType& type,
                      std::string& bytes) {
    bytes.assign(capacity, '\0');
    std::uint32_t cb = capacity;
    if (!key ||
        key.store().queryValue(key.get(), name.c_str(), &type, reinterpret_cast<std::uint8_t*>(bytes.data()), &cb) !=
            kErrorSuccess)
        return false;
    bytes.resize(cb);
    return true;
}

inline std::string textOf(const std::string& bytes) { return std::string(bytes.c_str()); }

}  // namespace braxcfg::platform
