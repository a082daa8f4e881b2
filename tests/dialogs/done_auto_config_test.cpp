// CDoneAutoConfig in store mode: the search runs while it opens, its
// messages are owned by it, and the two lists show the result.
#include "dialogs/done_auto_config.h"

#include <gtest/gtest.h>

#include <QListView>

#include "dialog_test_support.h"
#include "fake_autocf.h"
#include "store/config_store.h"
#include "tree_text.h"
#include "ui/testing/message_box_capture.h"

namespace braxcfg::dialogs {
namespace {

using Names = std::vector<std::string>;

TEST(CDoneAutoConfig, StoreModeShowsKnownAndNewDevicesAndWritesTheNewOnes) {
    const struct {
        const char* name;
        std::vector<test::FakeAutocf::Report> reports;
        Names found;
        bool foundEnabled;
        std::size_t boxes;
    } rows[] = {
        {"found", {{"GPIB-VXI0::9"}, {"GPIB-VXI0::2"}, {"GPIB-VXI0::9"}}, {"GPIB-VXI0::2", "GPIB-VXI0::9"}, true, 0},
        {"nothing_new", {{"GPIB-VXI0::1"}}, {kNoNewDevicesFound}, false, 0},
        {"error", {{"GPIB-VXI0::4"}, {"", visa::VI_ERROR_RSRC_NFOUND}}, {"GPIB-VXI0::4"}, true, 1},
    };
    for (const auto& row : rows) {
        test::TempStore file;
        test::putTree("[INTF2]\n\"VISAName\"=\"GPIB-VXI0\"\n\"VISAIntfType\"=\"GPIB-VXI\"\n[INTF2\\VISADev\\GPIB-VXI0::1]\n");
        test::FakeAutocf module;
        module.reports = row.reports;
        ui::MessageBoxCapture boxes;
        ui::ModalScript script;
        script.expect<CDoneAutoConfig>([&](CDoneAutoConfig& dialog) {
            EXPECT_EQ(dialog.m_knownList.items(), Names{"GPIB-VXI0::1"}) << row.name;
            EXPECT_EQ(dialog.m_newList.items(), row.found) << row.name;
            EXPECT_EQ(dialog.findChild<QListView*>("newList")->isEnabled(), row.foundEnabled) << row.name;
            test::screenshot(dialog, std::string("done_auto_config_") + row.name);
            test::press(dialog, "OK");
        });
        const store::ConfigStore store;
        CDoneAutoConfig dialog(nullptr);
        dialog.InitStoreMode(store, "INTF2", "GPIB-VXI0");
        dialog.doModal();
        EXPECT_EQ(test::problems(script), "");
        ASSERT_EQ(boxes.requests().size(), row.boxes) << row.name;
        if (row.boxes) {
            EXPECT_EQ(boxes.requests()[0].owner, &dialog);
            EXPECT_EQ(boxes.requests()[0].text, kAutoAddErrorMessage);
        }
        // New devices are in the store already; the session was held and closed.
        for (const std::string& name : row.found) {
            if (name != kNoNewDevicesFound) {
                EXPECT_TRUE(test::keyExists(test::underProduct("INTF2\\VISADev\\" + name))) << name;
            }
        }
        EXPECT_EQ(module.opened.size(), 1u);
        EXPECT_EQ(module.closed, module.opened);
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
