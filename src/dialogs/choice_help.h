#pragma once
// CChoiceHelp: the advantages and disadvantages of one configuration
// method, opened by a "Help" button of CConfigChoice.
#include <memory>
#include <string>

#include "ui/modal_dialog.h"

namespace Ui {
class ChoiceHelpTemplate;
}

namespace braxcfg::dialogs {

class CChoiceHelp : public ui::ModalDialog {
    Q_OBJECT

public:
    explicit CChoiceHelp(QWidget* parent);
    ~CChoiceHelp() override;

    std::string m_title;
    std::string m_advantages;
    std::string m_disadvantages;

private:
    std::unique_ptr<Ui::ChoiceHelpTemplate> m_ui;
};

}  // namespace braxcfg::dialogs
