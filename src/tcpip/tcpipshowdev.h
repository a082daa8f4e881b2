#pragma once
// tcpipshowdev: the list of the manually configured LAN resources of one
// TCPIP interface, each with its optional alias. The user adds, edits,
// removes and tests resources; nothing is written until OK, which rewrites
// the interface's devices and commits the alias changes in one store
// transaction. Cancel writes nothing.
//
// The caller constructs it with its parent, calls Init() and then doModal().
#include <cstdint>
#include <memory>
#include <string>

#include "store/config_store.h"
#include "tcpip/alist.h"
#include "ui/list_box_model.h"
#include "ui/modal_dialog.h"

class QPushButton;

namespace Ui {
class TcpipShowDevTemplate;
}

namespace braxcfg::tcpip {

class tcpipshowdev : public ui::ModalDialog {
    Q_OBJECT

public:
    explicit tcpipshowdev(QWidget* parent);
    ~tcpipshowdev() override;

    // `config` (not owned) reads and writes the devices of `intfKey`
    // ("INTF<n>"); `visaIntfName` is its "VISAName" (TCPIP0), shown in the
    // heading and the prefix of new resources. `editable`: the user may
    // change the list. `callerFlag` is kept for the caller and never read.
    void Init(const store::ConfigStore* config, const std::string& intfKey, const std::string& visaIntfName,
              bool editable, std::uint32_t callerFlag);

    // Probes `resource` and tells the user the outcome in a box owned by
    // this list (the add/edit dialog's Test comes here too). 1 found, 0 not.
    int TestResource(std::string alias, std::string resource);

    // The text of entry `i`, empty when there is none.
    std::string entryText(int i) const;

    ui::ListBoxModel m_deviceList;  // "alias<TAB>resource string" per entry
    QPushButton* m_removeButton;
    QPushButton* m_addButton;
    std::string m_heading;
    const store::ConfigStore* m_config = nullptr;
    std::string m_visaIntfName;
    std::string m_intfKey;
    bool m_editable = false;
    std::uint32_t m_callerFlag = 0;
    AList m_aliases;  // pending alias changes; its entries belong to this dialog
    bool m_busy = false;

protected:
    void onInitDialog() override;
    void onOk() override;
    void showEvent(QShowEvent* event) override;

private:
    void onAddDevice();
    void onEditDevice();
    void onRemoveDevice();
    void onTestDevice();
    void onSelectionChange();
    void loadEntries();
    int runChild(ui::ModalDialog& child);
    void applyControls();
    std::vector<std::string> entries() const { return m_deviceList.items(); }

    std::unique_ptr<Ui::TcpipShowDevTemplate> m_ui;
};

}  // namespace braxcfg::tcpip
