#include "platform/product_key.h"

#include <cstdint>
#include <utility>

#include "platform/debug_output.h"
#include "platform/open_key.h"
#include "platform/per_store_cache.h"
#include "platform/store.h"

namespace braxcfg::platform {
namespace {

constexpr const char* kLegacyProductPath = "SOFTWARE\\Brask-Merrow\\KORL";
constexpr const char* kProductWordsPath = "SOFTWARE\\Tolvane\\Linkbase";
constexpr std::uint32_t kWordBytes = 1024;

std::string readText(const OpenKey& key, const std::string& name, std::uint32_t capacity) {
    RegType type = kRegNone;
    std::string bytes;
    if (!queryInto(key, name, capacity, type, bytes)) return {};
    return textOf(bytes);
}

// Opens or creates the words key and writes both words, as Registry's
// open-or-create and setString would (Registry itself opens below the
// product key, so it cannot be used to find it).
void writeProductWords(const std::string& maker, const std::string& product) {
    StoreBackend& store = currentStore();
    const RegAccess access = kKeyAllAccess | kKeyWow64_64Key;
    HKey key = kNoKey;
    if (store.openKey(kLocalMachine, kProductWordsPath, access, &key) != kErrorSuccess &&
        store.createKey(kLocalMachine, kProductWordsPath, access, &key, nullptr) != kErrorSuccess) {
        debugOutput(std::string("Error creating ") + kProductWordsPath + " key\n");
        return;
    }
    for (const auto& [name, text] : {std::pair{"MfgName", &maker}, std::pair{"KeyName", &product}})
        store.setValue(key, name, kRegSz, reinterpret_cast<const std::uint8_t*>(text->c_str()),
                       static_cast<std::uint32_t>(text->size() + 1));
    store.closeKey(key);
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
