#pragma once
// The device list dialog's OK: an interface's run-time identification flag
// and its whole device list, written as one transaction, so that the store
// keeps either the old list or the new one, never half of it.
#include <string>
#include <vector>

#include "store/config_store.h"

namespace braxcfg::store {

struct DeviceListWrite {
    std::string intf;                  // "INTF<n>"
    int autoConfig = 0;                // "VISAAutoConfig"
    std::vector<std::string> devices;  // device names, in the order they are written
    std::string classFilter;           // the interface's resource type ("INSTR")
};

// Sets the flag, clears the device entries and adds one entry per device.
// StoreFailure::None when written; otherwise nothing was written (the
// transaction could not start within the store's bounded wait, or could not
// commit) and the value says why.
platform::StoreFailure writeDeviceList(const ConfigStore& store, const DeviceListWrite& plan);

}  // namespace braxcfg::store
