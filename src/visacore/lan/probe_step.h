#pragma once
// What every protocol step of a probe shares: the deadline, the cancel
// token, and how a connection's fate reads as a VISA status.
#include <cstdint>
#include <string_view>

#include "visacore/cancel_token.h"
#include "visacore/lan/socket_address.h"
#include "visacore/lan/tcp_link.h"
#include "visacore/lan/resolver.h"
#include "visacore/visa_types.h"

namespace braxcfg::visa::lan {

struct ProbeContext {
    const Deadline& deadline;
    const CancelToken* cancel;
    std::uint16_t portmapperPort;
};

// The status for a connection that did not go as planned. A refused
// connect means the host answered, so the resource is what is missing;
// `closedStatus` is what the protocol makes of a peer that hung up.
ViStatus linkStatus(NetStatus status, ViStatus closedStatus);

// The status for a host name that did not resolve to an address.
ViStatus resolveStatus(ResolveOutcome outcome);

ViStatus probeVxi11(const SocketAddress& host, std::string_view device, const ProbeContext& context);
ViStatus probeHislip(const SocketAddress& host, std::string_view subAddress, std::uint16_t port,
                     const ProbeContext& context);
ViStatus probeSocket(const SocketAddress& host, std::uint16_t port, const ProbeContext& context);

}  // namespace braxcfg::visa::lan
