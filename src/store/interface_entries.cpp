// Interface entries: reading an INTF<n> key and marking it set up.
#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store/list_rewrite.h"
#include "visacore/config/reg_visa_config.h"
#include "visacore/interface_types.h"

namespace braxcfg::store {
namespace {

using platform::kRegOpenExisting;
using platform::kRegOpenOrCreate;
using platform::Registry;

std::string normalisedRsrcType(const std::string& stored) {
    return stored == "SOCKET" ? "SOCKET" : "INSTR";
}

// Creates the interface resources that "DefaultIntfRsrcs" marks for the
// interface's type word, named "<VISAName>::<class>".
void createInterfaceResources(const Registry& intfKey) {
    const std::string visaName = intfKey.getString("VISAName");
    const std::string typeWord = intfKey.getString("VISAIntfType");
    Registry resources(intfKey.handle(), "VISAIntfRsrc", kRegOpenOrCreate);
    Registry templates("VISAInfo\\DefaultIntfRsrcs", kRegOpenExisting);
    for (const std::string& className : templates.subkeyNames()) {
        Registry classKey(templates.handle(), className, kRegOpenExisting);
        if (!classKey.getBool(typeWord)) continue;
        Registry entry(resources.handle(), visaName + "::" + className, kRegOpenOrCreate);
        entry.setString("Driver", classKey.getString("DrvrName"));
        entry.setString("Prefix", classKey.getString("PrefixName"));
    }
}

}  // namespace

std::string ConfigStore::GetVisaName(const std::string& intf) const {
    return Registry(intf, kRegOpenExisting).getString("VISAName");
}

std::uint16_t ConfigStore::GetIntfType(const std::string& intf) const {
    return visa::interfaceTypeOf(Registry(intf, kRegOpenExisting).getString("VISAIntfType"));
}

std::uint16_t ConfigStore::GetIntfType(const std::string& intf, std::string& rsrcType) const {
    Registry key(intf, kRegOpenExisting);
    rsrcType = normalisedRsrcType(key.getString("VISARsrcType"));
    return visa::interfaceTypeOf(key.getString("VISAIntfType"));
}

// The configuration class of the VISA core services owns the rule that
// reads interface numbers from the INTF<n> key names.
int ConfigStore::GetMaxIntfNum() const { return visa::RegVISAConfig().getMaxIntfNum(); }

int ConfigStore::IsValidVisaIntf(const std::string& intf) const { return GetVisaName(intf).empty() ? 0 : 1; }

int ConfigStore::IsVisaIntfSetup(const std::string& intf) const {
    if (!IsValidVisaIntf(intf)) return 0;
    return Registry(intf, kRegOpenExisting).valueExists("VISAAutoConfigDriver") ? 1 : 0;
}

platform::StoreFailure ConfigStore::SetupIntfEntries(const std::string& intf, int autoConfig) const {
    return rewriteList([&] {
        Registry key(intf, kRegOpenExisting);
        if (!key.isOpen() || key.valueExists("VISAAutoConfigDriver")) return;
        key.setString("VISAAutoConfigDriver", "AUTOCF");
        key.setBool("VISAAutoConfig", autoConfig != 0);
        Registry devices(key.handle(), "VISADev", kRegOpenOrCreate);
        createInterfaceResources(key);
    });
}

}  // namespace braxcfg::store
