// CShowDevices driven through its buttons, with the new-device and
// auto-configuration dialogs scripted, against a store of its own.
#include "dialogs/show_devices.h"

#include <gtest/gtest.h>

#include <QCheckBox>

#include "dialog_test_support.h"
#include "dialogs/done_auto_config.h"
#include "dialogs/new_device.h"
#include "dialogs/ready_auto_config.h"
#include "fake_autocf.h"
#include "store/config_store.h"
#include "store/device_list_write.h"
#include "store_write_lock.h"
#include "tree_text.h"
#include "ui/testing/message_box_capture.h"

namespace braxcfg::dialogs {
namespace {

using Names = std::vector<std::string>;

// GPIB0 with three devices, stored (and so listed) in the store's order;
// INSTR and SOCKET classes for GPIB, so the class filter shows.
const char* const kStore =
    "[INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n\"VISAAutoConfig\"=hex:00\n"
    "[INTF0\\VISADev\\GPIB0::10]\n[INTF0\\VISADev\\GPIB0::3]\n[INTF0\\VISADev\\GPIB0::30]\n"
    "[VISAInfo\\DefaultRsrcs\\INSTR]\n\"DrvrName\"=\"INSTR\"\n\"PrefixName\"=\"INSTR\"\n\"GPIB\"=hex:01\n"
    "[VISAInfo\\DefaultRsrcs\\SOCKET]\n\"DrvrName\"=\"SOCK\"\n\"PrefixName\"=\"SOCKET\"\n\"GPIB\"=hex:01\n";

class ShowDevicesTest : public ::testing::Test {
protected:
    void SetUp() override { test::putTree(kStore); }

    // Runs the dialog on INTF0 with `act` as the person in front of it;
    // `nested` scripts the dialogs that `act` opens.
    int run(std::function<void(CShowDevices&)> act, std::function<void()> nested = {}, bool editable = true,
            bool autoAdd = true) {
        script_.expect<CShowDevices>(std::move(act));
        if (nested) nested();
        CShowDevices dialog(nullptr);
        dialog.Init(store_, "INTF0", "GPIB0", "INSTR", editable, autoAdd);
        const int result = dialog.doModal();
        EXPECT_EQ(test::problems(script_), "");
        return result;
    }
    // Scripts one "&Add device" with `address` typed and OK pressed.
    void expectNewDevice(const std::string& address) {
        script_.expect<CNewDevice>([address](CNewDevice& dialog) {
            QTest::keyClicks(dialog.findChild<QLineEdit*>("addressEdit"), ui::toQString(address));
            test::press(dialog, "OK");
        });
    }

