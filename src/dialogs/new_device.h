#pragma once
// CNewDevice: asks for the address of one device on an address-based
// interface and shows it joined to the interface prefix as the device name.
// OK closes the dialog only for an address that passes the address rules;
// a refused address is explained in CEntryError and stays in the field.
//
// The caller sets m_prefix (VISA name + "::") before doModal() and, after
// kIdOk, reads m_deviceName.
#include <memory>
#include <string>

#include "ui/modal_dialog.h"

class QPushButton;

namespace Ui {
class NewDeviceTemplate;
}

namespace braxcfg::dialogs {

class CNewDevice : public ui::ModalDialog {
    Q_OBJECT

public:
    explicit CNewDevice(QWidget* parent);
    ~CNewDevice() override;

    std::string m_address;     // as typed; the only value the rules check
    std::string m_prefix;      // set by the caller, shown read-only
    std::string m_deviceName;  // always m_prefix + m_address

protected:
    void onInitDialog() override;
    void onOk() override;

private:
    void onAddressUpdate();

    std::unique_ptr<Ui::NewDeviceTemplate> m_ui;
    QPushButton* m_okButton;
};

}  // namespace braxcfg::dialogs
