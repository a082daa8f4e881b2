#include "visacore/config/reg_visa_config.h"

#include <cstdlib>
#include <cstring>

#include "platform/registry.h"
#include "platform/subkey_memo.h"
#include "visacore/config/config_names.h"

namespace braxcfg::visa {
namespace {

using platform::kRegOpenExisting;
using platform::Registry;

constexpr std::size_t kIntfPrefixLength = 4;  // "INTF"

int highestInterfaceNumber(const Registry& root) {
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

// The end of a configuration pass asks before every round; the answer is
// computed again only when the product key's subkeys changed.
int RegVISAConfig::getMaxIntfNum() {
    static platform::SubkeyMemo<int> memo;
    return *memo.get(Registry("", kRegOpenExisting), highestInterfaceNumber);
}

RegVISAIntfConfig::RegVISAIntfConfig(RegVISAConfig* config, const char* intf) {
    if (config == nullptr || intf == nullptr) return;
    const int highest = config->getMaxIntfNum();
    for (int n = 0; n <= highest; ++n) {
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
