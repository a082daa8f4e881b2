// HiSLIP: send Initialize on the synchronous channel and stop at the
// server's first answer. A server turns an unknown sub-address away with a
// FatalError or simply by hanging up, so both read as "not there".
#include "visacore/lan/hislip_message.h"
#include "visacore/lan/probe_step.h"

namespace braxcfg::visa::lan {

ViStatus probeHislip(const SocketAddress& host, std::string_view subAddress, std::uint16_t port,
                     const ProbeContext& context) {
    TcpLink link(context.deadline, context.cancel);
    if (const NetStatus connected = link.connect(host.withPort(port)); connected != NetStatus::Ok)
        return linkStatus(connected, VI_ERROR_RSRC_NFOUND);
    if (const NetStatus sent = link.sendAll(hislip::initializeMessage(subAddress)); sent != NetStatus::Ok)
        return linkStatus(sent, VI_ERROR_RSRC_NFOUND);

    // The prologue first: a peer that is not a HiSLIP server is known by its
    // first two bytes, without waiting for a full header it may never send.
    std::vector<std::uint8_t> answer;
    if (const NetStatus got = link.receiveUntil(answer, 2); got != NetStatus::Ok)
        return linkStatus(got, VI_ERROR_RSRC_NFOUND);
    if (answer[0] != 'H' || answer[1] != 'S') return VI_ERROR_RSRC_NFOUND;
    if (const NetStatus got = link.receiveUntil(answer, hislip::kHeaderSize); got != NetStatus::Ok)
        return linkStatus(got, VI_ERROR_RSRC_NFOUND);

    hislip::Header header;
    hislip::parseHeader(answer, header);
    switch (header.type) {
    case hislip::kInitializeResponse: return VI_SUCCESS;
    case hislip::kFatalError:
        return header.control == hislip::kFatalMaxClients ? VI_ERROR_RSRC_BUSY : VI_ERROR_RSRC_NFOUND;
    default: return VI_ERROR_IO;
    }
}

}  // namespace braxcfg::visa::lan
