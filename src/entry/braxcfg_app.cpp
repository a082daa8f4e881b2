#include "entry/braxcfg_app.h"

#include "platform/product_settings.h"
#include "store/interface_setup.h"
#include "visacore/visa_types.h"

namespace braxcfg::entry {

CBraxcfgApp::CBraxcfgApp() : m_bNoEdit(0) {}

int CBraxcfgApp::IsVisaIntfEditable(const std::string& intf) const {
    if (platform::visaPresent() == 0) return 0;
    if (m_bNoEdit != 0) return 0;
    if (!IsValidVisaIntf(intf)) return 0;
    switch (GetIntfType(intf)) {
        case visa::VI_INTF_GPIB:
        case visa::VI_INTF_VXI:
        case visa::VI_INTF_GPIB_VXI:
        case visa::VI_INTF_TCPIP:
            return 1;
        default:
            return 0;
    }
}

void CBraxcfgApp::DoVisaStartStuff(const std::string&) {}

// Set-up shows nothing, so the host's window is not needed.
void CBraxcfgApp::SetupVisaIntf(HostWindow, const std::string& intf) { store::setupVisaIntf(*this, intf); }

void CBraxcfgApp::ConfigureAtRunTime(HostWindow, const std::string& intf) {
    store::configureAtRunTime(*this, intf);
}

// The device list dialogs arrive with their own work; until then editing
// only brings the VISA information block up to date.
void CBraxcfgApp::EditVisaIntf(HostWindow, const std::string&) { WriteVisaInfoDefaults(); }

void CBraxcfgApp::DoVisaEndStuff(HostWindow) { store::doVisaEndStuff(*this); }

}  // namespace braxcfg::entry
