#include "dialogs/config_choice.h"

#include <gtest/gtest.h>

#include <functional>

#include "dialog_test_support.h"
#include "dialogs/choice_help.h"
#include "ui/testing/message_box_capture.h"

namespace braxcfg::dialogs {
namespace {

using namespace test;
using ui::kIdCancel;
using ui::kIdOk;
using ui::ModalScript;

const char* const kRadios[] = {"&Identify all known devices once now (recommended).",
                               "&Automatically identify all known devices at run time.",
                               "&Manually configure devices on this interface."};

int checkedRadio(CConfigChoice& dialog) {
    for (int i = 0; i < 3; ++i)
        if (buttonsLabelled(dialog, kRadios[i]).at(0)->isChecked()) return i;
    return -1;
}

TEST(CConfigChoice, ContinueTestsThePresetBeforeReadingTheGroup) {
    const std::string refusal = "You must choose an option before continuing.";
    const auto escape = [](CConfigChoice& d) { QTest::keyClick(&d, Qt::Key_Escape); };
    struct Case {
        std::string intf;
        int preset;
        std::function<void(CConfigChoice&)> act;
        int result, choice;
        std::vector<std::string> messages;
    };
    const Case cases[] = {
        // Untouched, 80 characters pass. A radio with Continue and Escape keeping the preset are
        // driven by the configuration window's test.
        {std::string(80, 'G'), 0, [](auto& d) { press(d, "&Continue"); }, kIdOk, 0, {}},
        // Without the preset every Continue is refused, even with a radio
        // checked, since the test comes before the group is read.
        {"GPIB0", -1, [&](auto& d) { press(d, "&Continue"); press(d, kRadios[1]); press(d, "&Continue"); escape(d); },
         kIdCancel, -1, {refusal, refusal}},
        // A refused text keeps the dialog open; the group was read before it.
        {std::string(81, 'G'), 0, [&](auto& d) { press(d, kRadios[1]); press(d, "&Continue"); escape(d); }, kIdCancel,
         1, {"Please enter no more than 80 characters."}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "row " << (&c - cases));
        ui::MessageBoxCapture boxes;
        ModalScript script;
        script.expect<CConfigChoice>([&](CConfigChoice& dialog) {
            EXPECT_EQ(checkedRadio(dialog), c.preset);
            EXPECT_EQ(shownText(dialog, "intfNameLabel"), c.intf);
            c.act(dialog);
        });
        CConfigChoice dialog(nullptr);
        dialog.m_intfName = c.intf;
        dialog.m_choice = c.preset;
        EXPECT_EQ(dialog.doModal(), c.result);
        EXPECT_EQ(dialog.m_choice, c.choice);
        EXPECT_EQ(boxes.texts(), c.messages);
        EXPECT_EQ(problems(script), "");
    }
}

TEST(CConfigChoice, EachHelpButtonShowsItsMethodAndKeepsTheSelection) {
    const char* const labels[] = {"titleLabel", "advantagesLabel", "disadvantagesLabel"};
    const char* const texts[3][3] = {
        {"Identify all known devices once now (recommended).", "Faster run-time execution.\nEasy Configuration.",
         "Must re-run configuration tool to add new instruments."},
        {"Automatically identify all known devices at run time.",
         "No need to re-run configuration tool when new instruments are added.",
         "Performance: viOpenDefaultRM takes 1/3 second per interface configured this way. For Remote GPIB "
         "interfaces (over the LAN), it can take substantially longer."},
        {"Manually configure devices on this interface.", "Most Flexible.",
         "Requires more manual steps during configuration process."},
    };
    ModalScript script;
    script.expect<CConfigChoice>([&](CConfigChoice& dialog) {
        press(dialog, kRadios[1]);
        for (QAbstractButton* help : buttonsLabelled(dialog, "Help")) QTest::mouseClick(help, Qt::LeftButton);
        EXPECT_EQ(checkedRadio(dialog), 1);
        screenshot(dialog, "config_choice");
        press(dialog, "&Continue");
    });
    for (int help = 0; help < 3; ++help)
        script.expect<CChoiceHelp>([&, help](CChoiceHelp& dialog) {
            for (int i = 0; i < 3; ++i) EXPECT_EQ(shownText(dialog, labels[i]), texts[help][i]);
            if (help == 0) screenshot(dialog, "choice_help");
            press(dialog, "OK");
        });
    CConfigChoice dialog(nullptr);
    dialog.m_intfName = "GPIB0";
    dialog.m_choice = 0;
    EXPECT_EQ(dialog.doModal(), kIdOk);
    EXPECT_EQ(dialog.m_choice, 1);
    EXPECT_EQ(problems(script), "");
}

}  // namespace
}  // namespace braxcfg::dialogs
