#pragma once
// What CShowDevices' handlers decide, without a window: its title, which
// controls work, the duplicate check of "&Add device", the order of
// "&Remove device" and the store write of OK.
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "store/device_list_write.h"

namespace braxcfg::dialogs {

// "Devices present on interface GPIB0:"
std::string showDevicesTitle(const std::string& visaName);

struct ShowDevicesControls {
    bool add = true;
    bool remove = true;
    bool autoAdd = true;
    bool identifyAtRunTime = true;  // the check box
};
ShowDevicesControls showDevicesControls(bool editable, bool autoAddAllowed);

// "<item> is a duplicate device name." for the first item equal to `name`
// (case-sensitive), nothing when there is none.
std::optional<std::string> duplicateDeviceMessage(const std::vector<std::string>& items, const std::string& name);

// "&Remove device" reads at most this many selected indices; later
// selections are left in the list.
inline constexpr std::size_t kRemoveSelectionLimit = 256;

// The order in which to delete the selected indices (ascending, as the list
// gives them): from the last down, so the earlier ones stay valid.
std::vector<int> removalOrder(const std::vector<int>& selectedAscending);

// OK's write: the flag, then every item in list order with the resource
// type as class filter.
store::DeviceListWrite deviceListWritePlan(const std::string& intf, int identifyAtRunTime,
                                           const std::vector<std::string>& items, const std::string& rsrcType);

}  // namespace braxcfg::dialogs
