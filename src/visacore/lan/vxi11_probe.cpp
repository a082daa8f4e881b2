// VXI-11: ask the portmapper for the core channel's port, open a link to
// the device name and close it again. Only the answer to create_link says
// whether the instrument behind the host has that device.
#include "visacore/lan/vxi11_link.h"

namespace braxcfg::visa::lan {

ViStatus probeVxi11(const SocketAddress& host, std::string_view device, const ProbeContext& context) {
    TcpLink link(context.deadline, context.cancel);
    std::int32_t linkId = 0;
    const ViStatus status = openVxi11Link(host, device, context, link, linkId);
    if (status == VI_SUCCESS) closeVxi11Link(link, linkId);
    return status;
}

}  // namespace braxcfg::visa::lan
