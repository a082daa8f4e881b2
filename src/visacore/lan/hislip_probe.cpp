// HiSLIP: send Initialize on the synchronous channel and stop at the
// server's first answer.
#include "visacore/lan/hislip_session.h"

namespace braxcfg::visa::lan {

ViStatus probeHislip(const SocketAddress& host, std::string_view subAddress, std::uint16_t port,
                     const ProbeContext& context) {
    TcpLink link(context.deadline, context.cancel);
    std::uint16_t sessionId = 0;
    return openHislipSync(host, subAddress, port, link, sessionId);
}

}  // namespace braxcfg::visa::lan
