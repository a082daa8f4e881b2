#include "platform/product_settings.h"

#include <strings.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "platform/per_store_cache.h"
#include "platform/registry.h"
#include "platform/store_key.h"

namespace braxcfg::platform {
namespace {

constexpr std::uint32_t kFlagBytes = 16;
constexpr std::uint32_t kBaseDirBytes = 1024;
constexpr std::uint32_t kListTextBytes = 256;

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
    StoreKey key;
    if (key.openOrCreate(kLocalMachine, listPath(list), kKeyAllAccess | kKeyWow64_64Key) != kErrorSuccess)
        return false;
    return (text.empty() ? key.deleteValue(name) : key.setText(name, text)) == kErrorSuccess;
}

}  // namespace

long readProductFlag(const std::string& name, long defaultValue) {
    const StoreKey key = StoreKey::opened(kLocalMachine, productKey(), kKeyQueryValue);
    RegType type = kRegNone;
    std::string bytes;
    if (!key.readInto(name, kFlagBytes, type, bytes)) return defaultValue;
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
        const StoreKey key = StoreKey::opened(kLocalMachine, productKey(), kKeyAllAccess);
        RegType type = kRegNone;
        std::string bytes;
        if (!key.readInto("BaseDir", kBaseDirBytes, type, bytes)) return std::string(".");
        return textOf(bytes);
    });
}

std::string lookupDeviceList(const std::string& list, const std::string& name, const std::string& defaultText) {
    const StoreKey key = StoreKey::opened(kLocalMachine, listPath(list), kKeyQueryValue);
    RegType type = kRegNone;
    std::string bytes;
    if (key.readInto(name, kListTextBytes, type, bytes)) return textOf(bytes);
    if (list == kDevicesList && defaultText.empty()) return name;
    return defaultText;
}

bool enumDeviceList(const std::string& list, std::uint32_t index, std::string& name, std::string& text) {
    name.clear();
    text.clear();
    const StoreKey key = StoreKey::opened(kLocalMachine, listPath(list), kKeyQueryValue);
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
