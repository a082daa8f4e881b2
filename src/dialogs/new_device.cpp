#include "dialogs/new_device.h"

#include <QLineEdit>
#include <QPushButton>

#include "dialogs/address_rules.h"
#include "dialogs/entry_error.h"
#include "ui_new_device.h"

namespace braxcfg::dialogs {

CNewDevice::CNewDevice(QWidget* parent) : ui::ModalDialog(parent), m_ui(std::make_unique<Ui::NewDeviceTemplate>()) {
    m_ui->setupUi(this);
    m_okButton = m_ui->okButton;
    dataExchange().text(m_ui->addressEdit, m_address);
    dataExchange().text(m_ui->prefixEdit, m_prefix);
    dataExchange().text(m_ui->deviceNameEdit, m_deviceName);
    // Every change of the field, before it is painted, recomposes the name.
    connect(m_ui->addressEdit, &QLineEdit::textChanged, this, &CNewDevice::onAddressUpdate);
}

CNewDevice::~CNewDevice() = default;

void CNewDevice::onInitDialog() {
    m_deviceName = m_prefix + m_address;
    ui::ModalDialog::onInitDialog();
    m_okButton->setEnabled(!m_address.empty());
}

void CNewDevice::onAddressUpdate() {
    updateData(true);
    m_deviceName = m_prefix + m_address;
    updateData(false);
    m_okButton->setEnabled(!m_address.empty());
}

void CNewDevice::onOk() {
    if (const auto message = checkDeviceAddress(m_address)) {
        CEntryError error(this);
        error.m_errorText = *message;
        error.m_deviceName = m_prefix + m_address;
        error.doModal();
        return;
    }
    ui::ModalDialog::onOk();
}

}  // namespace braxcfg::dialogs
