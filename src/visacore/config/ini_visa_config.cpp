#include "visacore/config/ini_visa_config.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "platform/product_settings.h"
#include "platform/profile_reader.h"
#include "visacore/config/config_names.h"

namespace braxcfg::visa {

IniVISAConfig::IniVISAConfig() : path_((std::filesystem::path(platform::baseDir()) / kVisaConfigIniFile).string()) {}

IniVISAIntfConfig::IniVISAIntfConfig(IniVISAConfig* config, const char* intf) {
    if (config == nullptr || intf == nullptr) return;
    path_ = config->path();
    section_ = intf;
}

char* IniVISAIntfConfig::getKorlIntfName(char* buf) {
    if (buf == nullptr || section_.empty()) return BaseVISAConfig::getKorlIntfName(buf);
    const std::string name = platform::readProfileString(path_, section_, kKorlIntfNameValue, "", kConfigTextChars);
    std::memcpy(buf, name.c_str(), name.size() + 1);
    return buf;
}

ViUInt32 IniVISAIntfConfig::isExportEnabled() {
    if (section_.empty()) return BaseVISAConfig::isExportEnabled();
    const std::string text = platform::readProfileString(path_, section_, kExportEnabledValue, "0");
    // Read as a profile number is: leading decimal digits, anything after
    // them ignored.
    return static_cast<ViUInt32>(std::strtoul(text.c_str(), nullptr, 10));
}

}  // namespace braxcfg::visa
