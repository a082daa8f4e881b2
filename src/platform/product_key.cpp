#include "platform/product_key.h"

#include <cstdint>

#include "platform/per_store_cache.h"
#include "platform/store.h"
#include "platform/store_key.h"

namespace braxcfg::platform {
namespace {

constexpr const char* kLegacyProductPath = "SOFTWARE\\Brask-Merrow\\KORL";
constexpr const char* kProductWordsPath = "SOFTWARE\\Tolvane\\Linkbase";
constexpr std::uint32_t kWordBytes = 1024;

std::string readText(const StoreKey& key, const std::string& name, std::uint32_t capacity) {
    RegType type = kRegNone;
    std::string bytes;
    if (!key.readInto(name, capacity, type, bytes)) return {};
    return textOf(bytes);
}

// Opens or creates the words key and writes both words, as Registry's
// open-or-create and setString would (Registry itself opens below the
// product key, so it cannot be used to find it).
void writeProductWords(const std::string& maker, const std::string& product) {
    StoreKey key;
    if (key.openOrCreate(kLocalMachine, kProductWordsPath, kKeyAllAccess | kKeyWow64_64Key) != kErrorSuccess) return;
    key.setText("MfgName", maker);
    key.setText("KeyName", product);
}

std::string computeProductKey() {
    const bool legacyInstallation = static_cast<bool>(StoreKey::opened(kLocalMachine, kLegacyProductPath, kKeyQueryValue));
    std::string maker;
    std::string product;
    {
        const StoreKey words = StoreKey::opened(kLocalMachine, kProductWordsPath, kKeyQueryValue);
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
        // A store opened only for reading keeps no trace of the reader.
        if (currentStoreStatus().writable) writeProductWords(maker, product);
    }
    return "SOFTWARE\\" + maker + "\\" + product + "\\CurrentVersion";
}

}  // namespace

std::string productKey() {
    static PerStoreCache<std::string> cache;
    return cache.get(computeProductKey);
}

}  // namespace braxcfg::platform
