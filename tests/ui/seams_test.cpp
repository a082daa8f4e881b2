// The modal-run and message-box seams: what a test relies on when it
// scripts a dialog, and what production does when nothing is scripted.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>
#include <functional>

#include "dialog_test_support.h"
#include "ui/host_owner.h"
#include "ui/message_box.h"
#include "ui/modal_dialog.h"
#include "ui/modal_script.h"

namespace braxcfg::ui {
namespace {

using test::press;

// A dialog with an OK button and one that opens a nested dialog.
class OuterDialog : public ModalDialog {
    Q_OBJECT
public:
    explicit OuterDialog(QWidget* parent = nullptr) : ModalDialog(parent) {
        auto* layout = new QVBoxLayout(this);
        auto* ok = new QPushButton("OK", this);
        auto* open = new QPushButton("Open", this);
        layout->addWidget(ok);
        layout->addWidget(open);
        connect(ok, &QPushButton::clicked, this, &QDialog::accept);
        connect(open, &QPushButton::clicked, this, [this] {
            ModalDialog inner(this);
            innerResult = inner.doModal();
        });
    }
    int innerResult = 0;
};

TEST(ModalScript, NestedRunsMeetTheirStepsInOpeningOrder) {
    ModalScript script;
    OuterDialog outer;
    script
        .expect<OuterDialog>([](OuterDialog& dialog) {
            press(dialog, "Open");
            EXPECT_TRUE(dialog.isVisible());
            press(dialog, "OK");
        })
        .expectClass("braxcfg::ui::ModalDialog", [](QDialog& inner) { QTest::keyClick(&inner, Qt::Key_Escape); });
    EXPECT_EQ(outer.doModal(), kIdOk);
    EXPECT_EQ(outer.innerResult, kIdCancel);
    EXPECT_EQ(script.opened(), (std::vector<std::string>{"braxcfg::ui::OuterDialog", "braxcfg::ui::ModalDialog"}));
    EXPECT_TRUE(script.problems().empty());
}

TEST(ModalScript, ReportsEveryRunThatLeavesTheScript) {
    struct Case {
        const char* name;
        std::function<void(ModalScript&)> steps;
        std::string problem;
    };
    const Case cases[] = {
        {"no step left", [](ModalScript&) {}, "braxcfg::ui::OuterDialog opened, but no step was left for it"},
        {"other class", [](ModalScript& s) { s.expectClass("braxcfg::dialogs::CEntryError", [](QDialog&) {}); },
         "braxcfg::ui::OuterDialog opened where braxcfg::dialogs::CEntryError was expected"},
        {"left open", [](ModalScript& s) { s.expect<OuterDialog>([](OuterDialog&) {}); },
         "braxcfg::ui::OuterDialog was still open after its step"},
    };
    for (const Case& c : cases) {
        ModalScript script;
        c.steps(script);
        OuterDialog dialog;
        EXPECT_EQ(dialog.doModal(), kIdCancel) << c.name;
        EXPECT_FALSE(dialog.isVisible()) << c.name;
        EXPECT_EQ(script.problems(), std::vector<std::string>{c.problem}) << c.name;
    }
    {
        ModalScript unused;
        unused.expectClass("braxcfg::dialogs::CNewDevice", [](QDialog&) {});
        EXPECT_EQ(unused.problems(),
                  std::vector<std::string>{"braxcfg::dialogs::CNewDevice was expected but never opened"});
    }

    // A box nobody captures would wait for a person; the script answers it.
    ModalScript boxes;
    boxes.expect<OuterDialog>([](OuterDialog& dialog) {
        messageBox(&dialog, "GPIB0::24 is a duplicate device name.", "", MessageIcon::None);
        press(dialog, "OK");
    });
    OuterDialog dialog;
    EXPECT_EQ(dialog.doModal(), kIdOk);
    EXPECT_EQ(boxes.problems(),
              std::vector<std::string>{"message box \"GPIB0::24 is a duplicate device name.\" shown with no "
                                       "MessageBoxCapture"});
}

TEST(MessageBoxCapture, RecordsAnswersAndNests) {
    MessageBoxCapture outer;
    {
        MessageBoxCapture inner([](const MessageBoxRequest&) { return kIdCancel; });
        EXPECT_EQ(messageBox(nullptr, "first", "", MessageIcon::Stop), kIdCancel);
        ASSERT_EQ(inner.requests().size(), 1u);
        EXPECT_EQ(inner.requests()[0].icon, MessageIcon::Stop);
    }
    EXPECT_EQ(messageBox(nullptr, "second", "Title", MessageIcon::None), kIdOk);
    EXPECT_EQ(outer.texts(), std::vector<std::string>{"second"});
    EXPECT_EQ(outer.requests()[0].caption, "Title");
}

// Production box: found from inside its own run once it is up, read, and
// closed with its first button.
struct ShownBox {
    std::string caption, text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    std::vector<std::string> buttons;
};

ShownBox readWhileShown(const std::function<void()>& show) {
    ShownBox shown;
    QTimer poll;
    poll.setInterval(5);
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) return;
        poll.stop();
        shown = {toStdString(box->windowTitle()), toStdString(box->text()), box->icon(), {}};
        for (QAbstractButton* button : box->buttons()) shown.buttons.push_back(toStdString(button->text()));
        box->buttons().front()->click();
    });
    poll.start();
    show();
    return shown;
}

TEST(MessageBox, ProductionShowsTextCaptionIconAndOneOkButton) {
    struct Case {
        std::string caption;
        MessageIcon icon;
        std::string shownCaption;
        QMessageBox::Icon shownIcon;
    };
    const Case cases[] = {
        {"", MessageIcon::None, "braxcfg", QMessageBox::NoIcon},
        {"Resource test", MessageIcon::Stop, "Resource test", QMessageBox::Critical},
        {"", MessageIcon::Question, "braxcfg", QMessageBox::Question},
        {"", MessageIcon::Exclamation, "braxcfg", QMessageBox::Warning},
        {"", MessageIcon::Information, "braxcfg", QMessageBox::Information},
    };
    const std::string text = "GPIB0::24 is a duplicate device name.";
    for (const Case& c : cases) {
        int answer = 0;
        const ShownBox shown = readWhileShown([&] { answer = messageBox(nullptr, text, c.caption, c.icon); });
        EXPECT_EQ(answer, kIdOk);
        EXPECT_EQ(shown.caption, c.shownCaption);
        EXPECT_EQ(shown.text, text);
        EXPECT_EQ(shown.icon, c.shownIcon);
        EXPECT_EQ(shown.buttons, std::vector<std::string>{"OK"});
    }
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

#include "seams_test.moc"
