// The modal-run and message-box seams: what a test relies on when it
// scripts a dialog, and what production does when nothing is scripted.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QWindow>
#include <functional>

#include "dialog_test_support.h"
#include "ui/host_owner.h"
#include "ui/testing/message_box_capture.h"
#include "ui/modal_dialog.h"

namespace braxcfg::ui {
namespace {

using test::press;

const std::string kBare = "braxcfg::ui::ModalDialog";

// A bare dialog with an OK button and an Open button that runs a nested one.
struct OuterDialog : ModalDialog {
    explicit OuterDialog(QWidget* parent = nullptr) : ModalDialog(parent) {
        connect(new QPushButton("OK", this), &QPushButton::clicked, this, &QDialog::accept);
        connect(new QPushButton("Open", this), &QPushButton::clicked, this, [this] {
            ModalDialog inner(this);
            innerResult = inner.doModal();
        });
    }
    int innerResult = 0;
};

TEST(ModalScript, NestedRunsMeetTheirStepsInOpeningOrder) {
    ModalScript script;
    script.expectClass(kBare, [](QDialog& outer) {
        press(outer, "Open");  // the nested run meets the next step and ends inside this press
        EXPECT_TRUE(outer.isVisible());
        press(outer, "OK");
    });
    script.expectClass(kBare, [](QDialog& inner) { QTest::keyClick(&inner, Qt::Key_Escape); });
    OuterDialog outer;
    EXPECT_EQ(outer.doModal(), kIdOk);
    EXPECT_EQ(outer.innerResult, kIdCancel);
    EXPECT_EQ(test::problems(script), "");
}

TEST(ModalScript, ReportsEveryRunThatLeavesTheScript) {
    const auto idle = [](QDialog&) {};
    const auto unguardedBox = [](QDialog& dialog) {
        messageBox(&dialog, "GPIB0::24 is a duplicate device name.", "", MessageIcon::None);
        press(dialog, "OK");
    };
    struct Case {
        std::function<void(ModalScript&)> steps;
        int result;  // 0: no dialog opens
        std::string problem;
    };
    const Case cases[] = {
        {[](ModalScript&) {}, kIdCancel, kBare + " opened, but no step was left for it"},
        {[&](ModalScript& s) { s.expectClass("braxcfg::dialogs::CEntryError", idle); }, kIdCancel,
         kBare + " opened where braxcfg::dialogs::CEntryError was expected"},
        {[&](ModalScript& s) { s.expectClass(kBare, idle); }, kIdCancel, kBare + " was still open after its step"},
        {[&](ModalScript& s) { s.expectClass("braxcfg::dialogs::CNewDevice", idle); }, 0,
         "braxcfg::dialogs::CNewDevice was expected but never opened"},
        // A box nobody captures would wait for a person; the script answers it.
        {[&](ModalScript& s) { s.expectClass(kBare, unguardedBox); }, kIdOk,
         "message box \"GPIB0::24 is a duplicate device name.\" shown with no MessageBoxCapture"},
    };
    for (const Case& c : cases) {
        ModalScript script;
        c.steps(script);
        if (c.result != 0) {
            OuterDialog dialog;
            EXPECT_EQ(dialog.doModal(), c.result) << c.problem;
            EXPECT_FALSE(dialog.isVisible()) << c.problem;
        }
        EXPECT_EQ(script.problems(), std::vector<std::string>{c.problem});
    }
}

TEST(MessageBoxCapture, AnswersAsToldAndHandsBackToTheOuterOne) {
    MessageBoxCapture outer;
    {
        MessageBoxCapture inner([](const MessageBoxRequest&) { return kIdCancel; });
        EXPECT_EQ(messageBox(nullptr, "first", "", MessageIcon::Stop), kIdCancel);
    }
    EXPECT_EQ(messageBox(nullptr, "second", "Title", MessageIcon::None), kIdOk);
    EXPECT_EQ(outer.texts(), std::vector<std::string>{"second"});
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
    EXPECT_EQ(messageBox(nullptr, "GPIB0::24 is a duplicate device name.", caption, icon), kIdOk);
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
        EXPECT_EQ(shownBox(caption, icon),
                  shownCaption + "|GPIB0::24 is a duplicate device name.|" + std::to_string(shownIcon) + "|OK");
}

TEST(HostOwner, DialogsOfAHostAreTransientForItsWindow) {
    ASSERT_TRUE(ensureApplication());
    EXPECT_EQ(HostOwner(static_cast<void*>(nullptr)).widget(), nullptr);
    EXPECT_EQ(HostOwner(static_cast<QWindow*>(nullptr)).widget(), nullptr);
    QWindow host;
    host.setGeometry(100, 100, 400, 300);
    host.create();
    HostOwner owner(&host);
    ASSERT_NE(owner.widget(), nullptr);
    OuterDialog dialog(owner.widget());
    QWindow* transientParent = nullptr;
    QTimer::singleShot(0, [&] {
        transientParent = dialog.windowHandle() != nullptr ? dialog.windowHandle()->transientParent() : nullptr;
        press(dialog, "OK");
    });
    EXPECT_EQ(dialog.doModal(), kIdOk);  // the production run: exec()
    EXPECT_EQ(transientParent, &host);
}

}  // namespace
}  // namespace braxcfg::ui
