#pragma once
// CReadyAutoConfig: warns that auto configuration will touch every
// instrument on the interface and asks to go on. kIdOk ("&Continue") starts
// the search; kIdCancel leaves everything as it was.
#include <memory>
#include <string>

#include "ui/modal_dialog.h"

namespace Ui {
class ReadyAutoConfigTemplate;
}

namespace braxcfg::dialogs {

class CReadyAutoConfig : public ui::ModalDialog {
    Q_OBJECT

public:
    explicit CReadyAutoConfig(QWidget* parent);
    ~CReadyAutoConfig() override;

    std::string m_intfName;  // the interface's VISA name

private:
    std::unique_ptr<Ui::ReadyAutoConfigTemplate> m_ui;
};

}  // namespace braxcfg::dialogs
