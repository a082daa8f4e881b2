// The dialog-opening part of the interface workflow: the configuration
// choice and its three methods, the device lists and the auto
// configuration. Each method that opens dialogs wraps the host's window
// for their owner on its own stack; a process where no window can be shown
// opens nothing.
#include "dialogs/config_choice.h"
#include "dialogs/done_auto_config.h"
#include "dialogs/ready_auto_config.h"
#include "dialogs/show_devices.h"
#include "entry/braxcfg_app.h"
#include "store/interface_setup.h"
#include "tcpip/tcpipshowdev.h"
#include "ui/dialog_ids.h"
#include "ui/host_owner.h"
#include "visacore/visa_types.h"

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

void CBraxcfgApp::ShowDeviceList(HostWindow parent, const std::string& intf, int editable, int autoAddAllowed) {
    if (!ui::ensureApplication()) return;
    const ui::HostOwner owner(parent.nativeHandle());
    // Both lists exist before the type decides which one is shown.
    dialogs::CShowDevices devices(owner.widget());
    tcpip::tcpipshowdev lanDevices(owner.widget());
    std::string rsrcType;
    if (GetIntfType(intf, rsrcType) == visa::VI_INTF_TCPIP) {
        lanDevices.Init(this, intf, GetVisaName(intf), editable != 0, autoAddAllowed);
        lanDevices.doModal();
        return;
    }
    devices.Init(*this, intf, GetVisaName(intf), rsrcType, editable != 0, autoAddAllowed != 0);
    // The result is not used: OK has written the list itself.
    devices.doModal();
}

void CBraxcfgApp::RunAutoConfig(HostWindow parent, const std::string& intf) {
    if (!ui::ensureApplication()) return;
    const ui::HostOwner owner(parent.nativeHandle());
    dialogs::CReadyAutoConfig ready(owner.widget());
    dialogs::CDoneAutoConfig done(owner.widget());
    ready.m_intfName = GetVisaName(intf);
    if (ready.doModal() != ui::kIdOk) return;
    // The search runs while the result dialog opens; what it finds is
    // written to the store at once.
    done.InitStoreMode(*this, intf, GetVisaName(intf));
    done.doModal();
}

}  // namespace braxcfg::entry
