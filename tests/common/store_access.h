#pragma once
// Short ways for store tests to make keys and read back what the backend
// holds, always through the StoreBackend calls themselves.
#include <string>
#include <vector>

#include "platform/store_backend.h"

namespace braxcfg::test {

using platform::HKey;
using platform::StoreBackend;

inline const std::uint8_t* bytesOf(const void* data) { return static_cast<const std::uint8_t*>(data); }
inline std::uint8_t* bytesOf(void* data) { return static_cast<std::uint8_t*>(data); }

inline HKey createKey(StoreBackend& store, const std::string& path, HKey parent = platform::kLocalMachine) {
    HKey key = platform::kNoKey;
    store.createKey(parent, path.c_str(), platform::kKeyAllAccess, &key, nullptr);
    return key;
}

inline platform::RegResult setString(StoreBackend& store, HKey key, const char* name, const std::string& text) {
    return store.setValue(key, name, platform::kRegSz, bytesOf(text.c_str()),
                          static_cast<std::uint32_t>(text.size() + 1));
}

// The stored bytes of a value; "<missing>" when reading fails.
inline std::string valueBytes(StoreBackend& store, HKey key, const char* name) {
    std::uint32_t size = 0;
    if (store.queryValue(key, name, nullptr, nullptr, &size) != platform::kErrorSuccess) return "<missing>";
    std::string bytes(size, '\0');
    if (size && store.queryValue(key, name, nullptr, bytesOf(bytes.data()), &size) != platform::kErrorSuccess)
        return "<missing>";
    return bytes;
}

inline std::vector<std::string> subkeyNames(StoreBackend& store, HKey key) {
    std::vector<std::string> names;
    char name[512];
    for (std::uint32_t i = 0; store.enumKey(key, i, name, sizeof name) == platform::kErrorSuccess; ++i)
        names.emplace_back(name);
    return names;
}

inline std::vector<std::string> valueNames(StoreBackend& store, HKey key) {
    std::vector<std::string> names;
    char name[512];
    for (std::uint32_t i = 0;; ++i) {
        std::uint32_t cch = sizeof name;
        if (store.enumValue(key, i, name, &cch, nullptr, nullptr, nullptr) != platform::kErrorSuccess) return names;
        names.emplace_back(name, cch);
    }
}

}  // namespace braxcfg::test
