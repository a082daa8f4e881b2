#include "dialogs/entry_error.h"

#include "ui_entry_error.h"

namespace braxcfg::dialogs {

CEntryError::CEntryError(QWidget* parent) : ui::ModalDialog(parent), m_ui(std::make_unique<Ui::EntryErrorTemplate>()) {
    m_ui->setupUi(this);
    dataExchange().text(m_ui->errorLabel, m_errorText);
    dataExchange().text(m_ui->deviceNameLabel, m_deviceName);
    dataExchange().text(m_ui->hintLabel, m_hint);
}

CEntryError::~CEntryError() = default;

int CEntryError::doModal() {
    if (m_hint.empty()) m_hint = kDefaultEntryHint;
    return ui::ModalDialog::doModal();
}

}  // namespace braxcfg::dialogs
