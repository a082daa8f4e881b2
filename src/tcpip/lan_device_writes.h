#pragma once
// The one store operation behind the LAN resource list's OK: the interface's
// devices are rewritten from the list and the alias changes committed, all
// in one transaction, so the store keeps the old list or the new one.
#include <string>
#include <vector>

#include "store/config_store.h"
#include "tcpip/alist.h"
#include "tcpip/tcpipshowdev_logic.h"

namespace braxcfg::tcpip {

// Removes every device of `intf`, writes one device entry per write (the
// class as the entry's only resource class) and commits `aliases`. False,
// with nothing written, when the store could not be locked for writing
// within its bounded wait or did not take the change.
bool writeLanDevices(const store::ConfigStore& store, const std::string& intf,
                     const std::vector<DeviceWrite>& writes, AList& aliases);

// What the user is told when writeLanDevices fails: the list stays open and
// nothing has been saved.
std::string lanDevicesNotWrittenMessage();

}  // namespace braxcfg::tcpip
