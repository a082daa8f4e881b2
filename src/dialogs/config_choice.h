#pragma once
// CConfigChoice: how the devices of a newly set-up interface are to be
// configured. The caller sets m_intfName and presets m_choice (0, the
// recommended method) before doModal(), and afterwards reads m_choice
// whatever the run ended with.
//   0  identify all known devices once now
//   1  identify them automatically at run time
//   2  configure them by hand
#include <memory>
#include <string>

#include "ui/modal_dialog.h"

namespace Ui {
class ConfigChoiceTemplate;
}

namespace braxcfg::dialogs {

class CConfigChoice : public ui::ModalDialog {
    Q_OBJECT

public:
    explicit CConfigChoice(QWidget* parent);
    ~CConfigChoice() override;

    std::string m_intfName;  // the interface's VISA name; at most 80 characters on OK
    int m_choice = -1;       // index of the chosen radio button

protected:
    void onOk() override;

private:
    void onHelp(int choice);

    std::unique_ptr<Ui::ConfigChoiceTemplate> m_ui;
};

// Refusal of "&Continue" while no method is chosen.
inline constexpr const char* kNoChoiceMessage = "You must choose an option before continuing.";

}  // namespace braxcfg::dialogs
