#include "visacore/config/reg_visa_config.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform/registry.h"
#include "platform/store_key.h"
#include "platform/subkey_memo.h"
#include "visacore/config/config_names.h"

namespace braxcfg::visa {
namespace {

using platform::kRegOpenExisting;
using platform::Registry;

constexpr std::size_t kIntfPrefixLength = 4;  // "INTF"

char asciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

}  // namespace

std::optional<int> intfNumberOf(const std::string& name) {
    static constexpr char kPrefix[] = "INTF";
    if (name.size() <= kIntfPrefixLength || name.size() > kIntfPrefixLength + 10) return std::nullopt;
    for (std::size_t i = 0; i < kIntfPrefixLength; ++i)
        if (asciiUpper(name[i]) != kPrefix[i]) return std::nullopt;
    if (name[kIntfPrefixLength] == '0' && name.size() > kIntfPrefixLength + 1) return std::nullopt;
    long long number = 0;
    for (std::size_t i = kIntfPrefixLength; i < name.size(); ++i) {
        if (name[i] < '0' || name[i] > '9') return std::nullopt;
        number = number * 10 + (name[i] - '0');
    }
    if (number > INT32_MAX) return std::nullopt;
    return static_cast<int>(number);
}

namespace {

std::vector<int> sortedIntfNumbers(const Registry& root) {
    std::vector<int> numbers;
    if (!root.isOpen()) return numbers;
    // Names of any length, through a second handle: the wrapper's own
    // enumeration would stop at the first long name.
    for (const std::string& name :
         platform::StoreKey::opened(root.handle(), "", platform::kKeyRead).subkeyNames())
        if (const auto number = intfNumberOf(name)) numbers.push_back(*number);
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

int highestIntfNumber(const Registry& root) {
    int highest = 0;
    for (std::uint32_t index = 0;; ++index) {
        const std::string name = root.enumKey(index);
        if (name.empty()) break;
        if (name.size() <= kIntfPrefixLength || name.compare(0, kIntfPrefixLength, "INTF") != 0) continue;
        const int number = std::atoi(name.c_str() + kIntfPrefixLength);
        if (number > highest) highest = number;
    }
    return highest;
}

}  // namespace

// Both are asked before every round of the end of a pass; each is computed
// again only when the product key's subkey list changed.
std::shared_ptr<const std::vector<int>> existingIntfNumbers() {
    static platform::SubkeyMemo<std::vector<int>> memo;
    return memo.get(Registry("", kRegOpenExisting), sortedIntfNumbers);
}

int RegVISAConfig::getMaxIntfNum() {
    static platform::SubkeyMemo<int> memo;
    return *memo.get(Registry("", kRegOpenExisting), highestIntfNumber);
}

RegVISAIntfConfig::RegVISAIntfConfig(RegVISAConfig* config, const char* intf) {
    if (config == nullptr || intf == nullptr) return;
    const int highest = config->getMaxIntfNum();
    for (const int n : *existingIntfNumbers()) {
        if (n > highest) break;
        std::string keyName = "INTF" + std::to_string(n);
        if (Registry(keyName, kRegOpenExisting).getString("VISAName") == intf) {
            keyName_ = std::move(keyName);
            return;
        }
    }
}

char* RegVISAIntfConfig::getKorlIntfName(char* buf) {
    if (buf == nullptr || keyName_.empty()) return BaseVISAConfig::getKorlIntfName(buf);
    // getString reads at most 255 characters, which is what buf holds.
    const std::string name = Registry(keyName_, kRegOpenExisting).getString(kKorlIntfNameValue);
    std::memcpy(buf, name.c_str(), name.size() + 1);
    return buf;
}

ViUInt32 RegVISAIntfConfig::isExportEnabled() {
    if (keyName_.empty()) return BaseVISAConfig::isExportEnabled();
    std::uint32_t enabled = 0;
    Registry(keyName_, kRegOpenExisting).getDword(kExportEnabledValue, &enabled);
    return enabled;
}

}  // namespace braxcfg::visa
