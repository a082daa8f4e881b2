#include "platform/registry.h"

#include <array>
#include <cstring>
#include <vector>

#include "platform/debug_output.h"
#include "platform/product_key.h"
#include "platform/store.h"
#include "platform/store_tree.h"

namespace braxcfg::platform {
namespace {

constexpr std::uint32_t kEnumNameChars = 80;
constexpr std::uint32_t kValueExistsNameChars = 1025;
constexpr std::uint32_t kStringReadBytes = 256;

RegAccess accessFor(RegView view) {
    return kKeyAllAccess | (view == RegView::View32 ? kKeyWow64_32Key : kKeyWow64_64Key);
}

const std::uint8_t* bytesOf(const void* p) { return static_cast<const std::uint8_t*>(p); }

}  // namespace

Registry::Registry(const std::string& subKey, RegState state, RegView view) : store_(currentStore()) {
    const std::string path = productKey() + "\\" + subKey;
    open(kLocalMachine, path, path, state, view);
}

Registry::Registry(HKey parent, const std::string& path, RegState state, RegView view)
    : store_(currentStore()) {
    open(parent, path, path, state, view);
}

Registry::~Registry() {
    if (key_ != kNoKey) store_.closeKey(key_);
}

void Registry::open(HKey parent, const std::string& path, const std::string& shownPath, RegState state,
                    RegView view) {
    const RegAccess access = accessFor(view);
    HKey key = kNoKey;
    if (state == kRegOpenOrCreate) {
        if (store_.openKey(parent, path.c_str(), access, &key) != kErrorSuccess &&
            store_.createKey(parent, path.c_str(), access, &key, nullptr) != kErrorSuccess) {
            key = kNoKey;
            debugOutput("Error creating " + shownPath + " key\n");
        }
    } else if (state == kRegOpenExisting) {
        if (store_.openKey(parent, path.c_str(), access, &key) != kErrorSuccess) key = kNoKey;
    } else {
        debugOutput("Invalid RegState to Registry::Registry\n");
    }
    key_ = key;
}

bool Registry::valueExists(const std::string& name) const {
    if (key_ == kNoKey) return false;
    std::vector<char> buffer(kValueExistsNameChars);
    for (std::uint32_t index = 0;; ++index) {
        std::uint32_t cch = kValueExistsNameChars;
        if (store_.enumValue(key_, index, buffer.data(), &cch, nullptr, nullptr, nullptr) != kErrorSuccess)
            return false;
        if (name == buffer.data()) return true;
    }
}

void Registry::enumKey(std::uint32_t index, std::string& out) const {
    std::array<char, kEnumNameChars> buffer{};
    if (key_ != kNoKey && store_.enumKey(key_, index, buffer.data(), kEnumNameChars) == kErrorSuccess)
        out = buffer.data();
    else
        out.clear();
}

std::string Registry::enumKey(std::uint32_t index) const {
    std::string out;
    enumKey(index, out);
    return out;
}

std::vector<std::string> Registry::subkeyNames() const {
    std::vector<std::string> names;
    for (std::string name = enumKey(0); !name.empty(); name = enumKey(static_cast<std::uint32_t>(names.size())))
        names.push_back(std::move(name));
    return names;
}

std::uint64_t Registry::subkeyStamp() const {
    std::uint64_t stamp = 0;
    if (key_ == kNoKey || store_.queryInfoKey(key_, nullptr, &stamp) != kErrorSuccess) return 0;
    return stamp;
}

void Registry::enumValue(std::uint32_t index, std::string& name, RegType& type) const {
    std::array<char, kEnumNameChars> buffer{};
    std::uint32_t cch = kEnumNameChars;
    RegType found = kRegNone;
    if (key_ != kNoKey &&
        store_.enumValue(key_, index, buffer.data(), &cch, &found, nullptr, nullptr) == kErrorSuccess) {
        name = buffer.data();
        type = found;
    } else {
        name.clear();
    }
}

RegResult Registry::deleteTree(const std::string& subKey) const {
    if (key_ == kNoKey) return kErrorInvalidHandle;
    return deleteKeyTree(store_, key_, subKey);
}

void Registry::setString(const std::string& name, const std::string& value) const {
    if (key_ == kNoKey) return;
    store_.setValue(key_, name.c_str(), kRegSz, bytesOf(value.c_str()),
                    static_cast<std::uint32_t>(value.size() + 1));
}

void Registry::getString(const std::string& name, std::string& out) const {
    std::array<char, kStringReadBytes> buffer{};
    if (key_ != kNoKey) {
        RegType type = kRegNone;
        std::uint32_t cb = kStringReadBytes;
        // A value that does not fit leaves the zeroed buffer as it was.
        store_.queryValue(key_, name.c_str(), &type, reinterpret_cast<std::uint8_t*>(buffer.data()), &cb);
        buffer.back() = '\0';
    }
    out = buffer.data();
}

std::string Registry::getString(const std::string& name) const {
    std::string out;
    getString(name, out);
    return out;
}

void Registry::setBool(const std::string& name, bool value) const {
    if (key_ == kNoKey) return;
    const std::uint8_t byte = value ? 1 : 0;
    store_.setValue(key_, name.c_str(), kRegBinary, &byte, 1);
}

void Registry::getBool(const std::string& name, int* out) const {
    std::uint8_t byte = 0;
    if (key_ != kNoKey) {
        RegType type = kRegNone;
        std::uint32_t cb = 1;
        if (store_.queryValue(key_, name.c_str(), &type, &byte, &cb) != kErrorSuccess) byte = 0;
    }
    *out = byte != 0 ? 1 : 0;
}

int Registry::getBool(const std::string& name) const {
    int value = 0;
    getBool(name, &value);
    return value;
}

void Registry::setDword(const std::string& name, std::uint32_t value) const {
    if (key_ == kNoKey) return;
    std::uint8_t bytes[4];
    std::memcpy(bytes, &value, sizeof bytes);
    store_.setValue(key_, name.c_str(), kRegDword, bytes, sizeof bytes);
}

void Registry::getDword(const std::string& name, std::uint32_t* out) const {
    std::uint32_t value = 0;
    if (key_ != kNoKey) {
        RegType type = kRegNone;
        std::uint32_t cb = sizeof value;
        if (store_.queryValue(key_, name.c_str(), &type, reinterpret_cast<std::uint8_t*>(&value), &cb) !=
            kErrorSuccess)
            value = 0;
    }
    *out = value;
}

bool Registry::getRaw(const std::string& name, RegType& type, std::string& bytes) const {
    if (key_ == kNoKey) return false;
    std::uint32_t cb = 0;
    if (store_.queryValue(key_, name.c_str(), &type, nullptr, &cb) != kErrorSuccess) return false;
    bytes.assign(cb, '\0');
    if (cb == 0) return true;
    return store_.queryValue(key_, name.c_str(), &type, reinterpret_cast<std::uint8_t*>(bytes.data()), &cb) ==
           kErrorSuccess;
}

void Registry::deleteValue(const std::string& name) const {
    if (key_ != kNoKey) store_.deleteValue(key_, name.c_str());
}

}  // namespace braxcfg::platform
