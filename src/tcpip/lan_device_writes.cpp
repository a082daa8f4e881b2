#include "tcpip/lan_device_writes.h"

namespace braxcfg::tcpip {

platform::StoreFailure writeLanDevices(const store::ConfigStore& store, const std::string& intf,
                                       const std::vector<DeviceWrite>& writes, AList& aliases) {
    using platform::StoreFailure;
    platform::StoreTransaction transaction;
    // Without the write lock every operation below would take its own
    // transaction, and a lock freed half-way would leave half a list.
    if (!transaction.active()) return transaction.failure();
    // A failed step returns at once: the transaction rolls back as it goes.
    if (const StoreFailure failure = store.ClearDevices(intf); failure != StoreFailure::None) return failure;
    for (const DeviceWrite& write : writes)
        if (const StoreFailure failure = store.AddDeviceEntry(intf, write.device, write.rsrcClass, write.alias);
            failure != StoreFailure::None)
            return failure;
    if (aliases.commit() != 0) return StoreFailure::Other;
    if (!transaction.commit()) return transaction.failure();
    return StoreFailure::None;
}

}  // namespace braxcfg::tcpip
