#include "dialogs/choice_help.h"

#include "ui_choice_help.h"

namespace braxcfg::dialogs {

CChoiceHelp::CChoiceHelp(QWidget* parent) : ui::ModalDialog(parent), m_ui(std::make_unique<Ui::ChoiceHelpTemplate>()) {
    m_ui->setupUi(this);
    dataExchange().text(m_ui->titleLabel, m_title);
    dataExchange().text(m_ui->advantagesLabel, m_advantages);
    dataExchange().text(m_ui->disadvantagesLabel, m_disadvantages);
}

CChoiceHelp::~CChoiceHelp() = default;

}  // namespace braxcfg::dialogs
