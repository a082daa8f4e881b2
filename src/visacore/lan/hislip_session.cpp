// A server turns an unknown sub-address away with a FatalError or simply by
// hanging up, so both read as "not there".
#include "visacore/lan/hislip_session.h"

#include <vector>

#include "visacore/lan/hislip_message.h"

namespace braxcfg::visa::lan {
namespace {

// The longest message payload a query accepts; an identification is a line.
constexpr std::uint64_t kMaxPayload = 64 * 1024;

std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Reads one whole message: its header and payload.
ViStatus receiveMessage(TcpLink& link, hislip::Header& header, std::vector<std::uint8_t>& payload) {
    std::vector<std::uint8_t> bytes;
    if (const NetStatus got = link.receiveUntil(bytes, hislip::kHeaderSize); got != NetStatus::Ok)
        return linkStatus(got, VI_ERROR_CONN_LOST);
    if (!hislip::parseHeader(bytes, header) || header.payloadLength > kMaxPayload) return VI_ERROR_IO;
    payload.clear();
    if (const NetStatus got = link.receiveUntil(payload, header.payloadLength); got != NetStatus::Ok)
        return linkStatus(got, VI_ERROR_CONN_LOST);
    return VI_SUCCESS;
}

}  // namespace

ViStatus openHislipSync(const SocketAddress& host, std::string_view subAddress, std::uint16_t port, TcpLink& sync,
                        std::uint16_t& sessionId) {
    if (const NetStatus connected = sync.connect(host.withPort(port)); connected != NetStatus::Ok)
        return linkStatus(connected, VI_ERROR_RSRC_NFOUND);
    if (const NetStatus sent = sync.sendAll(hislip::initializeMessage(subAddress)); sent != NetStatus::Ok)
        return linkStatus(sent, VI_ERROR_RSRC_NFOUND);

    // The prologue first: a peer that is not a HiSLIP server is known by its
    // first two bytes, without waiting for a full header it may never send.
    std::vector<std::uint8_t> answer;
    if (const NetStatus got = sync.receiveUntil(answer, 2); got != NetStatus::Ok)
        return linkStatus(got, VI_ERROR_RSRC_NFOUND);
    if (answer[0] != 'H' || answer[1] != 'S') return VI_ERROR_RSRC_NFOUND;
    if (const NetStatus got = sync.receiveUntil(answer, hislip::kHeaderSize); got != NetStatus::Ok)
        return linkStatus(got, VI_ERROR_RSRC_NFOUND);

    hislip::Header header;
    hislip::parseHeader(answer, header);
    switch (header.type) {
    case hislip::kInitializeResponse:
        sessionId = static_cast<std::uint16_t>(header.parameter & 0xFFFF);
        return VI_SUCCESS;
    case hislip::kFatalError:
        return header.control == hislip::kFatalMaxClients ? VI_ERROR_RSRC_BUSY : VI_ERROR_RSRC_NFOUND;
    default: return VI_ERROR_IO;
    }
}

ViStatus hislipQuery(const SocketAddress& host, std::uint16_t port, std::uint16_t sessionId, TcpLink& sync,
                     TcpLink& async, std::string_view command, std::string& answer) {
    if (const NetStatus connected = async.connect(host.withPort(port)); connected != NetStatus::Ok)
        return linkStatus(connected, VI_ERROR_CONN_LOST);
    if (const NetStatus sent = async.sendAll(hislip::message(hislip::kAsyncInitialize, 0, sessionId));
        sent != NetStatus::Ok)
        return linkStatus(sent, VI_ERROR_CONN_LOST);
    hislip::Header header;
    std::vector<std::uint8_t> payload;
    if (const ViStatus status = receiveMessage(async, header, payload); status != VI_SUCCESS) return status;
    if (header.type != hislip::kAsyncInitializeResponse) return VI_ERROR_IO;

    const std::uint32_t messageId = hislip::kFirstMessageId;
    if (const NetStatus sent = sync.sendAll(hislip::message(hislip::kDataEnd, 0, messageId, bytesOf(command)));
        sent != NetStatus::Ok)
        return linkStatus(sent, VI_ERROR_CONN_LOST);
    answer.clear();
    for (;;) {
        if (const ViStatus status = receiveMessage(sync, header, payload); status != VI_SUCCESS) return status;
        if (header.type != hislip::kData && header.type != hislip::kDataEnd) return VI_ERROR_IO;
        answer.append(payload.begin(), payload.end());
        if (header.type == hislip::kDataEnd) return VI_SUCCESS;
        if (answer.size() > kMaxPayload) return VI_ERROR_IO;
    }
}

}  // namespace braxcfg::visa::lan
