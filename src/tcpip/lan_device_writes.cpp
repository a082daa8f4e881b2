#include "tcpip/lan_device_writes.h"

#include "platform/store.h"

namespace braxcfg::tcpip {

bool writeLanDevices(const store::ConfigStore& store, const std::string& intf,
                     const std::vector<DeviceWrite>& writes, AList& aliases) {
    platform::StoreTransaction transaction;
    // Without the write lock every operation below would take its own
    // transaction, and a lock freed half-way would leave half a list.
    if (!transaction.active()) return false;
    store.ClearDevices(intf);
    for (const DeviceWrite& write : writes) store.AddDeviceEntry(intf, write.device, write.rsrcClass, write.alias);
    if (aliases.commit() != 0) return false;
    return transaction.commit();
}

std::string lanDevicesNotWrittenMessage() {
    return "The configuration store could not be written (it may be in use by another program, or the disk may "
           "be full). Nothing was saved; press OK to try again or Cancel to leave the devices as they were.";
}

}  // namespace braxcfg::tcpip
