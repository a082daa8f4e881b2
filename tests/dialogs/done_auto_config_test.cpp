// CDoneAutoConfig in store mode: the search runs while it opens, its
// messages are owned by it, and the two lists show the result. What the
// search finds and writes is the logic test's.
#include "dialogs/done_auto_config.h"

#include <gtest/gtest.h>

#include <QListView>

#include "dialog_test_support.h"
#include "fake_autocf.h"
#include "tree_text.h"

namespace braxcfg::dialogs {
namespace {

using Names = std::vector<std::string>;

TEST(CDoneAutoConfig, StoreModeShowsTheListsAndOwnsItsMessages) {
    test::TempStore file;
    test::putTree("[INTF2]\n\"VISAName\"=\"GPIB-VXI0\"\n\"VISAIntfType\"=\"GPIB-VXI\"\n[INTF2\\VISADev\\GPIB-VXI0::1]\n");
    test::FakeAutocf module;
    module.reports = {{"", visa::VI_ERROR_RSRC_NFOUND}};
    ui::MessageBoxCapture boxes;
    ui::ModalScript script;
    script.expect<CDoneAutoConfig>([&](CDoneAutoConfig& dialog) {
        EXPECT_EQ(test::shownText(dialog, "intfNameLabel"), "GPIB-VXI0");
        EXPECT_EQ(dialog.m_knownList.items(), Names{"GPIB-VXI0::1"});
        EXPECT_EQ(dialog.m_newList.items(), Names{kNoNewDevicesFound});
        EXPECT_FALSE(dialog.findChild<QListView*>("newList")->isEnabled());
        test::screenshot(dialog, "done_auto_config_store_mode");
        test::press(dialog, "OK");
    });
    const store::ConfigStore store;
    CDoneAutoConfig dialog(nullptr);
    dialog.InitStoreMode(store, "INTF2", "GPIB-VXI0");
    dialog.doModal();
    EXPECT_EQ(test::problems(script), "");
    EXPECT_EQ(boxes.texts(), Names{kAutoAddErrorMessage});
    EXPECT_EQ(boxes.requests().at(0).owner, &dialog);
}

}  // namespace
}  // namespace braxcfg::dialogs
