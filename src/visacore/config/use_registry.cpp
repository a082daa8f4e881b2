#include "visacore/config/use_registry.h"

#include <new>

#include "platform/product_settings.h"
#include "visacore/config/config_names.h"
#include "visacore/config/ini_visa_config.h"
#include "visacore/config/reg_visa_config.h"

namespace braxcfg::visa {

ViUInt16 useRegistry() { return platform::readProductFlag(kUseRegistrySetting, 1) != 0 ? 1 : 0; }

VisaIntfConfig openVisaIntfConfig(const char* intf) {
    VisaIntfConfig config;
    if (useRegistry()) {
        auto* store = new (std::nothrow) RegVISAConfig();
        config.store.reset(store);
        if (store != nullptr) config.intf.reset(new (std::nothrow) RegVISAIntfConfig(store, intf));
    } else {
        auto* store = new (std::nothrow) IniVISAConfig();
        config.store.reset(store);
        if (store != nullptr) config.intf.reset(new (std::nothrow) IniVISAIntfConfig(store, intf));
    }
    return config;
}

}  // namespace braxcfg::visa
