// What each dialog template shows before any value is put in: caption and
// fixed texts. The buttons' labels are what the dialogs' scenarios press.
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

TEST(DialogTemplates, CaptionsAndFixedTexts) {
    CNewDevice newDevice(nullptr);
    CEntryError entryError(nullptr);
    CConfigChoice choice(nullptr);
    CChoiceHelp choiceHelp(nullptr);
    CReadyAutoConfig ready(nullptr);
    CShowDevices showDevices(nullptr);
    CDoneAutoConfig done(nullptr);
    const std::tuple<QDialog*, const char*, Texts> templates[] = {  // caption, fixed texts
        {&newDevice, "New Device", {"Enter the address of this device:"}},
        {&entryError, "Entry Error", {"The specified device name is not valid:", "<<dev name>>", "<<Error String>>"}},
        {&choice, "VISA GPIB Device Configuration", {"For the Interface:", "<VISA Intf Name>", "Would you like to:"}},
        {&choiceHelp, "Help on Configuration Choice", {"My choice", "Advantages:", "Disadvantages:"}},
        {&ready, "Auto Configuration",
         {"Ready to Perform Auto Configuration on interface:", "<<intfName>>",
          "Make sure all instruments on this interface are turned on and ready to go. This operation will touch "
          "each instrument on this interface.\n\nThis operation may take several seconds.\n\nOn a remote GPIB "
          "interface over the LAN, this operation may take longer."}},
        {&showDevices, "Show Devices", {"Devices present on interface <intf>:"}},
        {&done, "Auto Configuration Complete!",
         {"<<intfName>>:", "The following devices were previously identified:",
          "The following new devices were found:"}},
    };
    for (const auto& [dialog, caption, fixedTexts] : templates) {
        SCOPED_TRACE(caption);
        EXPECT_EQ(ui::toStdString(dialog->windowTitle()), caption);
        const Texts shown = test::templateLabels(*dialog);
        for (const std::string& text : fixedTexts)
            EXPECT_NE(std::find(shown.begin(), shown.end(), text), shown.end()) << text;
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
