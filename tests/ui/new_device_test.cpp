#include "dialogs/new_device.h"

#include <gtest/gtest.h>

#include <QLineEdit>

#include "dialog_test_support.h"
#include "dialogs/entry_error.h"
#include "ui/modal_script.h"

namespace braxcfg::dialogs {
namespace {

using test::buttonLabelled;
using test::labelText;
using test::press;
using test::screenshot;
using ui::kIdCancel;
using ui::kIdOk;
using ui::ModalScript;

QLineEdit* field(QWidget& dialog, const char* name) {
    auto* edit = dialog.findChild<QLineEdit*>(name);
    EXPECT_NE(edit, nullptr) << name;
    return edit;
}

std::string shown(QWidget& dialog, const char* name) {
    QLineEdit* edit = field(dialog, name);
    return edit != nullptr ? ui::toStdString(edit->text()) : std::string();
}

TEST(CNewDevice, ComposesTheNameAndEnablesOkOnEveryEdit) {
    struct Edit {
        const char* typed;
        int backspaces;
        const char* deviceName;
        bool okEnabled;
    };
    const Edit edits[] = {
        {"1", 0, "GPIB0::1", true},     {"0", 0, "GPIB0::10", true}, {"::", 0, "GPIB0::10::", true},
        {"8", 0, "GPIB0::10::8", true}, {"", 4, "GPIB0::1", true},   {"", 1, "GPIB0::", false},
        {"x", 0, "GPIB0::x", true},  // composed as typed; the rules judge it only on OK
        {"", 1, "GPIB0::", false},
    };
    ModalScript script;
    script.expect<CNewDevice>([&](CNewDevice& dialog) {
        EXPECT_EQ(shown(dialog, "prefixEdit"), "GPIB0::");
        EXPECT_EQ(shown(dialog, "deviceNameEdit"), "GPIB0::");
        EXPECT_FALSE(buttonLabelled(dialog, "OK")->isEnabled());
        screenshot(dialog, "new_device_empty");
        QLineEdit* address = field(dialog, "addressEdit");
        for (const Edit& edit : edits) {
            QTest::keyClicks(address, edit.typed);
            for (int i = 0; i < edit.backspaces; ++i) QTest::keyClick(address, Qt::Key_Backspace);
            EXPECT_EQ(shown(dialog, "deviceNameEdit"), edit.deviceName);
            EXPECT_EQ(buttonLabelled(dialog, "OK")->isEnabled(), edit.okEnabled) << edit.deviceName;
        }
        // Enter on an empty field must not reach the rules.
        QTest::keyClick(address, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        QTest::keyClicks(address, "10::8");
        screenshot(dialog, "new_device_typed");
        QTest::keyClick(address, Qt::Key_Return);
    });
    CNewDevice dialog(nullptr);
    dialog.m_prefix = "GPIB0::";
    EXPECT_EQ(dialog.doModal(), kIdOk);
    EXPECT_EQ(dialog.m_deviceName, "GPIB0::10::8");
    EXPECT_TRUE(script.problems().empty()) << script.problems().front();
}

TEST(CNewDevice, AcceptedAddressGivesPrefixPlusAddress) {
    const std::pair<const char*, const char*> cases[] = {
        {"24", "GPIB0::24"}, {"0", "GPIB0::0"}, {"::24", "GPIB0::::24"}, {"24::8::3", "GPIB0::24::8::3"}};
    for (const auto& [address, deviceName] : cases) {
        ModalScript script;
        script.expect<CNewDevice>([address = address](CNewDevice& dialog) {
            QTest::keyClicks(field(dialog, "addressEdit"), address);
            press(dialog, "OK");
        });
        CNewDevice dialog(nullptr);
        dialog.m_prefix = "GPIB0::";
        EXPECT_EQ(dialog.doModal(), kIdOk) << address;
        EXPECT_EQ(dialog.m_deviceName, deviceName);
        EXPECT_TRUE(script.problems().empty()) << address;
    }
}

TEST(CNewDevice, RefusedAddressShowsTheEntryErrorAndStaysOpen) {
    const std::string defaultHint =
        "You must specify a valid device name, such as:\n\n\tGPIB0::24\n\n"
        "For GPIB Secondary addresses, use an address such as:\n\n\tGPIB0::10::8";
    struct Case {
        const char* address;
        const char* message;
        const char* screenshotName;
    };
    const Case cases[] = {
        {"024", "Leading zeros (0) are not allowed in numbers.", "entry_error_leading_zero"},
        {"24:::5", "Use :: instead of :::", "entry_error_triple_colon"},
        {"24 5", "Only the digits 0-9 and a colon (:) may be specified.", "entry_error_character"},
    };
    for (const Case& c : cases) {
        ModalScript script;
        script
            .expect<CNewDevice>([&](CNewDevice& dialog) {
                QTest::keyClicks(field(dialog, "addressEdit"), c.address);
                press(dialog, "OK");  // the entry error runs and ends inside this press
                EXPECT_TRUE(dialog.isVisible()) << c.address;
                EXPECT_EQ(shown(dialog, "addressEdit"), c.address);
                // Corrected in place, the address then passes.
                field(dialog, "addressEdit")->selectAll();
                QTest::keyClicks(field(dialog, "addressEdit"), "24");
                press(dialog, "OK");
            })
            .expect<CEntryError>([&](CEntryError& error) {
                EXPECT_EQ(error.windowTitle(), QStringLiteral("Entry Error"));
                EXPECT_EQ(labelText(error, "errorLabel"), c.message);
                EXPECT_EQ(labelText(error, "deviceNameLabel"), std::string("GPIB1::") + c.address);
                EXPECT_EQ(labelText(error, "hintLabel"), defaultHint);
                EXPECT_NE(error.parentWidget(), nullptr);
                screenshot(error, c.screenshotName);
                press(error, "OK");
            });
        CNewDevice dialog(nullptr);
        dialog.m_prefix = "GPIB1::";
        EXPECT_EQ(dialog.doModal(), kIdOk);
        EXPECT_EQ(dialog.m_deviceName, "GPIB1::24");
        EXPECT_EQ(script.opened(),
                  (std::vector<std::string>{"braxcfg::dialogs::CNewDevice", "braxcfg::dialogs::CEntryError"}));
        EXPECT_TRUE(script.problems().empty()) << c.address;
    }
}

TEST(CEntryError, KeepsAHintTheCallerGave) {
    ModalScript script;
    script.expect<CEntryError>([](CEntryError& error) {
        EXPECT_EQ(labelText(error, "hintLabel"), "Use a primary address from 0 to 30.");
        press(error, "OK");
    });
    CEntryError error(nullptr);
    error.m_hint = "Use a primary address from 0 to 30.";
    EXPECT_EQ(error.doModal(), kIdOk);
}

TEST(CNewDevice, CancelEndsWithoutCheckingTheAddress) {
    ModalScript script;  // a CEntryError opening would be a problem
    script.expect<CNewDevice>([](CNewDevice& dialog) {
        QTest::keyClicks(field(dialog, "addressEdit"), "024");
        press(dialog, "Cancel");
    });
    CNewDevice dialog(nullptr);
    dialog.m_prefix = "GPIB0::";
    EXPECT_EQ(dialog.doModal(), kIdCancel);
    EXPECT_TRUE(script.problems().empty());
}

}  // namespace
}  // namespace braxcfg::dialogs
