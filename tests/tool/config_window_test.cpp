// The configuration window driven with QTest: each action reaches the
// interface keys, the plug-in (loaded with dlopen, as the window loads it)
// or the configuration choice, and its result is read back from the store.
// What an action is allowed, the row texts and the question before a
// removal are decided by the window's logic and tested there; the rules of
// adding an interface by the `interfaces add` rows of the tool test.
#include "config_window.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QSpinBox>
#include <QStatusBar>
#include <QTreeWidget>
#include <fstream>

#include "dialog_test_support.h"
#include "dialogs/config_choice.h"
#include "dialogs/ready_auto_config.h"
#include "dialogs/show_devices.h"
#include "file_bytes.h"
#include "platform/registry.h"
#include "plugin_store.h"
#include "store_builder.h"
#include "tree_text.h"
#include "ui/modal.h"

namespace braxcfg::tool {
namespace {

using test::press;
using test::putTree;
using test::treeText;
using ui::ModalScript;

class ConfigWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(test::pluginStore().plugin.loaded()) << test::pluginStore().plugin.error();
        test::clearInterfaces();
    }
    // The window opened on the store as it is now, with `key` selected.
    static std::unique_ptr<ConfigWindow> openWindow(const std::string& key = "") {
        auto window = std::make_unique<ConfigWindow>(test::pluginStore().plugin);
        window->show();
        window->selectInterface(key);
        return window;
    }
    static platform::Registry intf(const std::string& key) { return {key, platform::kRegOpenExisting}; }
};

