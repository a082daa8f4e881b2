// CDoneAutoConfig in store mode: the search runs while it opens, its
// messages are owned by it, and the two lists show the result. What the
// search finds and writes is the logic test's.
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

TEST(CDoneAutoConfig, StoreModeShowsKnownAndNewDevicesAndOwnsItsMessages) {
    const std::tuple<const char*, std::vector<test::FakeAutocf::Report>, Names, bool, Names> rows[] = {
        // screenshot, what the module reports, the new list and whether it is enabled, boxes
        {"error", {{"GPIB-VXI0::4"}, {"", visa::VI_ERROR_RSRC_NFOUND}}, {"GPIB-VXI0::4"}, true, {kAutoAddErrorMessage}},
        {"nothing_new", {{"GPIB-VXI0::1"}}, {kNoNewDevicesFound}, false, {}},
    };
    for (const auto& [name, reports, found, enabled, messages] : rows) {
        SCOPED_TRACE(name);
        test::TempStore file;
        test::putTree("[INTF2]\n\"VISAName\"=\"GPIB-VXI0\"\n\"VISAIntfType\"=\"GPIB-VXI\"\n[INTF2\\VISADev\\GPIB-VXI0::1]\n");
        test::FakeAutocf module;
        module.reports = reports;
        ui::MessageBoxCapture boxes;
        ui::ModalScript script;
        script.expect<CDoneAutoConfig>([&](CDoneAutoConfig& dialog) {
            EXPECT_EQ(test::shownText(dialog, "intfNameLabel"), "GPIB-VXI0");
            EXPECT_EQ(dialog.m_knownList.items(), Names{"GPIB-VXI0::1"});
            EXPECT_EQ(dialog.m_newList.items(), found);
            EXPECT_EQ(dialog.findChild<QListView*>("newList")->isEnabled(), enabled);
            test::screenshot(dialog, std::string("done_auto_config_") + name);
            test::press(dialog, "OK");
        });
        const store::ConfigStore store;
        CDoneAutoConfig dialog(nullptr);
        dialog.InitStoreMode(store, "INTF2", "GPIB-VXI0");
        dialog.doModal();
        EXPECT_EQ(test::problems(script), "");
        EXPECT_EQ(boxes.texts(), messages);
        for (const auto& box : boxes.requests()) EXPECT_EQ(box.owner, &dialog);
        EXPECT_EQ(test::keyExists(test::underProduct("INTF2\\VISADev\\GPIB-VXI0::4")), enabled);
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
