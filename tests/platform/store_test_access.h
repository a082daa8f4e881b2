#pragma once
// Short ways for store tests to make keys and read back what the backend
// holds, always through the StoreBackend calls themselves.
#include <string>
#include <vector>

#include "platform/store_backend.h"

namespace braxcfg::test {

// A handle that closes itself.
class KeyHandle {
public:
    KeyHandle(platform::StoreBackend& store, platform::HKey key) : store_(store), key_(key) {}
    ~KeyHandle() {
        if (key_ != platform::kNoKey) store_.closeKey(key_);
    }
    KeyHandle(const KeyHandle&) = delete;
    KeyHandle& operator=(const KeyHandle&) = delete;
    operator platform::HKey() const { return key_; }

private:
    platform::StoreBackend& store_;
    platform::HKey key_;
};

inline platform::HKey createKey(platform::StoreBackend& store, const std::string& path,
                                platform::HKey parent = platform::kLocalMachine) {
    platform::HKey key = platform::kNoKey;
    store.createKey(parent, path.c_str(), platform::kKeyAllAccess, &key, nullptr);
    return key;
}

inline platform::RegResult setString(platform::StoreBackend& store, platform::HKey key, const char* name,
                                     const std::string& text) {
    return store.setValue(key, name, platform::kRegSz, reinterpret_cast<const std::uint8_t*>(text.c_str()),
                          static_cast<std::uint32_t>(text.size() + 1));
}

// The stored bytes of a value; "<missing>" when reading fails.
inline std::string valueBytes(platform::StoreBackend& store, platform::HKey key, const char* name) {
    std::uint32_t size = 0;
    if (store.queryValue(key, name, nullptr, nullptr, &size) != platform::kErrorSuccess) return "<missing>";
    std::string bytes(size, '\0');
    if (size && store.queryValue(key, name, nullptr, reinterpret_cast<std::uint8_t*>(bytes.data()), &size) !=
                    platform::kErrorSuccess)
        return "<missing>";
    return bytes;
}

inline std::vector<std::string> subkeyNames(platform::StoreBackend& store, platform::HKey key) {
    std::vector<std::string> names;
    char name[512];
    for (std::uint32_t i = 0; store.enumKey(key, i, name, sizeof name) == platform::kErrorSuccess; ++i)
        names.emplace_back(name);
    return names;
}

inline std::vector<std::string> valueNames(platform::StoreBackend& store, platform::HKey key) {
    std::vector<std::string> names;
    char name[512];
    for (std::uint32_t i = 0;; ++i) {
        std::uint32_t cch = sizeof name;
        if (store.enumValue(key, i, name, &cch, nullptr, nullptr, nullptr) != platform::kErrorSuccess) break;
        names.emplace_back(name, cch);
    }
    return names;
}

}  // namespace braxcfg::test
