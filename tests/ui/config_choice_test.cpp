#include "dialogs/config_choice.h"

#include <gtest/gtest.h>

#include <functional>

#include "dialog_test_support.h"
#include "dialogs/choice_help.h"
#include "ui/message_box.h"
#include "ui/modal_script.h"

namespace braxcfg::dialogs {
namespace {

using test::buttonLabelled;
using test::buttonsLabelled;
using test::labelText;
using test::press;
using test::screenshot;
using ui::kIdCancel;
using ui::kIdOk;
using ui::MessageBoxCapture;
using ui::ModalScript;

const char* const kRadios[] = {
    "&Identify all known devices once now (recommended).",
    "&Automatically identify all known devices at run time.",
    "&Manually configure devices on this interface.",
};

int checkedRadio(CConfigChoice& dialog) {
    for (int i = 0; i < 3; ++i)
        if (buttonLabelled(dialog, kRadios[i])->isChecked()) return i;
    return -1;
}

TEST(CConfigChoice, ContinueReadsTheGroupButOnlyAfterTestingThePreset) {
    const std::string refusal = "You must choose an option before continuing.";
    struct Case {
        const char* name;
        int preset;
        std::function<void(CConfigChoice&)> act;
        int result;
        int choice;
        std::vector<std::string> messages;
    };
    const Case cases[] = {
        {"untouched", 0, [](CConfigChoice& d) { press(d, "&Continue"); }, kIdOk, 0, {}},
        {"third radio", 0,
         [](CConfigChoice& d) {
             press(d, kRadios[2]);
             press(d, "&Continue");
         },
         kIdOk, 2, {}},
        {"Enter after the second radio", 0,
         [](CConfigChoice& d) {
             press(d, kRadios[1]);
             QTest::keyClick(&d, Qt::Key_Return);
         },
         kIdOk, 1, {}},
        // Escape reads no control: the preset stays, whatever was clicked.
        {"Escape", 0,
         [](CConfigChoice& d) {
             press(d, kRadios[2]);
             QTest::keyClick(&d, Qt::Key_Escape);
         },
         kIdCancel, 0, {}},
        // Without the preset every Continue is refused, even with a radio
        // checked, since the test comes before the group is read.
        {"no preset", -1,
         [](CConfigChoice& d) {
             EXPECT_EQ(checkedRadio(d), -1);
             press(d, "&Continue");
             press(d, kRadios[1]);
             press(d, "&Continue");
             EXPECT_TRUE(d.isVisible());
             QTest::keyClick(&d, Qt::Key_Escape);
         },
         kIdCancel, -1, {refusal, refusal}},
    };
    for (const Case& c : cases) {
        MessageBoxCapture boxes;
        ModalScript script;
        script.expect<CConfigChoice>([&](CConfigChoice& dialog) {
            EXPECT_EQ(checkedRadio(dialog), c.preset) << c.name;
            c.act(dialog);
        });
        CConfigChoice dialog(nullptr);
        dialog.m_intfName = "GPIB0";
        dialog.m_choice = c.preset;
        EXPECT_EQ(dialog.doModal(), c.result) << c.name;
        EXPECT_EQ(dialog.m_choice, c.choice) << c.name;
        EXPECT_EQ(boxes.texts(), c.messages) << c.name;
        EXPECT_TRUE(script.problems().empty()) << c.name;
    }
}

TEST(CConfigChoice, EachHelpButtonShowsItsMethodAndKeepsTheSelection) {
    struct HelpText {
        const char* title;
        const char* advantages;
        const char* disadvantages;
    };
    const HelpText texts[] = {
        {"Identify all known devices once now (recommended).", "Faster run-time execution.\nEasy Configuration.",
         "Must re-run configuration tool to add new instruments."},
        {"Automatically identify all known devices at run time.",
         "No need to re-run configuration tool when new instruments are added.",
         "Performance: viOpenDefaultRM takes 1/3 second per interface configured this way. For Remote GPIB "
         "interfaces (over the LAN), it can take substantially longer."},
        {"Manually configure devices on this interface.", "Most Flexible.",
         "Requires more manual steps during configuration process."},
    };
    for (int help = 0; help < 3; ++help) {
        const HelpText& expected = texts[help];
        ModalScript script;
        script
            .expect<CConfigChoice>([&](CConfigChoice& dialog) {
                press(dialog, kRadios[1]);
                const auto helpButtons = buttonsLabelled(dialog, "Help");
                ASSERT_EQ(helpButtons.size(), 3u);
                QTest::mouseClick(helpButtons[static_cast<std::size_t>(help)], Qt::LeftButton);
                EXPECT_EQ(checkedRadio(dialog), 1);
                if (help == 1) screenshot(dialog, "config_choice");
                press(dialog, "&Continue");
            })
            .expect<CChoiceHelp>([&](CChoiceHelp& dialog) {
                EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Help on Configuration Choice"));
                EXPECT_EQ(labelText(dialog, "titleLabel"), expected.title);
                EXPECT_EQ(labelText(dialog, "advantagesLabel"), expected.advantages);
                EXPECT_EQ(labelText(dialog, "disadvantagesLabel"), expected.disadvantages);
                screenshot(dialog, "choice_help_" + std::to_string(help));
                press(dialog, "OK");
            });
        CConfigChoice dialog(nullptr);
        dialog.m_intfName = "GPIB0";
        dialog.m_choice = 0;
        EXPECT_EQ(dialog.doModal(), kIdOk);
        EXPECT_EQ(dialog.m_choice, 1) << "help " << help;
        EXPECT_TRUE(script.problems().empty()) << "help " << help;
    }
}

TEST(CConfigChoice, InterfaceTextIsLimitedTo80Characters) {
    struct Case {
        std::size_t length;
        int result;
        std::vector<std::string> messages;
    };
    const Case cases[] = {
        {80, kIdOk, {}},
        {81, kIdCancel, {"Please enter no more than 80 characters."}},
    };
    for (const Case& c : cases) {
        MessageBoxCapture boxes;
        ModalScript script;
        script.expect<CConfigChoice>([&](CConfigChoice& dialog) {
            EXPECT_EQ(labelText(dialog, "intfNameLabel"), std::string(c.length, 'G'));
            press(dialog, "&Continue");
            // A refused text keeps the dialog open; leave it with Escape.
            if (dialog.isVisible()) QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        CConfigChoice dialog(nullptr);
        dialog.m_intfName = std::string(c.length, 'G');
        dialog.m_choice = 0;
        EXPECT_EQ(dialog.doModal(), c.result) << c.length;
        EXPECT_EQ(boxes.texts(), c.messages) << c.length;
        for (const ui::MessageBoxRequest& box : boxes.requests()) EXPECT_EQ(box.icon, ui::MessageIcon::Exclamation);
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
