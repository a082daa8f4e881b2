#include "platform/registry.h"

#include <array>
#include <cstring>
#include <vector>

#include "platform/debug_output.h"
#include "platform/product_key.h"

namespace braxcfg::platform {
namespace {

constexpr std::uint32_t kEnumNameChars = 80;
constexpr std::uint32_t kValueExistsNameChars = 1025;
constexpr std::uint32_t kStringReadBytes = 256;

RegAccess accessFor(RegView view) {
    return kKeyAllAccess | (view == RegView::View32 ? kKeyWow64_32Key : kKeyWow64_64Key);
}

}  // namespace

Registry::Registry(const std::string& subKey, RegState state, RegView view) {
    open(kLocalMachine, productKey() + "\\" + subKey, state, view);
}

Registry::Registry(HKey parent, const std::string& path, RegState state, RegView view) {
    open(parent, path, state, view);
}

Registry::~Registry() = default;

void Registry::open(HKey parent, const std::string& path, RegState state, RegView view) {
    const RegAccess access = accessFor(view);
    if (state == kRegOpenOrCreate)
        key_.openOrCreate(parent, path, access);
    else if (state == kRegOpenExisting)
        key_.open(parent, path, access);
    else
        debugOutput("Invalid RegState to Registry::Registry\n");
}

bool Registry::valueExists(const std::string& name) const {
    if (!key_) return false;
    std::vector<char> buffer(kValueExistsNameChars);
    for (std::uint32_t index = 0;; ++index) {
        std::uint32_t cch = kValueExistsNameChars;
        if (store().enumValue(key_.get(), index, buffer.data(), &cch, nullptr, nullptr, nullptr) != kErrorSuccess)
            return false;
        if (name == buffer.data()) return true;
    }
}

void Registry::enumKey(std::uint32_t index, std::string& out) const {
    std::array<char, kEnumNameChars> buffer{};
    if (key_ && store().enumKey(key_.get(), index, buffer.data(), kEnumNameChars) == kErrorSuccess)
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
    if (!key_ || store().queryInfoKey(key_.get(), nullptr, &stamp) != kErrorSuccess) return 0;
    return stamp;
}

void Registry::enumValue(std::uint32_t index, std::string& name, RegType& type) const {
    std::array<char, kEnumNameChars> buffer{};
    std::uint32_t cch = kEnumNameChars;
    RegType found = kRegNone;
    if (key_ &&
        store().enumValue(key_.get(), index, buffer.data(), &cch, &found, nullptr, nullptr) == kErrorSuccess) {
        name = buffer.data();
        type = found;
    } else {
        name.clear();
    }
}

RegResult Registry::deleteTree(const std::string& subKey) const {
    if (!key_) return kErrorInvalidHandle;
    return deleteKeyTree(store(), key_.get(), subKey);
}

void Registry::setString(const std::string& name, const std::string& value) const { key_.setText(name, value); }

void Registry::getString(const std::string& name, std::string& out) const {
    std::array<char, kStringReadBytes> buffer{};
    if (key_) {
        RegType type = kRegNone;
        std::uint32_t cb = kStringReadBytes;
        // A value that does not fit leaves the zeroed buffer as it was.
        store().queryValue(key_.get(), name.c_str(), &type, reinterpret_cast<std::uint8_t*>(buffer.data()), &cb);
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
    const char byte = value ? 1 : 0;
    key_.setBytes(name, kRegBinary, std::string_view(&byte, 1));
}

void Registry::getBool(const std::string& name, int* out) const {
    std::uint8_t byte = 0;
    if (key_) {
        RegType type = kRegNone;
        std::uint32_t cb = 1;
        if (store().queryValue(key_.get(), name.c_str(), &type, &byte, &cb) != kErrorSuccess) byte = 0;
    }
    *out = byte != 0 ? 1 : 0;
}

int Registry::getBool(const std::string& name) const {
    int value = 0;
    getBool(name, &value);
    return value;
}

void Registry::setDword(const std::string& name, std::uint32_t value) const {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof bytes);
    key_.setBytes(name, kRegDword, std::string_view(bytes, sizeof bytes));
}

void Registry::getDword(const std::string& name, std::uint32_t* out) const {
    std::uint32_t value = 0;
    if (key_) {
        RegType type = kRegNone;
        std::uint32_t cb = sizeof value;
        if (store().queryValue(key_.get(), name.c_str(), &type, reinterpret_cast<std::uint8_t*>(&value), &cb) !=
            kErrorSuccess)
            value = 0;
    }
    *out = value;
}

bool Registry::getRaw(const std::string& name, RegType& type, std::string& bytes) const {
    return key_.readBytes(name, type, bytes);
}

void Registry::deleteValue(const std::string& name) const { key_.deleteValue(name); }

}  // namespace braxcfg::platform
