// What each dialog template shows before any value is put in: caption,
// fixed texts, buttons with their mnemonics, the default button, and the
// buttons that exist but are hidden.
#include <gtest/gtest.h>

#include <algorithm>

#include "dialog_test_support.h"
#include "dialogs/choice_help.h"
#include "dialogs/config_choice.h"
#include "dialogs/done_auto_config.h"
#include "dialogs/entry_error.h"
#include "dialogs/new_device.h"
#include "dialogs/ready_auto_config.h"
#include "dialogs/show_devices.h"

namespace braxcfg::dialogs {
namespace {

using Texts = std::vector<std::string>;

TEST(DialogTemplates, CaptionsTextsButtonsAndMnemonics) {
    CNewDevice newDevice(nullptr);
    CEntryError entryError(nullptr);
    CConfigChoice choice(nullptr);
    CChoiceHelp choiceHelp(nullptr);
    CReadyAutoConfig ready(nullptr);
    CShowDevices showDevices(nullptr);
    CDoneAutoConfig done(nullptr);
    const std::tuple<QDialog*, const char*, Texts, Texts> templates[] = {  // caption, fixed texts, buttons
        {&newDevice, "New Device", {"Enter the address of this device:"}, {"OK*", "Cancel", "Help (hidden)"}},
        {&entryError, "Entry Error",
         {"The specified device name is not valid:", "<<dev name>>", "<<Error String>>"}, {"OK*"}},
        {&choice, "VISA GPIB Device Configuration",
         {"For the Interface:", "<VISA Intf Name>", "Would you like to:"},
         {"&Identify all known devices once now (recommended).", "Help",
          "&Automatically identify all known devices at run time.", "Help",
          "&Manually configure devices on this interface.", "Help", "&Continue*"}},
        {&choiceHelp, "Help on Configuration Choice", {"My choice", "Advantages:", "Disadvantages:"}, {"OK*"}},
        {&ready, "Auto Configuration",
         {"Ready to Perform Auto Configuration on interface:", "<<intfName>>",
          "Make sure all instruments on this interface are turned on and ready to go. This operation will touch "
          "each instrument on this interface.\n\nThis operation may take several seconds.\n\nOn a remote GPIB "
          "interface over the LAN, this operation may take longer."},
         {"&Continue*", "Cancel"}},
        {&showDevices, "Show Devices", {"Devices present on interface <intf>:"},
         {"&Identify devices at run-time", "OK*", "Cancel", "Help (hidden)", "&Add device", "&Remove device",
          "A&uto Add devices"}},
        {&done, "Auto Configuration Complete!",
         {"<<intfName>>:", "The following devices were previously identified:",
          "The following new devices were found:"},
         {"OK*"}},
    };
    for (const auto& [dialog, caption, fixedTexts, buttons] : templates) {
        SCOPED_TRACE(caption);
        EXPECT_EQ(ui::toStdString(dialog->windowTitle()), caption);
        const Texts shown = test::templateLabels(*dialog);
        for (const std::string& text : fixedTexts)
            EXPECT_NE(std::find(shown.begin(), shown.end(), text), shown.end()) << text;
        EXPECT_EQ(test::templateButtons(*dialog), buttons);
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
