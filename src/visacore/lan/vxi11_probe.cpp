// VXI-11: ask the portmapper for the core channel's port, open a link to
// the device name and close it again. Only the answer to create_link says
// whether the instrument behind the host has that device.
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <random>

#include "visacore/lan/onc_rpc.h"
#include "visacore/lan/probe_step.h"

namespace braxcfg::visa::lan {
namespace {

// create_link error codes of the device core protocol.
constexpr std::int32_t kNoError = 0;
constexpr std::int32_t kSyntaxError = 1;
constexpr std::int32_t kDeviceNotAccessible = 3;
constexpr std::int32_t kOutOfResources = 9;
constexpr std::int32_t kDeviceLocked = 11;
constexpr std::int32_t kInvalidAddress = 21;

std::uint32_t nextXid() {
    static std::atomic<std::uint32_t> counter{[] {
        std::random_device seed;
        return static_cast<std::uint32_t>(seed());
    }()};
    return counter.fetch_add(1, std::memory_order_relaxed);
}

// One reply record and its decoded header; `reply.results` points into
// the assembler's record.
struct Answer {
    rpc::RecordAssembler assembler;
    rpc::Reply reply;
};

// Sends the call that `encode` builds for a fresh xid and reads the reply.
// VI_SUCCESS means an accepted reply to this very call arrived; its
// accept_stat is for the caller to judge.
template <typename Encode>
ViStatus exchange(TcpLink& link, Encode encode, Answer& answer) {
    const std::uint32_t xid = nextXid();
    if (const NetStatus sent = link.sendAll(encode(xid)); sent != NetStatus::Ok)
        return linkStatus(sent, VI_ERROR_CONN_LOST);
    std::vector<std::uint8_t> buffer;
    for (;;) {
        buffer.clear();
        if (const NetStatus got = link.receiveSome(buffer, 4096); got != NetStatus::Ok)
            return linkStatus(got, VI_ERROR_CONN_LOST);
        std::span<const std::uint8_t> input(buffer);
        const auto state = answer.assembler.feed(input);
        if (state == rpc::RecordAssembler::State::TooLarge) return VI_ERROR_IO;
        if (state == rpc::RecordAssembler::State::Complete) break;
    }
    answer.reply = rpc::parseReply(answer.assembler.record(), xid);
    return answer.reply.kind == rpc::ReplyKind::Accepted ? VI_SUCCESS : VI_ERROR_IO;
}

// An accepted reply that did not run the procedure: a server without the
// program has no such resource; anything else is a broken exchange.
ViStatus refusedCallStatus(std::uint32_t acceptStat) {
    return acceptStat == rpc::kProgramUnavailable ? VI_ERROR_RSRC_NFOUND : VI_ERROR_IO;
}

ViStatus createLinkStatus(std::int32_t error) {
    switch (error) {
    case kNoError: return VI_SUCCESS;
    // Servers differ in how they say "no such device": gateways answer an
    // unknown GPIB address with 21, others use 1 or 3.
    case kSyntaxError:
    case kDeviceNotAccessible:
    case kInvalidAddress: return VI_ERROR_RSRC_NFOUND;
    case kOutOfResources: return VI_ERROR_RSRC_BUSY;
    case kDeviceLocked: return VI_ERROR_RSRC_LOCKED;
    default: return VI_ERROR_IO;
    }
}

// The core channel's port from the portmapper, or a failure status.
ViStatus lookUpCorePort(const SocketAddress& host, const ProbeContext& context, std::uint16_t& port) {
    TcpLink link(context.deadline, context.cancel);
    if (const NetStatus connected = link.connect(host.withPort(context.portmapperPort)); connected != NetStatus::Ok)
        return linkStatus(connected, VI_ERROR_CONN_LOST);
    Answer answer;
    const auto getPort = [](std::uint32_t xid) {
        return rpc::getPortCall(xid, rpc::kDeviceCoreProgram, rpc::kDeviceCoreVersion);
    };
    if (const ViStatus status = exchange(link, getPort, answer); status != VI_SUCCESS) return status;
    if (answer.reply.acceptStat != rpc::kAcceptSuccess) return refusedCallStatus(answer.reply.acceptStat);
    std::uint32_t registered = 0;
    if (!rpc::parseGetPortResult(answer.reply.results, registered) || registered > 0xFFFF) return VI_ERROR_IO;
    // Port 0 is the portmapper's way of saying the program is not registered.
    if (registered == 0) return VI_ERROR_RSRC_NFOUND;
    port = static_cast<std::uint16_t>(registered);
    return VI_SUCCESS;
}

// Closing the link is a courtesy to the instrument; its outcome does not
// change what the probe found.
void destroyLink(TcpLink& link, std::int32_t linkId) {
    Answer answer;
    exchange(link, [linkId](std::uint32_t xid) { return rpc::destroyLinkCall(xid, linkId); }, answer);
}

}  // namespace

ViStatus probeVxi11(const SocketAddress& host, std::string_view device, const ProbeContext& context) {
    std::uint16_t corePort = 0;
    if (const ViStatus status = lookUpCorePort(host, context, corePort); status != VI_SUCCESS) return status;

    TcpLink link(context.deadline, context.cancel);
    // A registration whose server has gone refuses the connect: the host is
    // there, the resource is not.
    if (const NetStatus connected = link.connect(host.withPort(corePort)); connected != NetStatus::Ok)
        return linkStatus(connected, VI_ERROR_CONN_LOST);
    Answer answer;
    const auto clientId = static_cast<std::int32_t>(getpid() & 0x7FFFFFFF);
    const auto createLink = [&](std::uint32_t xid) { return rpc::createLinkCall(xid, clientId, device); };
    if (const ViStatus status = exchange(link, createLink, answer); status != VI_SUCCESS) return status;
    if (answer.reply.acceptStat != rpc::kAcceptSuccess) return refusedCallStatus(answer.reply.acceptStat);
    rpc::CreateLinkResult result;
    if (!rpc::parseCreateLinkResult(answer.reply.results, result)) return VI_ERROR_IO;
    const ViStatus status = createLinkStatus(result.error);
    if (status == VI_SUCCESS) destroyLink(link, result.linkId);
    return status;
}

}  // namespace braxcfg::visa::lan
