#include "visacore/config/base_visa_config.h"

namespace braxcfg::visa {

char* BaseVISAConfig::getKorlIntfName(char* buf) {
    if (buf != nullptr) buf[0] = '\0';
    return buf;
}

ViUInt32 BaseVISAConfig::isExportEnabled() { return 0; }

}  // namespace braxcfg::visa
