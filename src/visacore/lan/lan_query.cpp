#include "visacore/lan/lan_query.h"

#include <vector>

#include "visacore/lan/hislip_session.h"
#include "visacore/lan/lan_resource.h"
#include "visacore/lan/probe_step.h"
#include "visacore/lan/vxi11_link.h"

namespace braxcfg::visa::lan {
namespace {

// The longest line a SOCKET query collects.
constexpr std::size_t kMaxLine = 64 * 1024;

ViStatus queryVxi11(const SocketAddress& host, const LanResource& resource, const std::string& command,
                    const ProbeContext& context, std::string& answer) {
    TcpLink link(context.deadline, context.cancel);
    std::int32_t linkId = 0;
    const ViStatus opened = openVxi11Link(host, resource.deviceName, context, link, linkId);
    if (opened != VI_SUCCESS) return opened;
    const ViStatus status = vxi11Query(link, linkId, command, context, answer);
    closeVxi11Link(link, linkId);
    return status;
}

ViStatus queryHislip(const SocketAddress& host, const LanResource& resource, const std::string& command,
                     const ProbeContext& context, std::string& answer) {
    TcpLink sync(context.deadline, context.cancel), async(context.deadline, context.cancel);
    std::uint16_t sessionId = 0;
    const ViStatus opened = openHislipSync(host, resource.deviceName, resource.port, sync, sessionId);
    if (opened != VI_SUCCESS) return opened;
    return hislipQuery(host, resource.port, sessionId, sync, async, command, answer);
}

// A raw socket has no message boundaries: the command and the answer are
// each one line.
ViStatus querySocket(const SocketAddress& host, const LanResource& resource, const std::string& command,
                     const ProbeContext& context, std::string& answer) {
    TcpLink link(context.deadline, context.cancel);
    if (const NetStatus connected = link.connect(host.withPort(resource.port)); connected != NetStatus::Ok)
        return linkStatus(connected, VI_ERROR_CONN_LOST);
    const std::string line = command.ends_with('\n') ? command : command + "\n";
    if (const NetStatus sent = link.sendAll({reinterpret_cast<const std::uint8_t*>(line.data()), line.size()});
        sent != NetStatus::Ok)
        return linkStatus(sent, VI_ERROR_CONN_LOST);
    std::vector<std::uint8_t> received;
    for (;;) {
        const std::size_t before = received.size();
        if (const NetStatus got = link.receiveSome(received, 4096); got != NetStatus::Ok)
            return linkStatus(got, VI_ERROR_CONN_LOST);
        for (std::size_t i = before; i < received.size(); ++i) {
            if (received[i] == '\n') {
                answer.assign(received.begin(), received.begin() + static_cast<std::ptrdiff_t>(i));
                return VI_SUCCESS;
            }
        }
        if (received.size() > kMaxLine) return VI_ERROR_IO;
    }
}

void trimLineEnd(std::string& text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
}

}  // namespace

ViStatus queryLanResource(std::string_view resource, std::string_view command, const LanProbeOptions& options,
                          std::string& answer) {
    answer.clear();
    LanResource parsed;
    if (const ViStatus status = parseLanResource(resource, parsed); status != VI_SUCCESS) return status;
    const Deadline deadline(options.budget);
    SocketAddress host;
    if (const ViStatus status =
            resolveStatus(resolveHost(parsed.host, options.resolver, deadline, options.cancel, host));
        status != VI_SUCCESS)
        return status;
    const ProbeContext context{deadline, options.cancel, options.portmapperPort};
    const std::string text(command);
    ViStatus status = VI_ERROR_NSUP_OPER;
    switch (parsed.protocol) {
    case LanProtocol::Vxi11: status = queryVxi11(host, parsed, text + "\n", context, answer); break;
    case LanProtocol::Hislip: status = queryHislip(host, parsed, text + "\n", context, answer); break;
    case LanProtocol::Socket: status = querySocket(host, parsed, text, context, answer); break;
    }
    if (status != VI_SUCCESS) answer.clear();
    trimLineEnd(answer);
    return status;
}

}  // namespace braxcfg::visa::lan
