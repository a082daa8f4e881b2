// The configuration window driven with QTest: its actions, the dialogs it
// opens itself (scripted through the modal seam) and the plug-in's, loaded
// with dlopen as the window loads it; every result is read back from the
// store.
#include "config_window.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QSpinBox>
#include <QStatusBar>
#include <QTreeWidget>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "dialog_test_support.h"
#include "dialogs/config_choice.h"
#include "dialogs/ready_auto_config.h"
#include "dialogs/show_devices.h"
#include "plugin_store.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "store_builder.h"
#include "file_bytes.h"
#include "tree_text.h"
#include "ui/testing/message_box_capture.h"
#include "ui/modal.h"

namespace braxcfg::tool {
namespace {

using test::press;
using test::putTree;
using test::treeText;
using ui::ModalScript;

const char* const kChoiceRadios[] = {"&Identify all known devices once now (recommended).",
                                     "&Automatically identify all known devices at run time.",
                                     "&Manually configure devices on this interface."};

class ConfigWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(plugin().loaded()) << plugin().error();
        test::clearInterfaces();
    }
    static Plugin& plugin() { return test::pluginStore().plugin; }

    // The window opened on the store as it is now, with `key` selected.
    std::unique_ptr<ConfigWindow> openWindow(const std::string& key = "") {
        auto window = std::make_unique<ConfigWindow>(plugin());
        window->show();
        window->selectInterface(key);
        return window;
    }

    static std::string valueOf(const std::string& key, const std::string& name) {
        return platform::Registry(key, platform::kRegOpenExisting).getString(name);
    }

};

