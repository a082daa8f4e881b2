#include "ui/modal.h"

#include <QDialog>
#include <utility>

#include "ui/host_owner.h"

namespace braxcfg::ui {
namespace {

ModalHandler& installedHandler() {
    static ModalHandler handler;
    return handler;
}

}  // namespace

int runModal(QDialog& dialog) {
    if (const ModalHandler& handler = installedHandler()) return handler(dialog);
    attachToHostWindow(dialog);
    return dialog.exec();
}

ModalHandler setModalHandler(ModalHandler handler) { return std::exchange(installedHandler(), std::move(handler)); }

}  // namespace braxcfg::ui
