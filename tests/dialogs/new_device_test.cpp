// CNewDevice in one run: the name composed on every edit, OK only for a
// typed address, the address rules reached through OK and the entry error
// that refuses an address, and Cancel that checks nothing; then the rules'
// own table.
#include "dialogs/new_device.h"

#include <gtest/gtest.h>

#include "dialog_test_support.h"
#include "dialogs/address_rules.h"
#include "dialogs/entry_error.h"

namespace braxcfg::dialogs {
namespace {

using namespace test;
using ui::kIdCancel;
using ui::kIdOk;
using ui::ModalScript;

QLineEdit* addressField(QWidget& dialog) { return dialog.findChild<QLineEdit*>("addressEdit"); }

bool okEnabled(QWidget& dialog) { return buttonsLabelled(dialog, "OK").at(0)->isEnabled(); }

TEST(CNewDevice, ComposesTheNameOnEveryEditAndRefusesABadAddressOnlyOnOk) {
    // typed, then backspaces: the composed name and whether OK is enabled
    const std::tuple<const char*, int, const char*, bool> edits[] = {
        {"10::8", 0, "GPIB0::10::8", true}, {"", 4, "GPIB0::1", true}, {"", 1, "GPIB0::", false},
    };
    ModalScript script;
    script
        .expect<CNewDevice>([&](CNewDevice& dialog) {
            EXPECT_EQ(shownText(dialog, "prefixEdit") + "|" + shownText(dialog, "deviceNameEdit"), "GPIB0::|GPIB0::");
            EXPECT_FALSE(okEnabled(dialog));
            for (const auto& [typed, backspaces, deviceName, enabled] : edits) {
                QTest::keyClicks(addressField(dialog), typed);
                for (int i = 0; i < backspaces; ++i) QTest::keyClick(addressField(dialog), Qt::Key_Backspace);
                EXPECT_EQ(shownText(dialog, "deviceNameEdit"), deviceName);
                EXPECT_EQ(okEnabled(dialog), enabled) << deviceName;
            }
            QTest::keyClick(addressField(dialog), Qt::Key_Return);  // on an empty field it must not reach the rules
            EXPECT_TRUE(dialog.isVisible());
            QTest::keyClicks(addressField(dialog), "024");
            press(dialog, "OK");  // the entry error runs and ends inside this press
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(shownText(dialog, "addressEdit"), "024");
            addressField(dialog)->selectAll();  // corrected in place, the address then passes
            QTest::keyClicks(addressField(dialog), "10::8");
            screenshot(dialog, "new_device_typed");
            QTest::keyClick(addressField(dialog), Qt::Key_Return);
        })
        .expect<CEntryError>([&](CEntryError& error) {
            EXPECT_EQ(shownText(error, "errorLabel"), "Leading zeros (0) are not allowed in numbers.");
            EXPECT_EQ(shownText(error, "deviceNameLabel"), "GPIB0::024");
            EXPECT_EQ(shownText(error, "hintLabel"),
                      "You must specify a valid device name, such as:\n\n\tGPIB0::24\n\n"
                      "For GPIB Secondary addresses, use an address such as:\n\n\tGPIB0::10::8");
            screenshot(error, "entry_error_leading_zero");
            press(error, "OK");
        })
        .expect<CNewDevice>([](CNewDevice& dialog) {  // an entry error opening here would be a problem
            QTest::keyClicks(addressField(dialog), "024");
            press(dialog, "Cancel");
        });
    CNewDevice dialog(nullptr);
    dialog.m_prefix = "GPIB0::";
    EXPECT_EQ(dialog.doModal(), kIdOk);
    EXPECT_EQ(dialog.m_deviceName, "GPIB0::10::8");
    EXPECT_EQ(CNewDevice(nullptr).doModal(), kIdCancel);
    EXPECT_EQ(problems(script), "");
}

TEST(AddressRules, FirstFailingRuleDecides) {
    const std::string chars = "Only the digits 0-9 and a colon (:) may be specified.";
    const std::string zero = "Leading zeros (0) are not allowed in numbers.";
    const std::string end = "Device name must end with a number.";
    const std::pair<const char*, std::string> cases[] = {  // "": accepted
        {"0", ""}, {"24::8::3", ""}, {"::24", ""},
        {"10::0", ""}, {"0::5", ""},  // a 0 with nothing or a colon after it is no leading zero
        {"-1", chars}, {"24\xc3\xa9", chars}, {"", "Device name must not be empty."},
        {"024", zero}, {"24::08", zero}, {"24::0:", zero},  // the last: before the final-number rule
        {"24::", end}, {":", end},  // ":" before the colon walk
        {"24::5:6", "Use :: instead of :"}, {"24:::5", "Use :: instead of :::"},
    };
    for (const auto& [address, message] : cases)
        EXPECT_EQ(checkDeviceAddress(address).value_or(""), message) << '"' << address << '"';
}

}  // namespace
}  // namespace braxcfg::dialogs
