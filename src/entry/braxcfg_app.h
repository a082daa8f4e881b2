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
    void EditVisaIntf(HostWindow parent, const std::string& intf);
    // Choice "identify devices at run time": set up with "VISAAutoConfig" 1.
    void ConfigureAtRunTime(HostWindow parent, const std::string& intf);
    void DoVisaEndStuff(HostWindow parent);
};

}  // namespace braxcfg::entry
