#include "tcpip/resource_probe.h"

#include "tcpip/responsive_probe.h"
#include "visacore/visa_api.h"

namespace braxcfg::tcpip {
namespace {

std::string wording(const std::string& alias, const std::string& resource, const char* outcome) {
    if (alias.empty()) return "The resource '" + resource + "' " + outcome + ".";
    return "The resource '" + alias + "' " + outcome + ".\n\n(" + resource + ")";
}

}  // namespace

ResourceTestMessage resourceTestMessage(visa::ViStatus probeStatus, std::string alias, const std::string& resource) {
    ResourceTestMessage message;
    if (probeStatus < visa::VI_SUCCESS) {
        // A resource that is not there is named by its resource string only:
        // the alias is dropped before the wording is chosen.
        alias.clear();
        message.text = wording(alias, resource, "was not found");
        if (probeStatus == visa::VI_ERROR_RSRC_NFOUND) {
            message.caption = "Host Located But Resource Not Found";
            message.icon = ui::MessageIcon::Question;
        } else {
            message.caption = "Resource Not Found";
            message.icon = ui::MessageIcon::Stop;
        }
        message.result = 0;
    } else {
        message.text = wording(alias, resource, "was found");
        message.caption = "Resource Found";
        message.icon = ui::MessageIcon::Information;
        message.result = 1;
    }
    return message;
}

int TestResource(QWidget* owner, std::string alias, std::string resource, const visa::ProbeControl& control,
                 visa::ViStatus* probeStatus) {
    visa::ViSession rm = visa::VI_NULL;
    if (visa::viOpenDefaultRM(&rm) < visa::VI_SUCCESS) return 0;
    const ResponsiveProbeResult probe = probeWhileResponsive(rm, resource, control);
    if (probeStatus != nullptr) *probeStatus = probe.status;
    const ResourceTestMessage message = resourceTestMessage(probe.status, std::move(alias), resource);
    // A window closed during the test has been left by the person; no box
    // asks them to read an outcome they cancelled.
    if (probe.closeRequests.empty()) ui::messageBox(owner, message.text, message.caption, message.icon);
    visa::viClose(rm);
    for (const QPointer<QWidget>& window : probe.closeRequests)
        if (window) window->close();
    return probe.closeRequests.empty() ? message.result : 0;
}

}  // namespace braxcfg::tcpip
