#include "ui/message_box.h"

#include <QApplication>
#include <QMessageBox>
#include <utility>

#include "platform/debug_output.h"
#include "ui/host_owner.h"
#include "ui/qt_text.h"

namespace braxcfg::ui {
namespace {

MessageBoxHandler& installedHandler() {
    static MessageBoxHandler handler;
    return handler;
}

QMessageBox::Icon qtIcon(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::Stop:
            return QMessageBox::Critical;
        case MessageIcon::Question:
            return QMessageBox::Question;
        case MessageIcon::Exclamation:
            return QMessageBox::Warning;
        case MessageIcon::Information:
            return QMessageBox::Information;
        case MessageIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

int showMessageBox(const MessageBoxRequest& request) {
    const std::string caption = request.caption.empty() ? std::string(kDefaultCaption) : request.caption;
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) {
        platform::debugOutput(caption + ": " + request.text + "\n");
        return kIdOk;
    }
    QMessageBox box(qtIcon(request.icon), toQString(caption), toQString(request.text), QMessageBox::NoButton,
                    request.owner);
    box.setTextFormat(Qt::PlainText);
    box.addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    attachToHostWindow(box);
    box.exec();
    return kIdOk;
}

}  // namespace

int messageBox(QWidget* owner, const std::string& text, const std::string& caption, MessageIcon icon) {
    const MessageBoxRequest request{owner, text, caption, icon};
    if (const MessageBoxHandler& handler = installedHandler()) return handler(request);
    return showMessageBox(request);
}

MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler) {
    return std::exchange(installedHandler(), std::move(handler));
}

}  // namespace braxcfg::ui
