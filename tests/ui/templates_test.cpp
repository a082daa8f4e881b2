// What each dialog template shows before any value is put in: caption,
// fixed texts, buttons with their mnemonics, the default button, and the
// buttons that exist but are hidden.
#include <gtest/gtest.h>

#include <QPushButton>
#include <algorithm>
#include <cctype>
#include <functional>
#include <memory>
#include <set>

#include "dialog_test_support.h"
#include "dialogs/choice_help.h"
#include "dialogs/config_choice.h"
#include "dialogs/entry_error.h"
#include "dialogs/new_device.h"
#include "dialogs/ready_auto_config.h"
#include "ui/qt_text.h"

namespace braxcfg::dialogs {
namespace {

struct Template {
    const char* name;
    std::function<std::unique_ptr<QDialog>()> make;
    const char* caption;
    std::vector<std::string> fixedTexts;
    std::vector<std::string> buttons;  // shown, in creation order
    std::string defaultButton;
    std::vector<std::string> hidden;
};

template <typename Dialog>
std::function<std::unique_ptr<QDialog>()> maker() {
    return [] { return std::make_unique<Dialog>(nullptr); };
}

std::vector<std::string> buttonTexts(QDialog& dialog, bool visible) {
    std::vector<std::string> texts;
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        if (button->isVisibleTo(&dialog) == visible) texts.push_back(ui::toStdString(button->text()));
    return texts;
}

std::string defaultButton(QDialog& dialog) {
    for (QPushButton* button : dialog.findChildren<QPushButton*>())
        if (button->isDefault()) return ui::toStdString(button->text());
    return "<none>";
}

TEST(DialogTemplates, CaptionsTextsButtonsAndMnemonics) {
    const Template templates[] = {
        {"CNewDevice", maker<CNewDevice>(), "New Device", {"Enter the address of this device:"},
         {"OK", "Cancel"}, "OK", {"Help"}},
        {"CEntryError", maker<CEntryError>(), "Entry Error",
         {"The specified device name is not valid:", "<<dev name>>", "<<Error String>>"}, {"OK"}, "OK", {}},
        {"CConfigChoice", maker<CConfigChoice>(), "VISA GPIB Device Configuration",
         {"For the Interface:", "<VISA Intf Name>", "Would you like to:"},
         {"&Identify all known devices once now (recommended).", "Help",
          "&Automatically identify all known devices at run time.", "Help",
          "&Manually configure devices on this interface.", "Help", "&Continue"},
         "&Continue", {}},
        {"CChoiceHelp", maker<CChoiceHelp>(), "Help on Configuration Choice",
         {"My choice", "Advantages:", "Disadvantages:"}, {"OK"}, "OK", {}},
        {"CReadyAutoConfig", maker<CReadyAutoConfig>(), "Auto Configuration",
         {"Ready to Perform Auto Configuration on interface:", "<<intfName>>"}, {"&Continue", "Cancel"},
         "&Continue", {}},
    };
    for (const Template& t : templates) {
        const std::unique_ptr<QDialog> dialog = t.make();
        EXPECT_EQ(ui::toStdString(dialog->windowTitle()), t.caption) << t.name;
        const std::vector<std::string> shown = test::shownTexts(*dialog);
        for (const std::string& text : t.fixedTexts)
            EXPECT_NE(std::find(shown.begin(), shown.end(), text), shown.end()) << t.name << ": " << text;
        EXPECT_EQ(buttonTexts(*dialog, true), t.buttons) << t.name;
        EXPECT_EQ(buttonTexts(*dialog, false), t.hidden) << t.name;
        EXPECT_EQ(defaultButton(*dialog), t.defaultButton) << t.name;

        // Two controls answering the same Alt+letter would make one unreachable.
        std::set<char> mnemonics;
        for (const std::string& text : t.buttons) {
            const std::size_t amp = text.find('&');
            if (amp == std::string::npos || amp + 1 >= text.size()) continue;
            const char letter = static_cast<char>(std::tolower(static_cast<unsigned char>(text[amp + 1])));
            EXPECT_TRUE(mnemonics.insert(letter).second) << t.name << ": " << text;
        }
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
