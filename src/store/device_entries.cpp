// Device entries of an interface ("VISADev") and its run-time
// identification flag.
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store/list_rewrite.h"

namespace braxcfg::store {
namespace {

using platform::kRegOpenExisting;
using platform::kRegOpenOrCreate;
using platform::Registry;

struct ResourceClass {
    std::string name;
    std::string driver;
    std::string prefix;
};

// The classes of "DefaultRsrcs" marked for the interface type `typeWord`
// that pass `classFilter` (empty: every class).
std::vector<ResourceClass> deviceClasses(const std::string& typeWord, const std::string& classFilter) {
    std::vector<ResourceClass> classes;
    const Registry templates("VISAInfo\\DefaultRsrcs", kRegOpenExisting);
    for (const std::string& className : templates.subkeyNames()) {
        const Registry classKey(templates.handle(), className, kRegOpenExisting);
        if (!classKey.getBool(typeWord)) continue;
        if (!classFilter.empty() && classFilter != className) continue;
        classes.push_back({className, classKey.getString("DrvrName"), classKey.getString("PrefixName")});
    }
    return classes;
}

void writeDevice(const Registry& devices, const std::string& device, const std::vector<ResourceClass>& classes,
                 const std::string& typeWord) {
    const Registry deviceKey(devices.handle(), device, kRegOpenOrCreate);
    for (const ResourceClass& resourceClass : classes) {
        const Registry entry(deviceKey.handle(), device + "::" + resourceClass.name, kRegOpenOrCreate);
        entry.setString("Driver", resourceClass.driver);
        entry.setString("Prefix", resourceClass.prefix);
        // The run time must not send an identification query down a serial
        // line on its own: the instrument behind it may not understand one.
        if (typeWord == "ASRL") entry.setString("AutoIdentify", "0");
    }
}

}  // namespace

platform::StoreFailure ConfigStore::AddDeviceEntry(const std::string& intf, const std::string& device,
                                                   const std::string& classFilter, const std::string& /*unused*/) const {
    return AddDeviceEntries(intf, {device}, classFilter);
}

platform::StoreFailure ConfigStore::AddDeviceEntries(const std::string& intf, const std::vector<std::string>& devices,
                                                     const std::string& classFilter) const {
    return rewriteList([&] {
        const Registry intfKey(intf, kRegOpenExisting);
        const Registry list(intfKey.handle(), "VISADev", kRegOpenExisting);
        const std::string typeWord = intfKey.getString("VISAIntfType");
        const std::vector<ResourceClass> classes = deviceClasses(typeWord, classFilter);
        for (const std::string& device : devices) writeDevice(list, device, classes, typeWord);
    });
}

platform::StoreFailure ConfigStore::ClearDevices(const std::string& intf) const {
    return rewriteList([&] {
        const Registry intfKey(intf, kRegOpenExisting);
        intfKey.deleteTree("VISADev");
        const Registry devices(intfKey.handle(), "VISADev", kRegOpenOrCreate);
    });
}

std::string ConfigStore::GetDeviceName(const std::string& intf, std::uint32_t index) const {
    return Registry(intf + "\\VISADev", kRegOpenExisting).enumKey(index);
}

std::vector<std::string> ConfigStore::GetDeviceNames(const std::string& intf) const {
    return Registry(intf + "\\VISADev", kRegOpenExisting).subkeyNames();
}

std::string ConfigStore::GetDeviceRsrcName(const std::string& intf, const std::string& device,
                                           std::uint32_t index) const {
    return Registry(intf + "\\VISADev\\" + device, kRegOpenExisting).enumKey(index);
}

int ConfigStore::IsAutoConfig(const std::string& intf) const {
    const Registry intfKey(intf, kRegOpenExisting);
    // An interface never given the flag is identified at run time, and is
    // stored so from now on.
    if (!intfKey.valueExists("VISAAutoConfig")) SetAutoConfig(intf, 1);
    return intfKey.getBool("VISAAutoConfig");
}

void ConfigStore::SetAutoConfig(const std::string& intf, int flag) const {
    Registry(intf, kRegOpenExisting).setBool("VISAAutoConfig", flag != 0);
}

}  // namespace braxcfg::store
