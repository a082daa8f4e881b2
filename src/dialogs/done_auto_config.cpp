#include "dialogs/done_auto_config.h"

#include <QListView>

#include "dialogs/done_auto_config_logic.h"
#include "dialogs/show_devices.h"
#include "store/config_store.h"
#include "ui/message_box.h"
#include "ui_done_auto_config.h"

namespace braxcfg::dialogs {
namespace {

// List mode: the device list dialog's items.
class ListDevices : public AutoConfigDevices {
public:
    explicit ListDevices(CShowDevices& dialog) : dialog_(dialog) {}
    std::vector<std::string> knownDevices() const override { return dialog_.m_deviceList.items(); }
    void addNewDevice(const std::string& name) override { dialog_.addDeviceItem(name); }

private:
    CShowDevices& dialog_;
};

}  // namespace

CDoneAutoConfig::CDoneAutoConfig(QWidget* parent)
    : ui::ModalDialog(parent), m_knownList(false), m_newList(false), m_ui(std::make_unique<Ui::DoneAutoConfigTemplate>()) {
    m_ui->setupUi(this);
    m_knownList.attach(*m_ui->knownList);
    m_newList.attach(*m_ui->newList);
    dataExchange().text(m_ui->intfNameLabel, m_title);
}

CDoneAutoConfig::~CDoneAutoConfig() = default;

void CDoneAutoConfig::InitStoreMode(const store::ConfigStore& store, const std::string& intfName,
                                    const std::string& visaName) {
    m_store = &store;
    m_showDevices = nullptr;
    m_intfName = intfName;
    m_title = visaName;
}

void CDoneAutoConfig::InitListMode(CShowDevices& deviceList, const std::string& intfName,
                                   const std::string& visaName) {
    m_showDevices = &deviceList;
    m_store = nullptr;
    m_intfName = intfName;
    m_title = visaName;
}

void CDoneAutoConfig::onInitDialog() {
    ui::ModalDialog::onInitDialog();
    const store::ConfigStore processStore;  // when no store was given
    std::unique_ptr<AutoConfigDevices> devices;
    if (m_showDevices != nullptr)
        devices = std::make_unique<ListDevices>(*m_showDevices);
    else
        devices = std::make_unique<StoreDevices>(m_store != nullptr ? *m_store : processStore, m_intfName);
    AutoConfigReport report;
    report.showMessage = [this](const std::string& text) { ui::messageBox(this, text, "", ui::MessageIcon::None); };
    const DoneAutoConfigLists lists = doneAutoConfigLists(runAutoConfigSearch(m_intfName, m_title, *devices, report));
    m_knownList.resetContent();
    for (std::size_t n = 0; n < lists.known.size(); ++n) m_knownList.insertString(static_cast<int>(n), lists.known[n]);
    m_newList.resetContent();
    for (const std::string& found : lists.found) m_newList.insertString(-1, found);
    m_ui->newList->setEnabled(lists.foundEnabled);
}

}  // namespace braxcfg::dialogs
