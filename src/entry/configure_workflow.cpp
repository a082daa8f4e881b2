// The dialog-opening part of the interface workflow: the configuration
// choice and its three methods, the device lists and the auto
// configuration. Each method that opens dialogs wraps the host's window
// for their owner on its own stack; a process where no window can be shown
// opens nothing.
#include "dialogs/config_choice.h"
#include "dialogs/ready_auto_config.h"
#include "entry/braxcfg_app.h"
#include "store/interface_setup.h"
#include "ui/dialog_ids.h"
#include "ui/host_owner.h"

namespace braxcfg::entry {

void CBraxcfgApp::ConfigureByChoice(HostWindow parent, const std::string& intf) {
    if (!ui::ensureApplication()) return;
    const ui::HostOwner owner(parent.nativeHandle());
    dialogs::CConfigChoice choice(owner.widget());
    choice.m_intfName = GetVisaName(intf);
    choice.m_choice = 0;
    // The result is not looked at: Cancel or Escape leave the preset.
    choice.doModal();
    switch (choice.m_choice) {
        case 0:
            ConfigureIdentifyNow(parent, intf);
            break;
        case 1:
            ConfigureAtRunTime(parent, intf);
            break;
        case 2:
            ConfigureManually(parent, intf);
            break;
        default:
            break;
    }
}

void CBraxcfgApp::ConfigureIdentifyNow(HostWindow parent, const std::string& intf) {
    SetupIntfEntries(intf, 0);
    RunAutoConfig(parent, intf);
    ShowDeviceList(parent, intf, 1, 0);
}

void CBraxcfgApp::ConfigureAtRunTime(HostWindow, const std::string& intf) { store::configureAtRunTime(*this, intf); }

void CBraxcfgApp::ConfigureManually(HostWindow parent, const std::string& intf) {
    SetupIntfEntries(intf, 0);
    ShowDeviceList(parent, intf, 1, 1);
}

// NOT DONE: the device lists (CShowDevices, tcpipshowdev) are not in this
// tree yet, so no list opens.
void CBraxcfgApp::ShowDeviceList(HostWindow, const std::string&, int, int) {}

void CBraxcfgApp::RunAutoConfig(HostWindow parent, const std::string& intf) {
    if (!ui::ensureApplication()) return;
    const ui::HostOwner owner(parent.nativeHandle());
    dialogs::CReadyAutoConfig ready(owner.widget());
    ready.m_intfName = GetVisaName(intf);
    if (ready.doModal() != ui::kIdOk) return;
    // NOT DONE: the result dialog (CDoneAutoConfig), which searches and
    // records what it finds, is not in this tree yet.
}

}  // namespace braxcfg::entry
