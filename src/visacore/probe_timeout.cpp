#include "visacore/probe_timeout.h"

#include "platform/product_settings.h"

namespace braxcfg::visa {

std::chrono::milliseconds clampProbeTimeout(long long milliseconds) {
    if (milliseconds <= 0) return kDefaultProbeTimeout;
    if (milliseconds > kMaxProbeTimeout.count()) return kMaxProbeTimeout;
    return std::chrono::milliseconds(milliseconds);
}

std::chrono::milliseconds configuredProbeTimeout() {
    return clampProbeTimeout(platform::readProductFlag(kProbeTimeoutValue, kDefaultProbeTimeout.count()));
}

std::chrono::milliseconds effectiveProbeTimeout(std::chrono::milliseconds requested) {
    return requested.count() > 0 ? clampProbeTimeout(requested.count()) : configuredProbeTimeout();
}

}  // namespace braxcfg::visa
