#pragma once
// Found LAN resources as device entries of a TCPIP interface.
#include <ostream>
#include <string>
#include <vector>

namespace braxcfg::tool {

// Adds one device entry per resource (its device name, the class it names)
// to the TCPIP interface `intf`, renumbered to that interface's board, in
// one transaction, each named on `report`. Opens the store as the tool was told. 0, or kExitError
// after saying why nothing was written.
int addLanDeviceEntries(const std::string& intf, const std::vector<std::string>& resources, std::ostream& report);

}  // namespace braxcfg::tool
