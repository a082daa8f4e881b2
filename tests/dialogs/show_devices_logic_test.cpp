// What the device list's handlers decide, without a window.
#include "dialogs/show_devices_logic.h"

#include <gtest/gtest.h>

namespace braxcfg::dialogs {
namespace {

TEST(ShowDevicesLogic, ControlTableDuplicatesAndRemovalOrder) {
    const struct {
        bool editable, autoAddAllowed, add, autoAdd;
    } controls[] = {{true, true, true, true}, {true, false, true, false}, {false, true, false, false},
                    {false, false, false, false}};
    for (const auto& row : controls) {
        const ShowDevicesControls shown = showDevicesControls(row.editable, row.autoAddAllowed);
        EXPECT_EQ(shown.add, row.add);
        EXPECT_EQ(shown.remove, row.add);
        EXPECT_EQ(shown.autoAdd, row.autoAdd);
        EXPECT_EQ(shown.identifyAtRunTime, row.autoAdd);
    }
    const std::vector<std::string> items = {"GPIB0::3", "gpib0::24", "GPIB0::24"};
    EXPECT_EQ(duplicateDeviceMessage(items, "GPIB0::24"), "GPIB0::24 is a duplicate device name.");
    EXPECT_EQ(duplicateDeviceMessage(items, "GPIB0::2"), std::nullopt);
    EXPECT_EQ(duplicateDeviceMessage({"gpib0::24"}, "GPIB0::24"), std::nullopt);  // case counts
    EXPECT_EQ(removalOrder({0, 4, 7}), (std::vector<int>{7, 4, 0}));
    EXPECT_EQ(showDevicesTitle("GPIB-VXI0"), "Devices present on interface GPIB-VXI0:");
}

}  // namespace
}  // namespace braxcfg::dialogs
