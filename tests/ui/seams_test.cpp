// The modal-run seam: a script reports a run that leaves it, else a broken
// scenario would pass unnoticed. A script's nested steps and a host's
// ownership of the dialogs are exercised by every dialog test and by the
// exports test, which owns the plug-in's dialogs by a host window.
#include <gtest/gtest.h>

#include "ui/modal_dialog.h"
#include "ui/message_box.h"
#include "ui/testing/modal_script.h"

namespace braxcfg::ui {
namespace {

// A box nobody captures would wait for a person; the script answers it and says so.
TEST(ModalScript, AnswersAndReportsABoxShownWithoutACapture) {
    const std::string duplicate = "GPIB0::24 is a duplicate device name.";
    ModalScript script;
    script.expectClass("braxcfg::ui::ModalDialog", [&](QDialog& dialog) {
        messageBox(&dialog, duplicate, "", MessageIcon::None);
        dialog.accept();
    });
    ModalDialog dialog(nullptr);
    EXPECT_EQ(dialog.doModal(), kIdOk);
    EXPECT_EQ(script.problems(),
              std::vector<std::string>{"message box \"" + duplicate + "\" shown with no MessageBoxCapture"});
}

}  // namespace
}  // namespace braxcfg::ui
