#include "platform/store_key.h"

#include <array>
#include <utility>

#include "platform/debug_output.h"
#include "platform/store.h"

namespace braxcfg::platform {
namespace {

const std::uint8_t* bytesOf(const char* text) { return reinterpret_cast<const std::uint8_t*>(text); }

}  // namespace

StoreKey::StoreKey() : StoreKey(currentStore()) {}

StoreKey::StoreKey(StoreKey&& other) noexcept : store_(other.store_), key_(std::exchange(other.key_, kNoKey)) {}

StoreKey& StoreKey::operator=(StoreKey&& other) noexcept {
    if (this != &other) {
        reset();
        store_ = other.store_;
        key_ = std::exchange(other.key_, kNoKey);
    }
    return *this;
}

RegResult StoreKey::open(HKey parent, const std::string& path, RegAccess access) {
    const RegResult result = store_->openKey(parent, path.c_str(), access, receive());
    if (result != kErrorSuccess) key_ = kNoKey;
    return result;
}

RegResult StoreKey::create(HKey parent, const std::string& path, RegAccess access) {
    const RegResult result = store_->createKey(parent, path.c_str(), access, receive(), nullptr);
    if (result != kErrorSuccess) key_ = kNoKey;
    return result;
}

StoreKey StoreKey::opened(HKey parent, const std::string& path, RegAccess access) {
    StoreKey key;
    key.open(parent, path, access | kKeyWow64_64Key);
    return key;
}

RegResult StoreKey::openOrCreate(HKey parent, const std::string& path, RegAccess access) {
    if (open(parent, path, access) == kErrorSuccess) return kErrorSuccess;
    const RegResult created = create(parent, path, access);
    if (created != kErrorSuccess) debugOutput("Error creating " + path + " key\n");
    return created;
}

HKey* StoreKey::receive() {
    reset();
    return &key_;
}

void StoreKey::reset() {
    // The predefined root is not ours to close.
    if (key_ != kNoKey && key_ != kLocalMachine) store_->closeKey(key_);
    key_ = kNoKey;
}

bool StoreKey::readInto(const std::string& name, std::uint32_t capacity, RegType& type, std::string& bytes) const {
    if (key_ == kNoKey) return false;
    bytes.assign(capacity, '\0');
    std::uint32_t cb = capacity;
    if (store_->queryValue(key_, name.c_str(), &type, reinterpret_cast<std::uint8_t*>(bytes.data()), &cb) !=
        kErrorSuccess)
        return false;
    bytes.resize(cb);
    return true;
}

bool StoreKey::readBytes(const std::string& name, RegType& type, std::string& bytes) const {
    if (key_ == kNoKey) return false;
    std::uint32_t cb = 0;
    if (store_->queryValue(key_, name.c_str(), &type, nullptr, &cb) != kErrorSuccess) return false;
    bytes.assign(cb, '\0');
    if (cb == 0) return true;
    return store_->queryValue(key_, name.c_str(), &type, reinterpret_cast<std::uint8_t*>(bytes.data()), &cb) ==
           kErrorSuccess;
}

RegResult StoreKey::setBytes(const std::string& name, RegType type, std::string_view bytes) const {
    if (key_ == kNoKey) return kErrorInvalidHandle;
    return store_->setValue(key_, name.c_str(), type, bytesOf(bytes.data()), static_cast<std::uint32_t>(bytes.size()));
}

RegResult StoreKey::setText(const std::string& name, const std::string& text) const {
    // c_str() holds the terminator the store keeps with the text.
    return setBytes(name, kRegSz, std::string_view(text.c_str(), text.size() + 1));
}

RegResult StoreKey::deleteValue(const std::string& name) const {
    if (key_ == kNoKey) return kErrorInvalidHandle;
    return store_->deleteValue(key_, name.c_str());
}

std::vector<StoreKey::ValueName> StoreKey::valueNames() const {
    std::vector<ValueName> values;
    if (key_ == kNoKey) return values;
    std::vector<char> name(kMaxValueNameLength + 1);
    for (std::uint32_t index = 0;; ++index) {
        auto cch = static_cast<std::uint32_t>(name.size());
        RegType type = kRegNone;
        if (store_->enumValue(key_, index, name.data(), &cch, &type, nullptr, nullptr) != kErrorSuccess) break;
        values.push_back(ValueName{std::string(name.data(), cch), type});
    }
    return values;
}

std::vector<std::string> StoreKey::subkeyNames() const {
    std::vector<std::string> names;
    if (key_ == kNoKey) return names;
    std::array<char, kMaxKeyNameLength + 1> name{};
    for (std::uint32_t index = 0;
         store_->enumKey(key_, index, name.data(), static_cast<std::uint32_t>(name.size())) == kErrorSuccess; ++index)
        names.emplace_back(name.data());
    return names;
}

std::string textOf(const std::string& bytes) { return std::string(bytes.c_str()); }

RegResult deleteKeyTree(StoreBackend& store, HKey parent, const std::string& path) {
    // Most keys deleted (device entries) have nothing below them. One that
    // has refuses the plain delete and is left as it was for the walk.
    if (store.deleteKey(parent, path.c_str()) == kErrorSuccess) return kErrorSuccess;
    // Depth first without recursion, so no depth of tree can exhaust the
    // stack. Each key's subkey names are read once before any is deleted.
    struct Level {
        StoreKey key;
        std::string name;  // below the level above (path for the first)
        std::vector<std::string> children;
        std::size_t next = 0;
    };
    std::vector<Level> levels;
    const auto enter = [&](HKey above, const std::string& name) {
        Level level{StoreKey(store), name, {}};
        if (const RegResult opened = level.key.open(above, name, kKeyAllAccess); opened != kErrorSuccess)
            return opened;
        level.children = level.key.subkeyNames();
        levels.push_back(std::move(level));
        return kErrorSuccess;
    };
    if (const RegResult opened = enter(parent, path); opened != kErrorSuccess) return opened;
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next < level.children.size()) {
            const std::string child = level.children[level.next++];
            if (const RegResult opened = enter(level.key.get(), child); opened != kErrorSuccess) return opened;
            continue;
        }
        const std::string name = level.name;
        levels.pop_back();
        if (const RegResult deleted = store.deleteKey(levels.empty() ? parent : levels.back().key.get(), name.c_str());
            deleted != kErrorSuccess)
            return deleted;
    }
    return kErrorSuccess;
}

}  // namespace braxcfg::platform
