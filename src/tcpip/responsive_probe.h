#pragma once
// Runs the resource probe on a thread of its own while the calling thread
// keeps the windows painting: a local event loop serves paint, timer and
// window-system events, and holds back what a person does. Clicks and keys
// are dropped (the dialogs' buttons are disabled anyway, and a list click
// must not re-enable them); closing a window, or Escape in it, cancels the
// probe and the window is closed once the probe has returned.
#include <QPointer>
#include <QWidget>
#include <string>
#include <vector>

#include "visacore/visa_library.h"

namespace braxcfg::tcpip {

struct ResponsiveProbeResult {
    visa::ViStatus status = visa::VI_SUCCESS;
    // The windows a person asked to close while the probe ran, in order.
    std::vector<QPointer<QWidget>> closeRequests;
};

// Probes `resource` through the default resource manager session `rm`.
// Without a QApplication (a headless host) the probe runs on the calling
// thread. `control.cancel` is not used: the run has its own token.
ResponsiveProbeResult probeWhileResponsive(visa::ViSession rm, const std::string& resource,
                                           visa::ProbeControl control);

}  // namespace braxcfg::tcpip
