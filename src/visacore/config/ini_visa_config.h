#pragma once
// The VISA configuration kept in an INI file below the product's base
// directory, one section per VISA interface name.
#include <string>

#include "visacore/config/base_visa_config.h"

namespace braxcfg::visa {

class IniVISAConfig : public BaseVISAConfig {
public:
    IniVISAConfig();
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

// One interface of an IniVISAConfig: the section named `intf`.
class IniVISAIntfConfig : public BaseVISAConfig {
public:
    IniVISAIntfConfig(IniVISAConfig* config, const char* intf);
    char* getKorlIntfName(char* buf) override;
    ViUInt32 isExportEnabled() override;

private:
    std::string path_;
    std::string section_;
};

}  // namespace braxcfg::visa
