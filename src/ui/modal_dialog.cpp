#include "ui/modal_dialog.h"

#include "ui/modal.h"

namespace braxcfg::ui {

ModalDialog::ModalDialog(QWidget* parent) : QDialog(parent) {}

ModalDialog::~ModalDialog() = default;

int ModalDialog::doModal() {
    setResult(kIdCancel);
    onInitDialog();
    return runModal(*this);
}

bool ModalDialog::updateData(bool save) {
    if (save) return m_dataExchange.save(this);
    m_dataExchange.load();
    return true;
}

void ModalDialog::accept() { onOk(); }

void ModalDialog::reject() { onCancel(); }

void ModalDialog::onInitDialog() { updateData(false); }

void ModalDialog::onOk() {
    if (updateData(true)) endDialog(kIdOk);
}

void ModalDialog::onCancel() { endDialog(kIdCancel); }

void ModalDialog::endDialog(int result) { done(result); }

}  // namespace braxcfg::ui
