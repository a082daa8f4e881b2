#pragma once
// CBraxcfgApp: the application object behind the seven exports. It owns
// the store operations (as a ConfigStore) and the per-interface workflow:
// the three predicates, silent set-up, editing and the end of a pass.
#include <string>

#include "entry/host_window.h"
#include "store/config_store.h"

namespace braxcfg::entry {

class CBraxcfgApp : public store::ConfigStore {
public:
    CBraxcfgApp();

    // Non-zero: no interface is editable. Nothing in the plug-in sets it.
    int m_bNoEdit;

    // 1 when the user may edit the interface's devices: the product's VISA
    // is present, editing is not switched off, the interface is valid and
    // its type is GPIB, VXI, GPIB-VXI or TCPIP.
    int IsVisaIntfEditable(const std::string& intf) const;
    // Nothing to prepare before the tool works on an interface.
    void DoVisaStartStuff(const std::string& intf);
    void SetupVisaIntf(HostWindow parent, const std::string& intf);
    // Opens the interface's device list when it is editable.
    void EditVisaIntf(HostWindow parent, const std::string& intf);
    void DoVisaEndStuff(HostWindow parent);

    // How the devices of an address-based interface are to be found: the
    // choice dialog, then the method chosen. The choice is read however the
    // dialog closed, so Escape carries out the preset, identify now. No
    // export calls it; a host runs it with the plug-in linked in.
    void ConfigureByChoice(HostWindow parent, const std::string& intf);
    // Set up with "VISAAutoConfig" 0, search once now, then the device list
    // without its own auto add.
    void ConfigureIdentifyNow(HostWindow parent, const std::string& intf);
    // Set up with "VISAAutoConfig" 1; nothing is shown.
    void ConfigureAtRunTime(HostWindow parent, const std::string& intf);
    // Set up with "VISAAutoConfig" 0, then the device list.
    void ConfigureManually(HostWindow parent, const std::string& intf);
    // The device list that suits the interface's type; `editable` and
    // `autoAddAllowed` are handed to it unchanged. The dialog writes its
    // own changes.
    void ShowDeviceList(HostWindow parent, const std::string& intf, int editable, int autoAddAllowed);
    // Asks whether to search the interface now and, on Continue, searches
    // it and records the devices found in the store.
    void RunAutoConfig(HostWindow parent, const std::string& intf);
};

}  // namespace braxcfg::entry
