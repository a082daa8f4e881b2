#include "visacore/lan/lan_probe.h"

#include <cstdio>
#include <string>

#include "platform/debug_output.h"
#include "visacore/lan/lan_resource.h"
#include "visacore/lan/probe_step.h"

namespace braxcfg::visa::lan {
ViStatus resolveStatus(ResolveOutcome outcome) {
    switch (outcome) {
    case ResolveOutcome::Resolved: return VI_SUCCESS;
    case ResolveOutcome::Unknown: return VI_ERROR_MACHINE_NAVAIL;
    case ResolveOutcome::TimedOut: return VI_ERROR_TMO;
    case ResolveOutcome::Cancelled: return VI_ERROR_ABORT;
    case ResolveOutcome::Failed: break;
    }
    return VI_ERROR_SYSTEM_ERROR;
}

namespace {

ViStatus probeParsed(const LanResource& resource, const LanProbeOptions& options) {
    const Deadline deadline(options.budget);
    SocketAddress host;
    if (const ViStatus status = resolveStatus(resolveHost(resource.host, options.resolver, deadline, options.cancel,
                                                          host));
        status != VI_SUCCESS)
        return status;
    const ProbeContext context{deadline, options.cancel, options.portmapperPort};
    switch (resource.protocol) {
    case LanProtocol::Vxi11: return probeVxi11(host, resource.deviceName, context);
    case LanProtocol::Hislip: return probeHislip(host, resource.deviceName, resource.port, context);
    case LanProtocol::Socket: return probeSocket(host, resource.port, context);
    }
    return VI_ERROR_NSUP_OPER;
}

}  // namespace

ViStatus linkStatus(NetStatus status, ViStatus closedStatus) {
    switch (status) {
    case NetStatus::Ok: return VI_SUCCESS;
    case NetStatus::Refused: return VI_ERROR_RSRC_NFOUND;
    case NetStatus::Unreachable: return VI_ERROR_MACHINE_NAVAIL;
    case NetStatus::TimedOut: return VI_ERROR_TMO;
    case NetStatus::Cancelled: return VI_ERROR_ABORT;
    case NetStatus::Closed: return closedStatus;
    case NetStatus::Failed: break;
    }
    return VI_ERROR_IO;
}

// SOCKET: the connection itself is the answer; nothing is sent, since any
// bytes could be taken as a command by the instrument.
ViStatus probeSocket(const SocketAddress& host, std::uint16_t port, const ProbeContext& context) {
    TcpLink link(context.deadline, context.cancel);
    return linkStatus(link.connect(host.withPort(port)), VI_ERROR_CONN_LOST);
}

ViStatus probeLanResource(std::string_view resource, const LanProbeOptions& options) {
    LanResource parsed;
    ViStatus status = parseLanResource(resource, parsed);
    if (status == VI_SUCCESS) status = probeParsed(parsed, options);
    char line[64];
    std::snprintf(line, sizeof line, "resource probe: 0x%08X for ", static_cast<unsigned>(status));
    platform::debugOutput(line + std::string(resource) + "\n");
    return status;
}

}  // namespace braxcfg::visa::lan
