#pragma once
// The VISA configuration kept in the configuration store: interface keys
// "INTF<n>" below the product key.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "visacore/config/base_visa_config.h"

namespace braxcfg::visa {

// The number n when `name` is "INTF<n>" (the prefix in any case, <n> without
// leading zeros and fitting an int); nothing otherwise.
std::optional<int> intfNumberOf(const std::string& name);

// The numbers of the INTF<n> keys below the product key, ascending. Every
// subkey name is read, whatever its length, so only the keys that exist are
// visited: no loop runs up to a stray INTF2147483647.
std::shared_ptr<const std::vector<int>> existingIntfNumbers();

class RegVISAConfig : public BaseVISAConfig {
public:
    RegVISAConfig() = default;
    // Highest <n> among the subkeys "INTF<n>" (case-sensitive, digits read
    // as atoi does); 0 when there is none.
    virtual int getMaxIntfNum();
};

// One interface of a RegVISAConfig: the interface key whose "VISAName" is
// `intf` (the first from INTF0 upward). An interface that has no key
// answers as a store-wide object does.
class RegVISAIntfConfig : public BaseVISAConfig {
public:
    RegVISAIntfConfig(RegVISAConfig* config, const char* intf);
    char* getKorlIntfName(char* buf) override;
    ViUInt32 isExportEnabled() override;

private:
    std::string keyName_;  // "INTF<n>", empty when not found
};

}  // namespace braxcfg::visa
