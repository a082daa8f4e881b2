#include "store/device_list_write.h"

#include "store/list_rewrite.h"

namespace braxcfg::store {

platform::StoreFailure writeDeviceList(const ConfigStore& store, const DeviceListWrite& plan) {
    return rewriteList([&] {
        store.SetAutoConfig(plan.intf, plan.autoConfig);
        store.ClearDevices(plan.intf);
        store.AddDeviceEntries(plan.intf, plan.devices, plan.classFilter);
    });
}

}  // namespace braxcfg::store
