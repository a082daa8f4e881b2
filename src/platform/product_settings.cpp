#include "platform/product_settings.h"

#include <strings.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "platform/registry.h"
#include "platform/store.h"

namespace braxcfg::platform {
namespace {

constexpr const char* kLegacyProductPath = "SOFTWARE\\Brask-Merrow\\KORL";
constexpr const char* kProductWordsPath = "SOFTWARE\\Tolvane\\Linkbase";
constexpr std::uint32_t kWordBytes = 1024;
constexpr std::uint32_t kFlagBytes = 16;
constexpr std::uint32_t kBaseDirBytes = 1024;
constexpr std::uint32_t kListTextBytes = 256;

// A value cached for the life of one store: a new store (another file, or
// the same file opened anew) reads it again.
template <typename T>
class PerStoreCache {
public:
    template <typename Compute>
    T get(Compute compute) {
        std::lock_guard lock(mutex_);
        const std::uint64_t generation = storeGeneration();
        if (!valid_ || generation_ != generation) {
            value_ = compute();
            generation_ = generation;
            valid_ = true;
        }
        return value_;
    }

private:
    std::mutex mutex_;
    bool valid_ = false;
    std::uint64_t generation_ = 0;
    T value_{};
};

// Closes a raw backend handle when it goes out of scope.
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
bool queryInto(const OpenKey& key, const std::string& name, std::uint32_t capacity, RegType& type,
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

std::string textOf(const std::string& bytes) { return std::string(bytes.c_str()); }

std::string readText(const OpenKey& key, const std::string& name, std::uint32_t capacity) {
    RegType type = kRegNone;
    std::string bytes;
    if (!queryInto(key, name, capacity, type, bytes)) return {};
    return textOf(bytes);
}

std::string computeProductKey() {
    bool legacyInstallation = false;
    {
        OpenKey legacy(kLocalMachine, kLegacyProductPath, kKeyQueryValue);
        legacyInstallation = static_cast<bool>(legacy);
    }
    std::string maker;
    std::string product;
    {
        OpenKey words(kLocalMachine, kProductWordsPath, kKeyQueryValue);
        maker = readText(words, "MfgName", kWordBytes);
        product = readText(words, "KeyName", kWordBytes);
    }
    if (maker.empty() || product.empty()) {
        if (legacyInstallation) {
            // An older installation keeps its tree under the word "KORL"
            // alone, which leaves an empty product component in the path
            // ("SOFTWARE\KORL\\CurrentVersion"); installations rely on it.
            maker = "KORL";
            product.clear();
        } else {
            maker = "Tolvane";
            product = "Linkbase";
        }
        Registry words(kLocalMachine, kProductWordsPath, kRegOpenOrCreate);
        words.setString("MfgName", maker);
        words.setString("KeyName", product);
    }
    return "SOFTWARE\\" + maker + "\\" + product + "\\CurrentVersion";
}

long flagFromBytes(RegType type, const std::string& bytes, long defaultValue) {
    switch (type) {
        case kRegSz: {
            const std::string text = textOf(bytes);
            if (strcasecmp(text.c_str(), "False") == 0) return 0;
            if (strcasecmp(text.c_str(), "True") == 0) return 1;
            return std::strtol(text.c_str(), nullptr, 10);
        }
        case kRegDword: {
            std::uint32_t number = 0;
            std::memcpy(&number, bytes.data(), std::min<std::size_t>(bytes.size(), sizeof number));
            return static_cast<long>(number);
        }
        case kRegBinary:
            return bytes.empty() ? 0 : static_cast<unsigned char>(bytes[0]);
        default:
            return defaultValue;
    }
}

std::string listPath(const std::string& list) { return productKey() + "\\" + list; }

bool writeListEntry(const std::string& list, const std::string& name, const std::string& text) {
    Registry key(kLocalMachine, listPath(list), kRegOpenOrCreate);
    if (!key.isOpen()) return false;
    StoreBackend& store = currentStore();
    if (text.empty()) return store.deleteValue(key.handle(), name.c_str()) == kErrorSuccess;
    return store.setValue(key.handle(), name.c_str(), kRegSz, reinterpret_cast<const std::uint8_t*>(text.c_str()),
                          static_cast<std::uint32_t>(text.size() + 1)) == kErrorSuccess;
}

}  // namespace

std::string productKey() {
    static PerStoreCache<std::string> cache;
    return cache.get(computeProductKey);
}

long readProductFlag(const std::string& name, long defaultValue) {
    OpenKey key(kLocalMachine, productKey(), kKeyQueryValue);
    if (!key) return defaultValue;
    RegType type = kRegNone;
    std::string bytes;
    if (!queryInto(key, name, kFlagBytes, type, bytes)) return defaultValue;
    return flagFromBytes(type, bytes, defaultValue);
}

long useLegacyPxiInstrFormat() {
    static PerStoreCache<long> cache;
    return cache.get([] { return readProductFlag("UseLegacyPxiInstrFormat", 1); });
}

std::uint32_t visaPresent() {
    Registry key(kLocalMachine, productKey(), kRegOpenExisting);
    if (!key.isOpen()) return 0;
    RegType type = kRegNone;
    std::string bytes;
    if (key.getRaw("LinkbaseVisaPresent", type, bytes)) {
        std::uint32_t number = 0;
        key.getDword("LinkbaseVisaPresent", &number);
        return number;
    }
    // Carry the value of the older name over, once, under the current name.
    std::uint32_t present = 1;
    if (key.getRaw("KxVisaPresent", type, bytes)) key.getDword("KxVisaPresent", &present);
    key.deleteValue("KxVisaPresent");
    key.setDword("LinkbaseVisaPresent", present);
    return present;
}

std::string baseDir() {
    static PerStoreCache<std::string> cache;
    return cache.get([] {
        OpenKey key(kLocalMachine, productKey(), kKeyAllAccess);
        RegType type = kRegNone;
        std::string bytes;
        if (!queryInto(key, "BaseDir", kBaseDirBytes, type, bytes)) return std::string(".");
        return textOf(bytes);
    });
}

std::string lookupDeviceList(const std::string& list, const std::string& name, const std::string& defaultText) {
    OpenKey key(kLocalMachine, listPath(list), kKeyQueryValue);
    RegType type = kRegNone;
    std::string bytes;
    if (queryInto(key, name, kListTextBytes, type, bytes)) return textOf(bytes);
    if (list == kDevicesList && defaultText.empty()) return name;
    return defaultText;
}

bool enumDeviceList(const std::string& list, std::uint32_t index, std::string& name, std::string& text) {
    name.clear();
    text.clear();
    OpenKey key(kLocalMachine, listPath(list), kKeyQueryValue);
    if (!key) return false;
    std::array<char, kListTextBytes> buffer{};
    std::uint32_t cch = kListTextBytes;
    if (key.store().enumValue(key.get(), index, buffer.data(), &cch, nullptr, nullptr, nullptr) != kErrorSuccess)
        return false;
    std::string found = lookupDeviceList(list, buffer.data());
    if (found.empty()) return false;
    name = buffer.data();
    text = std::move(found);
    return true;
}

int changeDeviceLists(const std::string& name, const std::optional<std::string>& devicesText,
                      const std::optional<std::string>& visaDevicesText) {
    int result = 0;
    if (devicesText && writeListEntry(kDevicesList, name, *devicesText)) result += 1;
    if (visaDevicesText && writeListEntry(kVisaDevicesList, name, *visaDevicesText)) result += 2;
    return result;
}

}  // namespace braxcfg::platform
