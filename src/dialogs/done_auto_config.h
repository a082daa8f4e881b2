#pragma once
// CDoneAutoConfig: runs the auto-configuration search while it opens and
// then shows the devices that were known before and the new ones (newest
// first). In store mode the known devices are the interface's device
// entries and new ones are written at once; in list mode both are the
// items of a CShowDevices, which writes nothing before its own OK.
//
// The caller constructs it with its window, calls InitStoreMode() or
// InitListMode(), and doModal(); the result needs no examination.
#include <memory>
#include <string>

#include "ui/list_box_model.h"
#include "ui/modal_dialog.h"

namespace Ui {
class DoneAutoConfigTemplate;
}

namespace braxcfg::store {
class ConfigStore;
}

namespace braxcfg::dialogs {

class CShowDevices;

class CDoneAutoConfig : public ui::ModalDialog {
    Q_OBJECT

public:
    explicit CDoneAutoConfig(QWidget* parent);
    ~CDoneAutoConfig() override;

    // Store mode: known and new devices are the interface's entries.
    void InitStoreMode(const store::ConfigStore& store, const std::string& intfName, const std::string& visaName);
    // List mode: known and new devices are the items of `deviceList`.
    void InitListMode(CShowDevices& deviceList, const std::string& intfName, const std::string& visaName);

    ui::ListBoxModel m_knownList;
    ui::ListBoxModel m_newList;
    std::string m_title;  // the interface's VISA name
    const store::ConfigStore* m_store = nullptr;
    CShowDevices* m_showDevices = nullptr;
    std::string m_intfName;

protected:
    void onInitDialog() override;

private:
    std::unique_ptr<Ui::DoneAutoConfigTemplate> m_ui;
};

}  // namespace braxcfg::dialogs