TEST_F(ConfigWindowTest, AddSetsUpTheNewInterfaceOrSaysWhyNothingWasAdded) {
    putTree("[INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n");
    auto window = openWindow();
    for (const bool tcpip : {true, false}) {
        ui::MessageBoxCapture boxes;
        ModalScript script;
        script.expectClass("QDialog", [&](QDialog& dialog) {
            auto* socket = dialog.findChild<QCheckBox*>("socketCheck");
            dialog.findChild<QComboBox*>("typeCombo")->setCurrentText(tcpip ? "TCPIP" : "GPIB");
            EXPECT_EQ(socket->isEnabled(), tcpip);
            dialog.findChild<QSpinBox*>("boardSpin")->setValue(tcpip ? 4 : 0);
            if (tcpip) QTest::mouseClick(socket, Qt::LeftButton, {}, QPoint(4, socket->height() / 2));
            if (tcpip) test::screenshot(dialog, "add_interface");
            press(dialog, "OK");
        });
        window->addAction()->trigger();
        EXPECT_EQ(test::problems(script), "");
        EXPECT_EQ(boxes.texts().size(), tcpip ? 0u : 1u);  // GPIB0 is taken
    }
    EXPECT_EQ(intf("INTF1").getString("VISAName") + " " + intf("INTF1").getString("VISARsrcType"), "TCPIP4 SOCKET");
    EXPECT_EQ(intf("INTF1").getString("VISAAutoConfigDriver"), "AUTOCF");  // set up by the plug-in
    EXPECT_TRUE(window->removeAction()->isEnabled());                       // the new row is selected
    ModalScript cancelled;
    cancelled.expectClass("QDialog", [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    window->addAction()->trigger();
    EXPECT_EQ(window->findChild<QTreeWidget*>()->topLevelItemCount(), 2);
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
    const auto choose = [](const char* radio, Qt::Key close) {
        return [=](dialogs::CConfigChoice& d) {
            press(d, radio);
            close == Qt::Key_Escape ? QTest::keyClick(&d, close) : press(d, "&Continue");
        };
    };
    const auto closeList = [](dialogs::CShowDevices& d) { press(d, "Cancel"); };
    const struct { const char* name; std::function<void(ModalScript&)> script; bool atRunTime; } cases[] = {
        {"at run time", [&](ModalScript& s) {
             s.expect<dialogs::CConfigChoice>(choose("&Automatically identify all known devices at run time.", {}));
         }, true},
        {"manually", [&](ModalScript& s) {
             s.expect<dialogs::CConfigChoice>(choose("&Manually configure devices on this interface.", {}))
                 .expect<dialogs::CShowDevices>(closeList);
         }, false},
        {"escape", [&](ModalScript& s) {
             s.expect<dialogs::CConfigChoice>(choose("&Automatically identify all known devices at run time.",
                                                     Qt::Key_Escape))
                 .expect<dialogs::CReadyAutoConfig>([](auto& d) {
                     EXPECT_EQ(test::shownText(d, "intfNameLabel"), "VXI3");
                     press(d, "Cancel");
                 })
                 .expect<dialogs::CShowDevices>(closeList);
         }, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        putTree("[-INTF3]\n[INTF3]\n\"VISAName\"=\"VXI3\"\n\"VISAIntfType\"=\"VXI\"\n");
        auto window = openWindow("INTF3");
        ModalScript script;
        c.script(script);
        // Every dialog of the choice is owned by the window, through its native handle.
        const ui::ModalHandler scripted = ui::setModalHandler([&](QDialog& dialog) {
            EXPECT_NE(dialog.parentWidget(), nullptr) << dialog.metaObject()->className();
            return scripted(dialog);
        });
        window->configureAction()->trigger();
        ui::setModalHandler(scripted);
        EXPECT_EQ(test::problems(script), "");
        EXPECT_EQ(intf("INTF3").getString("VISAAutoConfigDriver"), "AUTOCF");
        EXPECT_EQ(intf("INTF3").getBool("VISAAutoConfig"), c.atRunTime);
    }
}

TEST_F(ConfigWindowTest, SetUpAndEditFollowThePluginAndClosingEndsThePass) {
    putTree("[INTF0]\n\"VISAName\"=\"ASRL1\"\n\"VISAIntfType\"=\"ASRL\"\n"
            "[INTF1]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n[INTF2]\n\"VISAIntfType\"=\"GPIB\"\n");
    auto window = openWindow("INTF0");
    EXPECT_FALSE(window->editAction()->isEnabled());  // the plug-in says serial is not editable
    window->setUpAction()->trigger();
    EXPECT_EQ(intf("INTF0").getString("VISAAutoConfigDriver"), "AUTOCF");
    window->selectInterface("INTF1");
    EXPECT_TRUE(window->editAction()->isEnabled());
    EXPECT_NE(ui::toStdString(window->statusBar()->findChild<QLabel*>()->text()).find(test::pluginStore().store.path()),
              std::string::npos);
    test::screenshot(*window, "config_window");
    window->close();
    // The end of the pass set up the valid interfaces only.
    EXPECT_EQ(intf("INTF1").getString("VISAAutoConfigDriver") + "|" + intf("INTF2").getString("VISAAutoConfigDriver"),
              "AUTOCF|");
}

TEST_F(ConfigWindowTest, ImportAndExportGoThroughAFileDialog) {
    const std::string dir = test::testOutputDir("config_window");
    const std::string in = dir + "/in.reg", bad = dir + "/bad.reg", out = dir + "/out.reg";
    std::ofstream(in) << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\" << test::underProduct("INTF7")
                      << "]\n\"VISAName\"=\"USB0\"\n\"VISAIntfType\"=\"USB\"\n";
    std::ofstream(bad) << "REGEDIT4\n\nnonsense\n";
    std::filesystem::remove(out);
    auto window = openWindow();
    const auto choose = [](const std::string& path) {
        return [path](QDialog& dialog) {
            static_cast<QFileDialog&>(dialog).selectFile(ui::toQString(path));
            QMetaObject::invokeMethod(&dialog, "accept");
        };
    };
    ui::MessageBoxCapture boxes;
    ModalScript script;
    script.expectClass("QFileDialog", choose(bad)).expectClass("QFileDialog", choose(in));
    script.expectClass("QFileDialog", choose(out));
    window->importAction()->trigger();
    window->importAction()->trigger();
    window->exportAction()->trigger();
    EXPECT_EQ(test::problems(script), "");
    ASSERT_EQ(boxes.texts().size(), 1u);  // the parser's reason, for the bad file only
    EXPECT_EQ(boxes.texts()[0].rfind(bad + ": line 3:", 0), 0u) << boxes.texts()[0];
    EXPECT_EQ(window->findChild<QTreeWidget*>()->topLevelItem(0)->text(1).toStdString(), "USB0");
    EXPECT_EQ(test::readFile(out).substr(0, 2), "\xff\xfe");  // UTF-16LE, as Windows writes it
}

}  // namespace
}  // namespace braxcfg::tool
