#include "tcpip/tcpipnewdev_logic.h"

namespace braxcfg::tcpip {
namespace {

std::string stripBlanks(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

ComposedResource composeResource(const std::string& prefix, const std::string& host, const std::string& device,
                                 const std::string& previousClass) {
    ComposedResource composed;
    composed.rsrcClass = previousClass;
    if (host.empty()) return composed;
    std::string deviceCopy;
    if (device.empty()) {
        composed.rsrcClass = "INSTR";
        deviceCopy = "inst0";
    } else {
        deviceCopy = stripBlanks(device);
        const bool port = !deviceCopy.empty() && deviceCopy[0] >= '0' && deviceCopy[0] <= '9';
        composed.rsrcClass = port ? "SOCKET" : "INSTR";
    }
    composed.bareResource = prefix + stripBlanks(host) + "::" + deviceCopy;
    composed.resource = composed.bareResource + "::" + composed.rsrcClass;
    return composed;
}

NewDevControlStates newDevControlStates(const std::string& host, bool testing) {
    const bool hostUsable = !host.empty() && host.find("::") == std::string::npos;
    NewDevControlStates states;
    states.okEnabled = states.testEnabled = states.deviceEnabled = hostUsable && !testing;
    states.cancelEnabled = !testing;
    return states;
}

std::string newDevCaption(const std::string& host) {
    return host.empty() ? "Add a TCPIP resource" : "Edit a TCPIP resource";
}

}  // namespace braxcfg::tcpip
