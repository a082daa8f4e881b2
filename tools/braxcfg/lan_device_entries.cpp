#include "lan_device_entries.h"

#include <iostream>

#include "command.h"
#include "interface_keys.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "visacore/lan/lan_resource.h"
#include "visacore/visa_types.h"

namespace braxcfg::tool {
namespace {

// "TCPIP1::10.0.0.5::inst0" and "INSTR" for TCPIP0::10.0.0.5::inst0::INSTR
// on the interface named TCPIP1.
bool deviceEntry(const std::string& resource, unsigned board, std::string& device, std::string& resourceClass) {
    visa::lan::LanResource parsed;
    if (visa::lan::parseLanResource(resource, parsed) != visa::VI_SUCCESS) return false;
    parsed.board = board;
    const std::string text = visa::lan::formatLanResource(parsed);
    const auto last = text.rfind("::");
    device = text.substr(0, last);
    resourceClass = text.substr(last + 2);
    return true;
}

}  // namespace

int addLanDeviceEntries(const std::string& intf, const std::vector<std::string>& resources, std::ostream& report) {
    if (const int rc = prepareStore(StoreUse::Write); rc != 0) return rc;
    const store::ConfigStore store;
    if (!store.IsValidVisaIntf(intf)) return fail(intf + " is not a valid VISA interface (no \"VISAName\")");
    if (store.GetIntfType(intf) != visa::VI_INTF_TCPIP) return fail(intf + " is not a TCPIP interface");
    if (const auto refused = refuseWithoutDeviceList(intf)) return *refused;
    const std::string visaName = store.GetVisaName(intf);
    long long board = 0;  // "TCPIP" alone is board 0
    if (visaName.size() > 5) parseWholeNumber(visaName.substr(5), 0, 65535, board);

    platform::StoreTransaction transaction;
    if (!transaction.active()) return fail(transaction.failureMessage());
    std::vector<std::string> added;
    for (const std::string& resource : resources) {
        std::string device, resourceClass;
        if (!deviceEntry(resource, static_cast<unsigned>(board), device, resourceClass)) continue;
        store.AddDeviceEntry(intf, device, resourceClass, "");
        added.push_back(device + "::" + resourceClass);
    }
    if (!transaction.commit()) return fail(transaction.failureMessage());
    for (const std::string& entry : added) report << "added " << entry << " to " << intf << "\n";
    return 0;
}

}  // namespace braxcfg::tool
