#pragma once
// tcpipnewdev: the add/edit dialog of one LAN resource. The user types a
// machine name or IP address, a device name or port and an optional alias;
// the dialog shows the resource string they make as they type, and Test
// checks it on the spot through the owning list's resource test.
//
// Before doModal() the caller sets m_prefix ("TCPIP0::"), and for an edit
// m_host, m_device and m_alias. After kIdOk it reads m_alias, m_bareResource
// and m_rsrcClass (m_resource is m_bareResource + "::" + m_rsrcClass).
#include <memory>
#include <string>

#include "ui/modal_dialog.h"

class QPushButton;

namespace Ui {
class TcpipNewDevTemplate;
}

namespace braxcfg::tcpip {

class tcpipshowdev;

class tcpipnewdev : public ui::ModalDialog {
    Q_OBJECT

public:
    // `owner` runs the resource test and owns its message; null: Test does
    // nothing. It is also the dialog's parent.
    explicit tcpipnewdev(tcpipshowdev* owner);
    // A dialog whose parent is not a resource list (the tool's opener):
    // `owner` may still be given for Test.
    tcpipnewdev(tcpipshowdev* owner, QWidget* parent);
    ~tcpipnewdev() override;

    tcpipshowdev* m_owner;
    std::string m_prefix;        // VISA interface name + "::"
    std::string m_device;        // device name or port, as typed
    std::string m_resource;      // the full resource string shown
    std::string m_host;          // machine name or IP address, as typed
    std::string m_rsrcClass;     // "INSTR" or "SOCKET"
    std::string m_alias;         // optional
    std::string m_bareResource;  // m_resource without "::" and class
    bool m_testing = false;      // a resource test runs

protected:
    void onInitDialog() override;

private:
    void onHostUpdate();
    void onDeviceUpdate();
    void onTest();
    void rebuild();
    void applyControls();

    std::unique_ptr<Ui::TcpipNewDevTemplate> m_ui;
    QPushButton* m_okButton;
};

}  // namespace braxcfg::tcpip
