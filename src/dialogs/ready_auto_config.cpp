#include "dialogs/ready_auto_config.h"

#include "ui_ready_auto_config.h"

namespace braxcfg::dialogs {

CReadyAutoConfig::CReadyAutoConfig(QWidget* parent)
    : ui::ModalDialog(parent), m_ui(std::make_unique<Ui::ReadyAutoConfigTemplate>()) {
    m_ui->setupUi(this);
    dataExchange().text(m_ui->intfNameLabel, m_intfName);
}

CReadyAutoConfig::~CReadyAutoConfig() = default;

}  // namespace braxcfg::dialogs
