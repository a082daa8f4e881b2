#include "store/device_list_write.h"

#include "platform/store.h"

namespace braxcfg::store {

bool writeDeviceList(const ConfigStore& store, const DeviceListWrite& plan) {
    platform::StoreTransaction transaction;
    if (!transaction.active()) return false;
    store.SetAutoConfig(plan.intf, plan.autoConfig);
    store.ClearDevices(plan.intf);
    store.AddDeviceEntries(plan.intf, plan.devices, plan.classFilter);
    return transaction.commit();
}

}  // namespace braxcfg::store

namespace braxcfg::store {

std::string deviceListNotWrittenMessage(const std::string& visaName) {
    return "The devices of " + visaName +
           " could not be saved: the configuration store is busy or cannot be written. Nothing was changed; "
           "press OK to try again or Cancel to leave the list as it was.";
}

}  // namespace braxcfg::store
