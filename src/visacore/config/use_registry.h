#pragma once
// Where the core library keeps the VISA configuration, and the objects that
// read one interface's part of it.
#include <memory>

#include "visacore/config/base_visa_config.h"

namespace braxcfg::visa {

// True (1) when the configuration lives in the configuration store, the
// default; 0 when the product setting "UseRegistryVisaConfig" is 0 and the
// INI file is used. Asked anew on every call.
ViUInt16 useRegistry();

// A store-wide object of the kind useRegistry() names now and the object
// for interface `intf` built on it. `intf` is null only when memory ran out.
struct VisaIntfConfig {
    std::unique_ptr<BaseVISAConfig> store;
    std::unique_ptr<BaseVISAConfig> intf;  // destroyed before `store`
};
VisaIntfConfig openVisaIntfConfig(const char* intf);

}  // namespace braxcfg::visa
