// The configuration window driven with QTest: each action reaches the
// interface keys, the plug-in (loaded with dlopen, as the window loads it)
// or the configuration choice, and its result is read back from the store.
// What an action is allowed, the row texts and the question before a
// removal are decided by the window's logic and tested there; the rules of
// adding an interface, and its refusals, by the `interfaces add` rows of the
// tool test; import and export by the regfile tool test.
#include "config_window.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QSpinBox>

#include "dialog_test_support.h"
#include "dialogs/config_choice.h"
#include "dialogs/ready_auto_config.h"
#include "dialogs/show_devices.h"
#include "platform/registry.h"
#include "temp_store.h"
#include "store_builder.h"
#include "tree_text.h"

namespace braxcfg::tool {
namespace {

using test::press;
using test::putTree;
using test::treeText;
using ui::ModalScript;

class ConfigWindowTest : public ::testing::Test {
protected:
    // One store, named to the plug-in before it loads, and one plug-in for
    // the program, as in a host; each test starts without interfaces.
    static void SetUpTestSuite() {
        if (plugin_ != nullptr) return;
        store_ = new test::TempStore();
        setenv("BRAXCFG_STORE", store_->path().c_str(), 1);
        plugin_ = new Plugin();
        test::putDword(test::underProduct(), "LinkbaseVisaPresent", 1);
    }
    void SetUp() override {
        ASSERT_TRUE(plugin_->loaded()) << plugin_->error();
        for (const std::string& key : intf("").subkeyNames())
            if (key.starts_with("INTF")) putTree("[-" + key + "]\n");
    }
    // The window opened on the store as it is now, with `key` selected.
    static std::unique_ptr<ConfigWindow> openWindow(const std::string& key = "") {
        auto window = std::make_unique<ConfigWindow>(*plugin_);
        window->show();
        window->selectInterface(key);
        return window;
    }
    static platform::Registry intf(const std::string& key) { return {key, platform::kRegOpenExisting}; }
    // Kept to the end: the plug-in's dialogs may outlive a test.
    static inline test::TempStore* store_ = nullptr;
    static inline Plugin* plugin_ = nullptr;
};

TEST_F(ConfigWindowTest, AddSetsUpTheNewInterface) {
    auto window = openWindow();
    ModalScript script;
    script.expectClass("QDialog", [&](QDialog& dialog) {
        auto* socket = dialog.findChild<QCheckBox*>("socketCheck");
        dialog.findChild<QComboBox*>("typeCombo")->setCurrentText("TCPIP");
        dialog.findChild<QSpinBox*>("boardSpin")->setValue(4);
        QTest::mouseClick(socket, Qt::LeftButton, {}, QPoint(4, socket->height() / 2));
        test::screenshot(dialog, "add_interface");
        press(dialog, "OK");
    });
    window->addAction()->trigger();
    EXPECT_EQ(test::problems(script), "");
    EXPECT_EQ(intf("INTF0").getString("VISAName") + " " + intf("INTF0").getString("VISARsrcType"), "TCPIP4 SOCKET");
    EXPECT_EQ(intf("INTF0").getString("VISAAutoConfigDriver"), "AUTOCF");  // set up by the plug-in
}

TEST_F(ConfigWindowTest, RemoveAsksFirstAndCancelKeepsEverything) {
    putTree("[INTF2]\n\"VISAName\"=\"GPIB2\"\n\"VISAIntfType\"=\"GPIB\"\n[INTF2\\VISADev\\GPIB2::5]\n");
    const std::string before = treeText("INTF2");
    auto window = openWindow("INTF2");
    for (const std::string answer : {"Cancel", "&Remove"}) {
        ModalScript script;
        script.expectClass("QMessageBox", [&](QDialog& box) { press(box, answer); });
        window->removeAction()->trigger();
        EXPECT_EQ(test::problems(script), "");
        EXPECT_EQ(treeText("INTF2"), answer == "Cancel" ? before : "<missing>") << answer;
    }
}

// The choice is read however its dialog closed: Escape carries out the
// preset, identify now, whose question is then cancelled.
TEST_F(ConfigWindowTest, ConfigureCarriesOutTheChoiceHoweverTheDialogCloses) {
    const char* const atRunTime = "&Automatically identify all known devices at run time.";
    const struct { const char* radio; bool escape, asked, listed, atRunTime; } cases[] = {
        {atRunTime, false, false, false, true},
        {"&Manually configure devices on this interface.", false, false, true, false},
        {atRunTime, true, true, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.radio << (c.escape ? ", Escape" : ""));
        putTree("[-INTF3]\n[INTF3]\n\"VISAName\"=\"VXI3\"\n\"VISAIntfType\"=\"VXI\"\n");
        auto window = openWindow("INTF3");
        ModalScript script;
        script.expect<dialogs::CConfigChoice>([&](auto& d) {
            press(d, c.radio);
            c.escape ? QTest::keyClick(&d, Qt::Key_Escape) : press(d, "&Continue");
        });
        if (c.asked) script.expect<dialogs::CReadyAutoConfig>([](auto& d) { press(d, "Cancel"); });
        if (c.listed) script.expect<dialogs::CShowDevices>([](auto& d) { press(d, "Cancel"); });
        window->configureAction()->trigger();
        EXPECT_EQ(test::problems(script), "");
        EXPECT_EQ(intf("INTF3").getString("VISAAutoConfigDriver"), "AUTOCF");
        EXPECT_EQ(intf("INTF3").getBool("VISAAutoConfig"), c.atRunTime);
    }
}

TEST_F(ConfigWindowTest, SetUpReachesThePluginAndClosingEndsThePass) {
    putTree("[INTF0]\n\"VISAName\"=\"ASRL1\"\n\"VISAIntfType\"=\"ASRL\"\n"
            "[INTF1]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n");
    auto window = openWindow("INTF0");
    window->setUpAction()->trigger();
    EXPECT_EQ(intf("INTF0").getString("VISAAutoConfigDriver"), "AUTOCF");
    test::screenshot(*window, "config_window");
    window->close();
    // The end of the pass set up INTF1 (which interfaces it sets up is the set-up fixture's).
    EXPECT_EQ(intf("INTF1").getString("VISAAutoConfigDriver"), "AUTOCF");
}

}  // namespace
}  // namespace braxcfg::tool
