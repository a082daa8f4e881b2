#include "dialogs/show_devices.h"

#include <QPushButton>

#include "dialogs/done_auto_config.h"
#include "dialogs/new_device.h"
#include "dialogs/ready_auto_config.h"
#include "dialogs/show_devices_logic.h"
#include "store/config_store.h"
#include "store/device_list_write.h"
#include "ui/message_box.h"
#include "ui_show_devices.h"

namespace braxcfg::dialogs {
namespace {

// A dialog opened without Init() reads and writes the process's store.
const store::ConfigStore kProcessStore;

}  // namespace

CShowDevices::CShowDevices(QWidget* parent)
    : ui::ModalDialog(parent), m_store(&kProcessStore), m_ui(std::make_unique<Ui::ShowDevicesTemplate>()) {
    m_ui->setupUi(this);
    m_deviceList.attach(*m_ui->deviceList);
    m_addButton = m_ui->addButton;
    m_removeButton = m_ui->removeButton;
    m_autoAddButton = m_ui->autoAddButton;
    m_identifyCheck = m_ui->identifyCheck;
    dataExchange().check(m_ui->identifyCheck, m_identifyAtRunTime);
    dataExchange().text(m_ui->titleLabel, m_title);
    connect(m_addButton, &QAbstractButton::clicked, this, &CShowDevices::onAddDevice);
    connect(m_removeButton, &QAbstractButton::clicked, this, &CShowDevices::onRemoveDevice);
    connect(m_autoAddButton, &QAbstractButton::clicked, this, &CShowDevices::onAutoAddDevices);
}

CShowDevices::~CShowDevices() = default;


void CShowDevices::Init(const store::ConfigStore& store, const std::string& intfName, const std::string& visaName,
                        const std::string& rsrcType, bool editable, bool autoAddAllowed) {
    m_store = &store;
    m_intfName = intfName;
    m_visaName = visaName;
    m_rsrcType = rsrcType;
    m_editable = editable;
    m_autoAddAllowed = autoAddAllowed;
}

void CShowDevices::addDeviceItem(const std::string& name) { m_deviceList.addString(name); }

void CShowDevices::onInitDialog() {
    m_title = showDevicesTitle(m_visaName);
    m_identifyAtRunTime = m_store->IsAutoConfig(m_intfName);
    ui::ModalDialog::onInitDialog();
    applyControls();
    // The store's order is kept as it is: each name goes to its position,
    // not through the sorted add.
    m_deviceList.resetContent();
    int position = 0;
    for (const std::string& device : m_store->GetDeviceNames(m_intfName))
        m_deviceList.insertString(position++, device);
}

void CShowDevices::applyControls() {
    const ShowDevicesControls controls = showDevicesControls(m_editable, m_autoAddAllowed);
    m_addButton->setEnabled(controls.add);
    m_removeButton->setEnabled(controls.remove);
    m_autoAddButton->setEnabled(controls.autoAdd);
    m_identifyCheck->setEnabled(controls.identifyAtRunTime);
}

void CShowDevices::onAddDevice() {
    CNewDevice newDevice(this);
    newDevice.m_prefix = m_visaName + "::";
    newDevice.m_address.clear();
    if (newDevice.doModal() != ui::kIdOk) return;
    if (const auto duplicate = duplicateDeviceMessage(m_deviceList.items(), newDevice.m_deviceName)) {
        ui::messageBox(this, *duplicate, "", ui::MessageIcon::None);
        return;
    }
    m_deviceList.addString(newDevice.m_deviceName);
}

void CShowDevices::onRemoveDevice() {
    for (const int index : removalOrder(m_deviceList.selItems(kRemoveSelectionLimit))) m_deviceList.deleteString(index);
}

void CShowDevices::onAutoAddDevices() {
    CReadyAutoConfig ready(this);
    CDoneAutoConfig done(this);
    ready.m_intfName = m_store->GetVisaName(m_intfName);
    if (ready.doModal() != ui::kIdOk) return;
    done.InitListMode(*this, m_intfName, m_visaName);
    done.doModal();
}

void CShowDevices::onOk() {
    // The dialog ends only once the list is saved: when the store cannot
    // take it, the user keeps the list to try again.
    if (!updateData(true)) return;
    const store::DeviceListWrite plan =
        deviceListWritePlan(m_intfName, m_identifyAtRunTime, m_deviceList.items(), m_rsrcType);
    if (const platform::StoreFailure failure = store::writeDeviceList(*m_store, plan);
        failure != platform::StoreFailure::None) {
        ui::messageBox(this, platform::storeFailureMessage(failure), "", ui::MessageIcon::Exclamation);
        return;
    }
    endDialog(ui::kIdOk);
}

}  // namespace braxcfg::dialogs
