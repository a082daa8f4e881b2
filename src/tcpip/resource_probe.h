#pragma once
// The resource test behind the TCPIP dialogs' Test buttons: locates a LAN
// resource through the VISA core and tells the user in a message box
// whether it was found, not found, or whether its host answered without it.
#include <string>

#include "ui/message_box.h"
#include "visacore/visa_library.h"

class QWidget;

namespace braxcfg::tcpip {

struct ResourceTestMessage {
    std::string text;
    std::string caption;
    ui::MessageIcon icon = ui::MessageIcon::None;
    int result = 0;  // 1 found, 0 not found
};

// What the test says for the probe's status: negative is "not found"
// (VI_ERROR_RSRC_NFOUND: the host answered without the resource), anything
// else "found". The alias is named only when the resource was found.
ResourceTestMessage resourceTestMessage(visa::ViStatus probeStatus, std::string alias, const std::string& resource);

// Opens the default resource manager, probes `resource`, shows the message
// owned by `owner`, closes the session and returns the message's result.
// When the resource manager cannot be opened it returns 0 and shows nothing.
// The probe runs while the windows keep painting (probeWhileResponsive); a
// window closed meanwhile cancels it, gets no message, and is closed before
// this returns 0. `probeStatus`, when given, receives the probe's status,
// so a caller can say why a resource was not found.
int TestResource(QWidget* owner, std::string alias, std::string resource, const visa::ProbeControl& control = {},
                 visa::ViStatus* probeStatus = nullptr);

}  // namespace braxcfg::tcpip
