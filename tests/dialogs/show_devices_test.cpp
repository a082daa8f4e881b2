// CShowDevices driven through its buttons, with the new-device and
// auto-configuration dialogs scripted, against a store of its own: its
// rules reach the widgets and the store. The rules themselves are the
// table at the end.
#include "dialogs/show_devices.h"

#include <gtest/gtest.h>

#include <QCheckBox>

#include "dialog_test_support.h"
#include "dialogs/done_auto_config.h"
#include "dialogs/new_device.h"
#include "dialogs/ready_auto_config.h"
#include "dialogs/show_devices_logic.h"
#include "fake_autocf.h"
#include "store_write_lock.h"
#include "tree_text.h"

namespace braxcfg::dialogs {
namespace {

using Names = std::vector<std::string>;
using test::press;

// GPIB0 with three devices, stored (and so listed) in the store's order;
// INSTR and SOCKET classes for GPIB, so the class filter shows.
const char* const kStore =
    "[INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n\"VISAAutoConfig\"=hex:00\n"
    "[INTF0\\VISADev\\GPIB0::10]\n[INTF0\\VISADev\\GPIB0::3]\n[INTF0\\VISADev\\GPIB0::30]\n"
    "[VISAInfo\\DefaultRsrcs\\INSTR]\n\"DrvrName\"=\"INSTR\"\n\"PrefixName\"=\"INSTR\"\n\"GPIB\"=hex:01\n"
    "[VISAInfo\\DefaultRsrcs\\SOCKET]\n\"DrvrName\"=\"SOCK\"\n\"PrefixName\"=\"SOCKET\"\n\"GPIB\"=hex:01\n";

// The steps are scripted first, the device list's own first of all.
class ShowDevicesTest : public ::testing::Test {
protected:
    void SetUp() override { test::putTree(kStore); }
    int run(bool autoAdd = true) {
        CShowDevices dialog(nullptr);
        dialog.Init(store_, "INTF0", "GPIB0", "INSTR", true, autoAdd);
        const int result = dialog.doModal();
        EXPECT_EQ(test::problems(script_), "");
        return result;
    }
    // One "&Add device" with `address` typed and OK pressed.
    void expectNewDevice(const std::string& address) {
        script_.expect<CNewDevice>([address](CNewDevice& dialog) {
            QTest::keyClicks(dialog.findChild<QLineEdit*>("addressEdit"), ui::toQString(address));
            press(dialog, "OK");
        });
    }

    test::TempStore file_;
    store::ConfigStore store_;
    ui::ModalScript script_;
    ui::MessageBoxCapture boxes_;
};

TEST_F(ShowDevicesTest, ListsTheStoreInItsOrderAddsRemovesAutoAddsAndOkRewritesTheStoreOnceItIsFree) {
    test::FakeAutocf module;
    module.reports = {{"GPIB0::3"}, {"GPIB0::8"}, {"GPIB0::1"}};
    script_.expect<CShowDevices>([&](CShowDevices& dialog) {
        EXPECT_EQ(test::shownText(dialog, "titleLabel"), "Devices present on interface GPIB0:");
        EXPECT_EQ(dialog.m_deviceList.items(), (Names{"GPIB0::10", "GPIB0::3", "GPIB0::30"}));
        test::screenshot(dialog, "show_devices_opened");
        press(dialog, "&Add device");
        press(dialog, "&Add device");  // the same again: refused
        EXPECT_EQ(dialog.m_deviceList.items(), (Names{"GPIB0::10", "GPIB0::24", "GPIB0::3", "GPIB0::30"}));
        for (int row : {0, 3}) dialog.m_deviceList.setSel(row, true);
        press(dialog, "&Remove device");
        press(dialog, "A&uto Add devices");  // cancelled in the ready dialog: the module is never loaded
        EXPECT_TRUE(module.lookups.empty());
        press(dialog, "A&uto Add devices");
        EXPECT_EQ(dialog.m_deviceList.items(), (Names{"GPIB0::1", "GPIB0::24", "GPIB0::3", "GPIB0::8"}));
        dialog.findChild<QCheckBox*>("identifyCheck")->setChecked(true);
        // Another process holds the store's write lock for longer than the
        // bounded wait: OK writes nothing, says so, and the user keeps the list.
        test::StoreWriteLock other(file_.path());
        ASSERT_TRUE(other.held());
        press(dialog, "OK");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(store_.GetDeviceNames("INTF0"), (Names{"GPIB0::10", "GPIB0::3", "GPIB0::30"}));
        other.release();
        press(dialog, "OK");
    });
    expectNewDevice("24");
    expectNewDevice("24");
    script_.expect<CReadyAutoConfig>([](CReadyAutoConfig& dialog) {
        test::screenshot(dialog, "ready_auto_config");
        press(dialog, "Cancel");
    });
    script_.expect<CReadyAutoConfig>([](CReadyAutoConfig& dialog) { press(dialog, "&Continue"); });
    script_.expect<CDoneAutoConfig>([](CDoneAutoConfig& dialog) {
        EXPECT_EQ(test::shownText(dialog, "intfNameLabel"), "GPIB0");
        EXPECT_EQ(dialog.m_knownList.items(), (Names{"GPIB0::24", "GPIB0::3"}));
        EXPECT_EQ(dialog.m_newList.items(), (Names{"GPIB0::1", "GPIB0::8"}));
        test::screenshot(dialog, "done_auto_config_list_mode");
        press(dialog, "OK");
    });
    EXPECT_EQ(run(), ui::kIdOk);
    EXPECT_EQ(boxes_.texts(), (Names{"GPIB0::24 is a duplicate device name.",
                                      platform::storeFailureMessage(platform::StoreFailure::Busy)}));
    // The flag, and the list with only the interface's resource type.
    EXPECT_EQ(store_.IsAutoConfig("INTF0"), 1);
    EXPECT_EQ(store_.GetDeviceNames("INTF0"), (Names{"GPIB0::1", "GPIB0::24", "GPIB0::3", "GPIB0::8"}));
    EXPECT_EQ(test::treeText("INTF0\\VISADev\\GPIB0::3"),
              "[]\n[GPIB0::3::INSTR]\n\"Driver\"=\"INSTR\"\n\"Prefix\"=\"INSTR\"\n");
}

TEST_F(ShowDevicesTest, WithoutAutoAddItAndTheCheckBoxAreOffRemoveTakes256AndCancelWritesNothing) {
    const std::string before = test::treeText("INTF0");
    script_.expect<CShowDevices>([](CShowDevices& dialog) {
        std::string enabled;
        for (const char* text : {"&Add device", "&Remove device", "A&uto Add devices", "&Identify devices at run-time"})
            enabled += test::buttonsLabelled(dialog, text).at(0)->isEnabled() ? '+' : '-';
        EXPECT_EQ(enabled, "++--");
        press(dialog, "&Add device");
        for (int i = 0; i < 300; ++i) dialog.m_deviceList.insertString(-1, "GPIB1::" + std::to_string(i));
        dialog.m_deviceList.setSel(-1, true);
        press(dialog, "&Remove device");  // the first 256 of the 304 go
        EXPECT_EQ(dialog.m_deviceList.count(), 48);
        EXPECT_EQ(dialog.m_deviceList.text(0), "GPIB1::252");
        press(dialog, "Cancel");
    });
    expectNewDevice("24");
    EXPECT_EQ(run(false), ui::kIdCancel);
    EXPECT_EQ(test::treeText("INTF0"), before);
}

TEST(ShowDevicesLogic, ControlTableAndDuplicates) {
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
}

}  // namespace
}  // namespace braxcfg::dialogs
