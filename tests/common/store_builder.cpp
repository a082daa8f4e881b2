#include "store_builder.h"

#include <cstring>

#include "platform/product_settings.h"
#include "platform/registry.h"
#include "platform/store.h"

namespace braxcfg::test {
namespace {

using platform::kLocalMachine;
using platform::Registry;

}  // namespace

void putBytes(const std::string& keyPath, const std::string& name, std::uint32_t type, const std::string& bytes) {
    Registry key(kLocalMachine, keyPath, platform::kRegOpenOrCreate);
    platform::currentStore().setValue(key.handle(), name.c_str(), type,
                                      reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                      static_cast<std::uint32_t>(bytes.size()));
}

void putString(const std::string& keyPath, const std::string& name, const std::string& value) {
    Registry(kLocalMachine, keyPath, platform::kRegOpenOrCreate).setString(name, value);
}

void putDword(const std::string& keyPath, const std::string& name, std::uint32_t value) {
    Registry(kLocalMachine, keyPath, platform::kRegOpenOrCreate).setDword(name, value);
}

void putKey(const std::string& keyPath) { Registry(kLocalMachine, keyPath, platform::kRegOpenOrCreate); }

bool keyExists(const std::string& keyPath) {
    return Registry(kLocalMachine, keyPath, platform::kRegOpenExisting).isOpen();
}

bool readValue(const std::string& keyPath, const std::string& name, std::uint32_t& type, std::string& bytes) {
    return Registry(kLocalMachine, keyPath, platform::kRegOpenExisting).getRaw(name, type, bytes);
}

std::string underProduct(const std::string& sub) {
    const std::string root = platform::productKey();
    return sub.empty() ? root : root + "\\" + sub;
}

void putInterface(const std::string& intf, const std::string& visaName, const std::string& typeWord) {
    putString(underProduct(intf), "VISAName", visaName);
    putString(underProduct(intf), "VISAIntfType", typeWord);
}

}  // namespace braxcfg::test
