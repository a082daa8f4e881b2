#pragma once
// The one store operation behind the LAN resource list's OK: the interface's
// devices are rewritten from the list and the alias changes committed, all
// in one transaction, so the store keeps the old list or the new one.
#include <string>
#include <vector>

#include "platform/store.h"
#include "store/config_store.h"
#include "tcpip/alist.h"
#include "tcpip/tcpipshowdev_logic.h"

namespace braxcfg::tcpip {

// Removes every device of `intf`, writes one device entry per write (the
// class as the entry's only resource class) and commits `aliases`.
// StoreFailure::None when all of it was written; otherwise nothing was
// (the store was busy for its whole bounded wait, the disk is full, ...),
// and platform::storeFailureMessage() words why for the user.
platform::StoreFailure writeLanDevices(const store::ConfigStore& store, const std::string& intf,
                                       const std::vector<DeviceWrite>& writes, AList& aliases);

}  // namespace braxcfg::tcpip