TEST_F(ConfigWindowTest, AddInterfaceCreatesTheKeyAndSetsItUpThroughThePlugin) {
    putTree("[INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n");
    const struct {
        const char* type;
        int board;  // -1: the lowest free one
        bool socket;
        const char* key;  // empty: nothing added
        const char* visaName;
        const char* rsrcType;
        const char* message;
    } cases[] = {
        {"GPIB", -1, false, "INTF1", "GPIB1", "INSTR", nullptr},
        {"TCPIP", 4, true, "INTF2", "TCPIP4", "SOCKET", nullptr},
        {"GPIB", 0, false, "", "", "", "another interface is already called GPIB0; nothing was added"},
        {"ASRL", -1, false, "INTF3", "ASRL1", "INSTR", nullptr},
    };
    auto window = openWindow();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.type + std::to_string(c.board));
        ui::MessageBoxCapture boxes;
        ModalScript script;
        script.expectClass("QDialog", [&](QDialog& dialog) {
            auto* type = dialog.findChild<QComboBox*>("typeCombo");
            auto* socket = dialog.findChild<QCheckBox*>("socketCheck");
            type->setCurrentText(QString::fromLatin1(c.type));
            EXPECT_EQ(socket->isEnabled(), std::string(c.type) == "TCPIP");
            dialog.findChild<QSpinBox*>("boardSpin")->setValue(c.board);
            if (c.socket) QTest::mouseClick(socket, Qt::LeftButton, {}, QPoint(4, socket->height() / 2));
            if (c.board == 4) test::screenshot(dialog, "add_interface");
            press(dialog, "OK");
        });
        window->addAction()->trigger();
        EXPECT_EQ(test::problems(script), "");
        EXPECT_EQ(boxes.texts(), c.message ? std::vector<std::string>{c.message} : std::vector<std::string>{});
        if (*c.key == '\0') continue;
        EXPECT_EQ(valueOf(c.key, "VISAName"), c.visaName);
        EXPECT_EQ(valueOf(c.key, "VISARsrcType"), c.rsrcType);
        EXPECT_EQ(valueOf(c.key, "VISAAutoConfigDriver"), "AUTOCF");  // set up by the plug-in
        EXPECT_TRUE(window->removeAction()->isEnabled());            // the new row is selected
    }
    ModalScript cancelled;
    cancelled.expectClass("QDialog", [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    window->addAction()->trigger();
    EXPECT_EQ(treeText("INTF4"), "<missing>");
    EXPECT_EQ(window->findChild<QTreeWidget*>()->topLevelItemCount(), 4);
}

TEST_F(ConfigWindowTest, RemoveAsksFirstAndCancelKeepsEverything) {
    putTree("[INTF2]\n\"VISAName\"=\"GPIB2\"\n\"VISAIntfType\"=\"GPIB\"\n[INTF2\\VISADev\\GPIB2::5]\n");
    const std::string before = treeText("INTF2");
    auto window = openWindow("INTF2");
    for (const char* answer : {"Cancel", "&Remove"}) {
        ModalScript script;
        script.expectClass("QMessageBox", [&](QDialog& box) {
            EXPECT_EQ(ui::toStdString(static_cast<QMessageBox&>(box).text()),
                      "Remove the interface INTF2 (GPIB2) and its 1 device from the store?");
            if (std::string(answer) == "Cancel") test::screenshot(box, "remove_interface");
            press(box, answer);
        });
        window->removeAction()->trigger();
        EXPECT_EQ(test::problems(script), "");
        EXPECT_EQ(treeText("INTF2"), std::string(answer) == "Cancel" ? before : "<missing>") << answer;
    }
    EXPECT_FALSE(window->removeAction()->isEnabled());
}

TEST_F(ConfigWindowTest, ConfigureCarriesOutTheChoiceHoweverTheDialogCloses) {
    const struct {
        const char* name;
        std::function<void(ModalScript&)> script;
        const char* autoConfig;
    } cases[] = {
        {"at run time",
         [](ModalScript& s) {
             s.expect<dialogs::CConfigChoice>([](auto& d) {
                 press(d, kChoiceRadios[1]);
                 press(d, "&Continue");
             });
         },
         "1"},
        {"manually",
         [](ModalScript& s) {
             s.expect<dialogs::CConfigChoice>([](auto& d) {
                  press(d, kChoiceRadios[2]);
                  press(d, "&Continue");
              }).expect<dialogs::CShowDevices>([](auto& d) { press(d, "OK"); });
         },
         "0"},
        // Escape leaves the preset: identify now, whose question is cancelled.
        {"escape",
         [](ModalScript& s) {
             s.expect<dialogs::CConfigChoice>([](auto& d) {
                  press(d, kChoiceRadios[1]);
                  QTest::keyClick(&d, Qt::Key_Escape);
              }).expect<dialogs::CReadyAutoConfig>([](auto& d) {
                 EXPECT_EQ(test::shownText(d, "intfNameLabel"), "VXI3");
                 press(d, "Cancel");
             }).expect<dialogs::CShowDevices>([](auto& d) { press(d, "Cancel"); });
         },
         "0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        putTree("[-INTF3]\n[INTF3]\n\"VISAName\"=\"VXI3\"\n\"VISAIntfType\"=\"VXI\"\n");
        auto window = openWindow("INTF3");
        ASSERT_TRUE(window->configureAction()->isEnabled());
        ModalScript script;
        c.script(script);
        // Every choice dialog is owned by the window, through its native handle.
        const ui::ModalHandler scripted = ui::setModalHandler([&](QDialog& dialog) {
            EXPECT_NE(dialog.parentWidget(), nullptr) << dialog.metaObject()->className();
            return scripted(dialog);
        });
        window->configureAction()->trigger();
        ui::setModalHandler(scripted);
        EXPECT_EQ(test::problems(script), "");
        EXPECT_EQ(valueOf("INTF3", "VISAAutoConfigDriver"), "AUTOCF");
        EXPECT_EQ(platform::Registry("INTF3", platform::kRegOpenExisting).getBool("VISAAutoConfig"),
                  std::atoi(c.autoConfig));
    }
}

TEST_F(ConfigWindowTest, EditAsThePluginAllowsAndClosingEndsThePass) {
    putTree("[INTF0]\n\"VISAName\"=\"ASRL1\"\n\"VISAIntfType\"=\"ASRL\"\n"
            "[INTF1]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n"
            "[INTF2]\n\"VISAIntfType\"=\"GPIB\"\n");
    auto window = openWindow("INTF0");
    EXPECT_FALSE(window->editAction()->isEnabled());
    EXPECT_FALSE(window->configureAction()->isEnabled());
    window->setUpAction()->trigger();  // the plug-in: serial, without a profile, devices kept in the store
    EXPECT_EQ(valueOf("INTF0", "VISAAutoConfigDriver"), "AUTOCF");
    EXPECT_FALSE(window->setUpAction()->isEnabled());
    window->selectInterface("INTF2");
    EXPECT_FALSE(window->editAction()->isEnabled());
    window->selectInterface("INTF1");
    EXPECT_TRUE(window->editAction()->isEnabled());
    EXPECT_NE(ui::toStdString(window->statusBar()->findChild<QLabel*>()->text()).find(test::pluginStore().store.path()),
              std::string::npos);
    test::screenshot(*window, "config_window");
    window->close();
    // The end of the pass set up the valid interfaces only.
    EXPECT_EQ(valueOf("INTF0", "VISAAutoConfigDriver") + valueOf("INTF1", "VISAAutoConfigDriver") + "|" +
                  valueOf("INTF2", "VISAAutoConfigDriver"),
              "AUTOCFAUTOCF|");
}

TEST_F(ConfigWindowTest, ImportAndExportGoThroughAFileDialog) {
    const std::string dir = test::testOutputDir("config_window");
    const std::string in = dir + "/in.reg", out = dir + "/out.reg";
    std::ofstream(in) << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\" << test::underProduct("INTF7")
                      << "]\n\"VISAName\"=\"USB0\"\n\"VISAIntfType\"=\"USB\"\n";
    std::ofstream(dir + "/bad.reg") << "REGEDIT4\n\nnonsense\n";
    std::filesystem::remove(out);
    auto window = openWindow();
    const auto choose = [](const std::string& path) {
        return [path](QDialog& dialog) {
            auto& chooser = static_cast<QFileDialog&>(dialog);
            chooser.selectFile(ui::toQString(path));
            QMetaObject::invokeMethod(&chooser, "accept");
        };
    };
    {
        ui::MessageBoxCapture boxes;
        ModalScript script;
        script.expectClass("QFileDialog", choose(dir + "/bad.reg")).expectClass("QFileDialog", choose(in));
        window->importAction()->trigger();
        window->importAction()->trigger();
        EXPECT_EQ(test::problems(script), "");
        EXPECT_EQ(boxes.texts(),
                  std::vector<std::string>{dir + "/bad.reg: line 3: unexpected text \"nonsense\": a line holds a [key], a "
                                                   "\"name\"= or @= value, or a ; comment; nothing was imported"});
    }
    EXPECT_EQ(window->findChild<QTreeWidget*>()->topLevelItem(0)->text(1).toStdString(), "USB0");
    ModalScript script;
    script.expectClass("QFileDialog", choose(out));
    window->exportAction()->trigger();
    EXPECT_EQ(test::problems(script), "");
    const std::string bytes = test::readFile(out);
    EXPECT_EQ(bytes.substr(0, 2), "\xff\xfe");  // UTF-16LE, as Windows writes it
    EXPECT_GT(bytes.size(), 200u);
}

}  // namespace
}  // namespace braxcfg::tool
