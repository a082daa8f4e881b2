#pragma once
// CShowDevices: the devices configured on one address-based interface
// (GPIB, VXI, GPIB-VXI). The user adds devices by address, removes selected
// ones, lets auto configuration find more, and sets whether devices are
// identified at run time. Nothing is written while the dialog is open; OK
// writes the flag and the whole list in one transaction, Cancel nothing.
//
// The caller constructs it with its window, calls Init() and doModal(); the
// result needs no examination, OK has written the store.
#include <memory>
#include <string>

#include "ui/list_box_model.h"
#include "ui/modal_dialog.h"

class QAbstractButton;

namespace Ui {
class ShowDevicesTemplate;
}

namespace braxcfg::store {
class ConfigStore;
}

namespace braxcfg::dialogs {

class CShowDevices : public ui::ModalDialog {
    Q_OBJECT

public:
    explicit CShowDevices(QWidget* parent);
    ~CShowDevices() override;

    // Inputs, given before doModal(): the store, the interface's key name
    // ("INTF0"), its VISA name ("GPIB0"), its resource type ("INSTR"),
    // whether the list may be edited, whether auto add is allowed.
    void Init(const store::ConfigStore& store, const std::string& intfName, const std::string& visaName,
              const std::string& rsrcType, bool editable, bool autoAddAllowed);

    // Auto configuration in list mode reads m_deviceList's items and adds
    // what it finds here (the list's sorted add).
    void addDeviceItem(const std::string& name);

    const store::ConfigStore* m_store = nullptr;
    std::string m_intfName;
    std::string m_visaName;
    std::string m_rsrcType;
    bool m_editable = true;
    bool m_autoAddAllowed = true;
    int m_identifyAtRunTime = 0;  // the check box
    std::string m_title;          // the field above the list
    ui::ListBoxModel m_deviceList;

protected:
    void onInitDialog() override;
    void onOk() override;

private:
    void onAddDevice();
    void onRemoveDevice();
    void onAutoAddDevices();
    void applyControls();

    std::unique_ptr<Ui::ShowDevicesTemplate> m_ui;
    QAbstractButton* m_addButton;
    QAbstractButton* m_removeButton;
    QAbstractButton* m_autoAddButton;
    QAbstractButton* m_identifyCheck;
};

}  // namespace braxcfg::dialogs
