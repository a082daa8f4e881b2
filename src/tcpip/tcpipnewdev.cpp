#include "tcpip/tcpipnewdev.h"

#include <QLineEdit>
#include <QPushButton>

#include "tcpip/tcpipnewdev_logic.h"
#include "tcpip/tcpipshowdev.h"
#include "ui/qt_text.h"
#include "ui_tcpipnewdev.h"

namespace braxcfg::tcpip {

tcpipnewdev::tcpipnewdev(tcpipshowdev* owner) : tcpipnewdev(owner, owner) {}

tcpipnewdev::tcpipnewdev(tcpipshowdev* owner, QWidget* parent)
    : ui::ModalDialog(parent), m_owner(owner), m_ui(std::make_unique<Ui::TcpipNewDevTemplate>()) {
    m_ui->setupUi(this);
    m_okButton = m_ui->okButton;
    dataExchange().text(m_ui->prefixEdit, m_prefix);
    dataExchange().text(m_ui->deviceEdit, m_device);
    dataExchange().text(m_ui->resourceEdit, m_resource);
    dataExchange().text(m_ui->hostEdit, m_host);
    dataExchange().text(m_ui->aliasEdit, m_alias);
    // Only a person's edits: showing the members in the fields must not
    // read half-shown fields back. The alias field has nothing to recompose.
    connect(m_ui->hostEdit, &QLineEdit::textEdited, this, &tcpipnewdev::onHostUpdate);
    connect(m_ui->deviceEdit, &QLineEdit::textEdited, this, &tcpipnewdev::onDeviceUpdate);
    connect(m_ui->testButton, &QPushButton::clicked, this, &tcpipnewdev::onTest);
}

tcpipnewdev::~tcpipnewdev() = default;

void tcpipnewdev::onInitDialog() {
    ui::ModalDialog::onInitDialog();
    rebuild();
    applyControls();
    setWindowTitle(ui::toQString(newDevCaption(m_host)));
    m_ui->resourceEdit->setText(ui::toQString(m_resource));
}

void tcpipnewdev::onHostUpdate() {
    updateData(true);
    rebuild();
    applyControls();
    updateData(false);
}

void tcpipnewdev::onDeviceUpdate() {
    updateData(true);
    rebuild();
    updateData(false);
}

void tcpipnewdev::onTest() {
    if (m_owner == nullptr) return;
    m_testing = true;
    applyControls();
    // The alias as it stood at the last host or device edit: typing in the
    // alias field alone exchanges nothing, and the test has always used
    // that value.
    m_owner->TestResource(m_alias, m_resource);
    m_testing = false;
    applyControls();
}

void tcpipnewdev::rebuild() {
    ComposedResource composed = composeResource(m_prefix, m_host, m_device, m_rsrcClass);
    m_resource = std::move(composed.resource);
    m_bareResource = std::move(composed.bareResource);
    m_rsrcClass = std::move(composed.rsrcClass);
}

void tcpipnewdev::applyControls() {
    const NewDevControlStates states = newDevControlStates(m_host, m_testing);
    m_okButton->setEnabled(states.okEnabled);
    m_ui->testButton->setEnabled(states.testEnabled);
    m_ui->deviceEdit->setEnabled(states.deviceEnabled);
    m_ui->cancelButton->setEnabled(states.cancelEnabled);
}

}  // namespace braxcfg::tcpip
