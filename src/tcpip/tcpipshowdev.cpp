#include "tcpip/tcpipshowdev.h"

#include <QLayout>
#include <QListView>
#include <QPushButton>
#include <new>

#include "tcpip/lan_device_writes.h"
#include "tcpip/resource_probe.h"
#include "tcpip/tcpipnewdev.h"
#include "tcpip/tcpipshowdev_logic.h"
#include "ui/list_box_tabs.h"
#include "ui/message_box.h"
#include "ui_tcpipshowdev.h"

namespace braxcfg::tcpip {
namespace {

// The resource strings start this far into each entry, after the alias.
constexpr int kResourceColumnDialogUnits = 52;

}  // namespace

tcpipshowdev::tcpipshowdev(QWidget* parent)
    : ui::ModalDialog(parent), m_deviceList(true), m_ui(std::make_unique<Ui::TcpipShowDevTemplate>()) {
    m_ui->setupUi(this);
    m_removeButton = m_ui->removeButton;
    m_addButton = m_ui->addButton;
    m_deviceList.attach(*m_ui->deviceList);
    dataExchange().text(m_ui->headingLabel, m_heading);
    connect(m_ui->addButton, &QPushButton::clicked, this, &tcpipshowdev::onAddDevice);
    connect(m_ui->editButton, &QPushButton::clicked, this, &tcpipshowdev::onEditDevice);
    connect(m_ui->removeButton, &QPushButton::clicked, this, &tcpipshowdev::onRemoveDevice);
    connect(m_ui->testButton, &QPushButton::clicked, this, &tcpipshowdev::onTestDevice);
    connect(&m_deviceList.selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &tcpipshowdev::onSelectionChange);
    connect(m_ui->deviceList, &QListView::doubleClicked, this, &tcpipshowdev::onEditDevice);
}

tcpipshowdev::~tcpipshowdev() { m_aliases.deleteRecords(); }

void tcpipshowdev::Init(const store::ConfigStore* config, const std::string& intfKey,
                        const std::string& visaIntfName, bool editable, std::uint32_t callerFlag) {
    m_config = config;
    m_intfKey = intfKey;
    m_visaIntfName = visaIntfName;
    m_editable = editable;
    m_callerFlag = callerFlag;
}

void tcpipshowdev::showEvent(QShowEvent* event) {
    // The column caption stands over the tab stop, measured in the font the
    // list has once it is polished for showing. The item text starts inside
    // the frame plus the focus margin the items keep.
    constexpr int kItemTextInset = 3;
    m_ui->aliasCaption->setFixedWidth(
        static_cast<int>(ui::listBoxTabStopDistance(*m_ui->deviceList, kResourceColumnDialogUnits)) +
        m_ui->deviceList->frameWidth() + kItemTextInset);
    layout()->activate();
    ui::ModalDialog::showEvent(event);
}

std::string tcpipshowdev::entryText(int i) const { return m_deviceList.text(i); }

void tcpipshowdev::onInitDialog() {
    m_heading = "Manually configured devices on the " + m_visaIntfName + " interface:";
    ui::ModalDialog::onInitDialog();
    ui::setListBoxTabStop(*m_ui->deviceList, kResourceColumnDialogUnits);
    m_aliases.deleteRecords();
    m_aliases.load();
    applyControls();
    loadEntries();
}

void tcpipshowdev::loadEntries() {
    m_deviceList.resetContent();
    if (m_config == nullptr) return;
    for (std::uint32_t i = 0;; ++i) {
        const std::string device = m_config->GetDeviceName(m_intfKey, i);
        if (device.empty()) break;
        for (std::uint32_t j = 0;; ++j) {
            const std::string resource = m_config->GetDeviceRsrcName(m_intfKey, device, j);
            if (resource.empty()) break;
            const AliasEntry* alias = m_aliases.findByRsrcString(resource);
            // At the device's index, not at the end: the resources of one
            // device come out last first and interleave with the next
            // device's. Users know their lists in this order.
            m_deviceList.insertString(static_cast<int>(i),
                                      makeEntry(alias != nullptr ? alias->name().value_or("") : "", resource));
        }
    }
}

void tcpipshowdev::applyControls() {
    const ShowDevButtonStates states =
        showDevButtonStates(m_busy, m_editable, !m_deviceList.selItems(1).empty());
    m_ui->okButton->setEnabled(states.okEnabled);
    m_ui->cancelButton->setEnabled(states.cancelEnabled);
    m_addButton->setEnabled(states.addEnabled);
    m_ui->editButton->setEnabled(states.editEnabled);
    m_ui->testButton->setEnabled(states.testEnabled);
    m_removeButton->setEnabled(states.removeEnabled);
}

void tcpipshowdev::onSelectionChange() {
    const SelectionButtonStates states = selectionButtonStates(m_deviceList.selCount());
    m_removeButton->setEnabled(states.removeEnabled);
    m_ui->editButton->setEnabled(states.editEnabled);
    m_ui->testButton->setEnabled(states.testEnabled);
}

int tcpipshowdev::runChild(ui::ModalDialog& child) {
    m_busy = true;
    applyControls();
    const int result = child.doModal();
    m_busy = false;
    applyControls();
    return result;
}

void tcpipshowdev::onAddDevice() {
    tcpipnewdev child(this);
    std::unique_ptr<AliasEntry> entry(new (std::nothrow) AliasEntry(std::nullopt, std::nullopt, std::nullopt));
    if (!entry) return;
    entry->setState(AliasState::Added);
    const bool automatic = findAutomaticAlias(m_aliases, *entry);
    child.m_prefix = m_visaIntfName + "::";
    child.m_device.clear();
    child.m_alias = automatic ? entry->name().value_or("") : std::string();
    if (runChild(child) != ui::kIdOk) return;
    if (const auto duplicate = duplicateDevice(entries(), child.m_bareResource)) {
        ui::messageBox(this, duplicateDeviceMessage(*duplicate), std::string(), ui::MessageIcon::None);
        return;
    }
    const std::string resource = child.m_bareResource + "::" + child.m_rsrcClass;
    if (!child.m_alias.empty()) {
        // The entry still carries the last automatic name tried, not the
        // alias typed: this finds a clash only when every automatic name
        // was taken. The list has always checked exactly this.
        if (m_aliases.findDuplicate(entry.get()) != nullptr) {
            ui::messageBox(this, duplicateAliasMessage(child.m_alias), std::string(), ui::MessageIcon::None);
            return;
        }
        entry->setName(child.m_alias);
        entry->setRsrcString(resource);
        if (m_aliases.addRecord(entry.get()) == 0) {
            entry->setKorlAddress(korlAddressOf(resource));
            entry.release();
        }
    }
    m_deviceList.addString(makeEntry(child.m_alias, resource));
}

void tcpipshowdev::onEditDevice() {
    const std::vector<int> selected = m_deviceList.selItems(1);
    if (selected.empty()) return;
    const int index = selected[0];
    const EntryParts parts = splitEntry(m_deviceList.text(index));
    AliasEntry* remembered = parts.alias.empty() ? nullptr : m_aliases.findByRsrcString(parts.resource);
    const std::optional<ResourceParts> fields = takeApartResource(parts.resource);
    if (!fields) return;
    tcpipnewdev child(this);
    child.m_prefix = fields->prefix;
    child.m_host = fields->host;
    child.m_device = fields->device;
    child.m_alias = parts.alias;
    if (runChild(child) != ui::kIdOk) return;
    if (const auto duplicate = duplicateDevice(entries(), child.m_bareResource)) {
        ui::messageBox(this, duplicateDeviceMessage(*duplicate), std::string(), ui::MessageIcon::None);
        return;
    }
    const std::string resource = child.m_bareResource + "::" + child.m_rsrcClass;
    delete recordEditedAlias(m_aliases, remembered, child.m_alias, resource);
    m_deviceList.deleteString(index);
    m_deviceList.addString(makeEntry(child.m_alias, resource));
}

void tcpipshowdev::onRemoveDevice() {
    constexpr std::size_t kMaxSelected = 256;
    const std::vector<int> selected = m_deviceList.selItems(kMaxSelected);
    // From the bottom up, so the indexes still to come stay valid.
    for (auto it = selected.rbegin(); it != selected.rend(); ++it) {
        const EntryParts parts = splitEntry(m_deviceList.text(*it));
        if (!parts.alias.empty())
            if (AliasEntry* alias = m_aliases.findByRsrcString(parts.resource)) m_aliases.markDeleted(alias);
        m_deviceList.deleteString(*it);
    }
}

void tcpipshowdev::onTestDevice() {
    const std::vector<int> selected = m_deviceList.selItems(1);
    if (selected.empty()) return;
    const EntryParts parts = splitEntry(m_deviceList.text(selected[0]));
    m_busy = true;
    applyControls();
    TestResource(parts.alias, parts.resource);
    m_busy = false;
    applyControls();
}

int tcpipshowdev::TestResource(std::string alias, std::string resource) {
    return tcpip::TestResource(this, std::move(alias), std::move(resource));
}

void tcpipshowdev::onOk() {
    if (!updateData(true)) return;
    if (m_config != nullptr) {
        const platform::StoreFailure failure =
            writeLanDevices(*m_config, m_intfKey, planDeviceWrites(entries()), m_aliases);
        // Nothing was written: the list stays open as it is, for OK again
        // or Cancel.
        if (failure != platform::StoreFailure::None) {
            ui::messageBox(this, platform::storeFailureMessage(failure), std::string(), ui::MessageIcon::Exclamation);
            return;
        }
    }
    endDialog(ui::kIdOk);
}

}  // namespace braxcfg::tcpip
