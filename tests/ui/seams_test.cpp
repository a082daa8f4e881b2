// The modal-run and message-box seams: that a script reports every run that
// leaves it (else a broken scenario would pass unnoticed), and what
// production shows when nothing is scripted. A script's nested steps and a
// host's ownership of the dialogs are exercised by every dialog test and by
// the exports test, which owns the plug-in's dialogs by a host window.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <functional>

#include "dialog_test_support.h"
#include "ui/modal_dialog.h"
#include "ui/testing/message_box_capture.h"

namespace braxcfg::ui {
namespace {

const std::string kBare = "braxcfg::ui::ModalDialog";
const std::string kDuplicate = "GPIB0::24 is a duplicate device name.";

TEST(ModalScript, ReportsEveryRunThatLeavesTheScript) {
    const auto idle = [](QDialog&) {};
    const auto unguardedBox = [](QDialog& dialog) {
        messageBox(&dialog, kDuplicate, "", MessageIcon::None);
        dialog.accept();
    };
    const std::tuple<std::string, std::function<void(QDialog&)>, int, std::string> cases[] = {
        // the class expected ("": no step), its step, the dialog's result (0: no dialog opens), the problem
        {"", idle, kIdCancel, kBare + " opened, but no step was left for it"},
        {"braxcfg::dialogs::CEntryError", idle, kIdCancel,
         kBare + " opened where braxcfg::dialogs::CEntryError was expected"},
        {kBare, idle, kIdCancel, kBare + " was still open after its step"},
        {"braxcfg::dialogs::CNewDevice", idle, 0, "braxcfg::dialogs::CNewDevice was expected but never opened"},
        // A box nobody captures would wait for a person; the script answers it.
        {kBare, unguardedBox, kIdOk, "message box \"" + kDuplicate + "\" shown with no MessageBoxCapture"},
    };
    for (const auto& [className, step, result, problem] : cases) {
        ModalScript script;
        if (!className.empty()) script.expectClass(className, step);
        if (result != 0) {
            ModalDialog dialog(nullptr);
            EXPECT_EQ(dialog.doModal(), result) << problem;
            EXPECT_FALSE(dialog.isVisible()) << problem;
        }
        EXPECT_EQ(script.problems(), std::vector<std::string>{problem});
    }
}

// Shows a production box and reads it from inside its own run, then closes
// it with its first button: "caption|text|Qt icon|buttons...".
std::string shownBox(const std::string& caption, MessageIcon icon) {
    std::string shown;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) return;
        poll.stop();
        shown = toStdString(box->windowTitle() + "|" + box->text() + "|" + QString::number(box->icon()));
        for (QAbstractButton* button : box->buttons()) shown += "|" + toStdString(button->text());
        box->buttons().front()->click();
    });
    poll.start(5);
    EXPECT_EQ(messageBox(nullptr, kDuplicate, caption, icon), kIdOk);
    return shown;
}

TEST(MessageBox, ProductionShowsTextCaptionIconAndOneOkButton) {
    const std::tuple<std::string, MessageIcon, std::string, QMessageBox::Icon> cases[] = {
        {"", MessageIcon::None, "braxcfg", QMessageBox::NoIcon},
        {"Resource test", MessageIcon::Stop, "Resource test", QMessageBox::Critical},
        {"", MessageIcon::Question, "braxcfg", QMessageBox::Question},
        {"", MessageIcon::Exclamation, "braxcfg", QMessageBox::Warning},
        {"", MessageIcon::Information, "braxcfg", QMessageBox::Information},
    };
    for (const auto& [caption, icon, shownCaption, shownIcon] : cases)
        EXPECT_EQ(shownBox(caption, icon), shownCaption + "|" + kDuplicate + "|" + std::to_string(shownIcon) + "|OK");
}

}  // namespace
}  // namespace braxcfg::ui