    test::TempStore file_;
    store::ConfigStore store_;
    ui::ModalScript script_;
    ui::MessageBoxCapture boxes_;
};

void selectItems(CShowDevices& dialog, const std::vector<int>& rows) {
    for (int row : rows) dialog.m_deviceList.setSel(row, true);
}

TEST_F(ShowDevicesTest, ListsTheStoreInItsOrderAndAddsSorted) {
    run([](CShowDevices& dialog) {
        EXPECT_EQ(test::shownText(dialog, "titleLabel"), "Devices present on interface GPIB0:");
        EXPECT_EQ(dialog.m_deviceList.items(), (Names{"GPIB0::10", "GPIB0::3", "GPIB0::30"}));
        test::screenshot(dialog, "show_devices_opened");
        test::press(dialog, "&Add device");
        EXPECT_EQ(dialog.m_deviceList.items(), (Names{"GPIB0::10", "GPIB0::24", "GPIB0::3", "GPIB0::30"}));
        test::press(dialog, "&Add device");
        EXPECT_EQ(dialog.m_deviceList.count(), 4);
        test::press(dialog, "Cancel");
    }, [this] { expectNewDevice("24"), expectNewDevice("24"); });
    EXPECT_EQ(boxes_.texts(), Names{"GPIB0::24 is a duplicate device name."});
    // Cancel after an addition leaves the store as it was.
    EXPECT_EQ(store_.GetDeviceName("INTF0", 1), "GPIB0::3");
    EXPECT_EQ(store_.GetDeviceName("INTF0", 3), "");
}

TEST_F(ShowDevicesTest, DuplicateCheckKeepsCase) {
    test::putTree("[-INTF0\\VISADev]\n[INTF0\\VISADev\\gpib0::24]\n");
    run([](CShowDevices& dialog) {
        test::press(dialog, "&Add device");
        // An equal item (ignoring case) is found and the new one goes before it.
        EXPECT_EQ(dialog.m_deviceList.items(), (Names{"GPIB0::24", "gpib0::24"}));
        test::press(dialog, "Cancel");
    }, [this] { expectNewDevice("24"); });
    EXPECT_TRUE(boxes_.texts().empty());
}

TEST_F(ShowDevicesTest, RemovesEverySelectedItemAndOkRewritesTheStore) {
    run([](CShowDevices& dialog) {
        selectItems(dialog, {0, 2});
        test::press(dialog, "&Remove device");
        EXPECT_EQ(dialog.m_deviceList.items(), Names{"GPIB0::3"});
        test::press(dialog, "&Remove device");  // nothing selected: nothing happens
        EXPECT_EQ(dialog.m_deviceList.count(), 1);
        dialog.findChild<QCheckBox*>("identifyCheck")->setChecked(true);
        test::press(dialog, "OK");
    });
    // The flag, and the list with only the interface's resource type.
    EXPECT_EQ(test::treeText("INTF0"),
              "[]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n\"VISAAutoConfig\"=hex:01\n[VISADev]\n"
              "[VISADev\\GPIB0::3]\n[VISADev\\GPIB0::3\\GPIB0::3::INSTR]\n\"Driver\"=\"INSTR\"\n\"Prefix\"=\"INSTR\"\n");
}

TEST_F(ShowDevicesTest, RemoveTakesAtMostTheFirst256SelectedItems) {
    test::putTree("[-INTF0\\VISADev]\n");
    run([](CShowDevices& dialog) {
        for (int i = 0; i < 300; ++i) dialog.m_deviceList.insertString(-1, "GPIB0::" + std::to_string(i));
        dialog.m_deviceList.setSel(-1, true);
        test::press(dialog, "&Remove device");
        EXPECT_EQ(dialog.m_deviceList.count(), 44);
        EXPECT_EQ(dialog.m_deviceList.text(0), "GPIB0::256");
        test::press(dialog, "Cancel");
    });
}

TEST_F(ShowDevicesTest, OkWithAnEmptyListClearsTheInterface) {
    run([](CShowDevices& dialog) {
        selectItems(dialog, {0, 1, 2});
        test::press(dialog, "&Remove device");
        test::press(dialog, "OK");
    });
    EXPECT_EQ(test::treeText("INTF0\\VISADev"), "[]\n");
}

// The control table itself is the logic test's; here: it reaches the widgets.
TEST_F(ShowDevicesTest, AutoAddNotAllowedDisablesItAndTheCheckBoxOnly) {
    run(
        [](CShowDevices& dialog) {
            EXPECT_TRUE(test::buttonsLabelled(dialog, "&Add device")[0]->isEnabled());
            EXPECT_TRUE(test::buttonsLabelled(dialog, "&Remove device")[0]->isEnabled());
            EXPECT_FALSE(test::buttonsLabelled(dialog, "A&uto Add devices")[0]->isEnabled());
            EXPECT_FALSE(dialog.findChild<QCheckBox*>("identifyCheck")->isEnabled());
            test::screenshot(dialog, "show_devices_no_auto_add");
            test::press(dialog, "Cancel");
        },
        {}, true, false);
}

TEST_F(ShowDevicesTest, AutoAddFillsTheListAndWritesOnlyOnOk) {
    test::FakeAutocf module;
    module.reports = {{"GPIB0::3"}, {"GPIB0::8"}, {"GPIB0::1"}};
    script_.expect<CShowDevices>([&](CShowDevices& dialog) {
        test::press(dialog, "A&uto Add devices");
        EXPECT_EQ(dialog.m_deviceList.items(), (Names{"GPIB0::1", "GPIB0::10", "GPIB0::3", "GPIB0::30", "GPIB0::8"}));
        EXPECT_EQ(store_.GetDeviceName("INTF0", 3), "");  // not yet written
        test::screenshot(dialog, "show_devices_after_auto_add");
        test::press(dialog, "OK");
    });
    script_.expect<CReadyAutoConfig>([](CReadyAutoConfig& dialog) { test::press(dialog, "&Continue"); });
    script_.expect<CDoneAutoConfig>([](CDoneAutoConfig& dialog) {
        EXPECT_EQ(test::shownText(dialog, "intfNameLabel"), "GPIB0");
        EXPECT_EQ(dialog.m_knownList.items(), (Names{"GPIB0::10", "GPIB0::3", "GPIB0::30"}));
        EXPECT_EQ(dialog.m_newList.items(), (Names{"GPIB0::1", "GPIB0::8"}));
        test::screenshot(dialog, "done_auto_config_list_mode");
        test::press(dialog, "OK");
    });
    CShowDevices dialog(nullptr);
    dialog.Init(store_, "INTF0", "GPIB0", "INSTR", true, true);
    dialog.doModal();
    EXPECT_EQ(test::problems(script_), "");
    EXPECT_EQ(store_.GetDeviceName("INTF0", 0), "GPIB0::1");
    EXPECT_EQ(store_.GetDeviceName("INTF0", 4), "GPIB0::8");
}

TEST_F(ShowDevicesTest, CancelInTheReadyDialogNeverLoadsTheModule) {
    test::FakeAutocf module;
    module.reports = {{"GPIB0::8"}};
    run([](CShowDevices& dialog) {
        test::press(dialog, "A&uto Add devices");
        EXPECT_EQ(dialog.m_deviceList.count(), 3);
        test::press(dialog, "Cancel");
    }, [this] {
        script_.expect<CReadyAutoConfig>([](CReadyAutoConfig& dialog) { test::press(dialog, "Cancel"); });
    });
    EXPECT_TRUE(module.lookups.empty());
}

// Another process holds the store's write lock for longer than the bounded
// wait: OK writes nothing, says so, and the user keeps the list.
TEST_F(ShowDevicesTest, BusyStoreKeepsTheDialogOpenAndWritesNothing) {
    test::StoreWriteLock other(file_.path());
    ASSERT_TRUE(other.held());
    const std::string before = test::treeText("INTF0");
    const int result = run([&](CShowDevices& dialog) {
        test::press(dialog, "&Add device");
        test::press(dialog, "OK");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(dialog.m_deviceList.count(), 4);
        EXPECT_EQ(test::treeText("INTF0"), before);
        other.release();
        test::press(dialog, "OK");
    }, [this] { expectNewDevice("24"); });
    EXPECT_EQ(result, ui::kIdOk);
    ASSERT_EQ(boxes_.texts().size(), 1u);
    EXPECT_EQ(boxes_.texts()[0], platform::storeFailureMessage(platform::StoreFailure::Busy));
    EXPECT_NE(test::treeText("INTF0"), before);
    EXPECT_EQ(store_.GetDeviceName("INTF0", 1), "GPIB0::24");
}

}  // namespace
}  // namespace braxcfg::dialogs
