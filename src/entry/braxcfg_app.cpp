#include "entry/braxcfg_app.h"

#include "platform/product_settings.h"

namespace braxcfg::entry {

CBraxcfgApp::CBraxcfgApp() : m_bNoEdit(0) {}

CBraxcfgApp::~CBraxcfgApp() = default;

int CBraxcfgApp::IsVisaIntfEditable(const std::string& intf) const {
    if (platform::visaPresent() == 0) return 0;
    if (m_bNoEdit != 0) return 0;
    if (!IsValidVisaIntf(intf)) return 0;
    switch (GetIntfType(intf)) {
        case store::kIntfGpib:
        case store::kIntfVxi:
        case store::kIntfGpibVxi:
        case store::kIntfTcpip:
            return 1;
        default:
            return 0;
    }
}

void CBraxcfgApp::DoVisaStartStuff(const std::string&) {}

void CBraxcfgApp::SetupVisaIntf(HostWindow, const std::string&) {}

void CBraxcfgApp::EditVisaIntf(HostWindow, const std::string&) {}

void CBraxcfgApp::DoVisaEndStuff(HostWindow) {}

}  // namespace braxcfg::entry
