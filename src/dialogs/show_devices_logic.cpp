#include "dialogs/show_devices_logic.h"

namespace braxcfg::dialogs {

std::string showDevicesTitle(const std::string& visaName) { return "Devices present on interface " + visaName + ":"; }

ShowDevicesControls showDevicesControls(bool editable, bool autoAddAllowed) {
    ShowDevicesControls controls;
    controls.add = controls.remove = editable;
    controls.autoAdd = controls.identifyAtRunTime = editable && autoAddAllowed;
    return controls;
}

std::optional<std::string> duplicateDeviceMessage(const std::vector<std::string>& items, const std::string& name) {
    for (const std::string& item : items)
        if (item == name) return item + " is a duplicate device name.";
    return std::nullopt;
}

std::vector<int> removalOrder(const std::vector<int>& selectedAscending) {
    return {selectedAscending.rbegin(), selectedAscending.rend()};
}

store::DeviceListWrite deviceListWritePlan(const std::string& intf, int identifyAtRunTime,
                                           const std::vector<std::string>& items, const std::string& rsrcType) {
    return {intf, identifyAtRunTime, items, rsrcType};
}

}  // namespace braxcfg::dialogs
