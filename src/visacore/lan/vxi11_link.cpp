// The core channel's calls. Each call waits for the reply record to this
// very xid; what the reply says is for the caller to judge.
#include "visacore/lan/vxi11_link.h"

#include <unistd.h>

#include <atomic>
#include <functional>
#include <random>
#include <vector>

#include "visacore/lan/onc_rpc.h"

namespace braxcfg::visa::lan {
namespace {

// The longest answer a query collects; an identification is a line.
constexpr std::size_t kMaxAnswer = 64 * 1024;

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
    rpc::RecordAssembler assembler{kMaxAnswer + 1024};
    rpc::Reply reply;
};

using Encoder = std::function<std::vector<std::uint8_t>(std::uint32_t xid)>;

// Sends the call that `encode` builds for a fresh xid and reads the reply.
// VI_SUCCESS means an accepted reply to this very call arrived.
ViStatus exchange(TcpLink& link, const Encoder& encode, Answer& answer) {
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

// An exchange whose procedure ran: VI_SUCCESS with `answer.reply.results`.
// A server without the program has no such resource; any other refusal is
// a broken exchange.
ViStatus call(TcpLink& link, const Encoder& encode, Answer& answer) {
    if (const ViStatus status = exchange(link, encode, answer); status != VI_SUCCESS) return status;
    switch (answer.reply.acceptStat) {
    case rpc::kAcceptSuccess: return VI_SUCCESS;
    case rpc::kProgramUnavailable: return VI_ERROR_RSRC_NFOUND;
    default: return VI_ERROR_IO;
    }
}

ViStatus createLinkStatus(std::int32_t error) {
    switch (error) {
    case rpc::kNoError: return VI_SUCCESS;
    // Servers differ in how they say "no such device": gateways answer an
    // unknown GPIB address with 21, others use 1 or 3.
    case rpc::kSyntaxError:
    case rpc::kDeviceNotAccessible:
    case rpc::kInvalidAddress: return VI_ERROR_RSRC_NFOUND;
    case rpc::kOutOfResources: return VI_ERROR_RSRC_BUSY;
    case rpc::kDeviceLocked: return VI_ERROR_RSRC_LOCKED;
    default: return VI_ERROR_IO;
    }
}

ViStatus transferStatus(std::int32_t error) {
    if (error == rpc::kNoError) return VI_SUCCESS;
    return error == rpc::kIoTimeout ? VI_ERROR_TMO : VI_ERROR_IO;
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
    if (const ViStatus status = call(link, getPort, answer); status != VI_SUCCESS) return status;
    std::uint32_t registered = 0;
    if (!rpc::parseGetPortResult(answer.reply.results, registered) || registered > 0xFFFF) return VI_ERROR_IO;
    // Port 0 is the portmapper's way of saying the program is not registered.
    if (registered == 0) return VI_ERROR_RSRC_NFOUND;
    port = static_cast<std::uint16_t>(registered);
    return VI_SUCCESS;
}

// The instrument's own time limit for one transfer: what is left of ours.
std::uint32_t ioTimeout(const ProbeContext& context) {
    return static_cast<std::uint32_t>(context.deadline.pollTimeoutMs());
}

}  // namespace

ViStatus openVxi11Link(const SocketAddress& host, std::string_view device, const ProbeContext& context,
                       TcpLink& link, std::int32_t& linkId) {
    std::uint16_t corePort = 0;
    if (const ViStatus status = lookUpCorePort(host, context, corePort); status != VI_SUCCESS) return status;
    // A registration whose server has gone refuses the connect: the host is
    // there, the resource is not.
    if (const NetStatus connected = link.connect(host.withPort(corePort)); connected != NetStatus::Ok)
        return linkStatus(connected, VI_ERROR_CONN_LOST);
    Answer answer;
    const auto clientId = static_cast<std::int32_t>(getpid() & 0x7FFFFFFF);
    const auto createLink = [&](std::uint32_t xid) { return rpc::createLinkCall(xid, clientId, device); };
    if (const ViStatus status = call(link, createLink, answer); status != VI_SUCCESS) return status;
    rpc::CreateLinkResult result;
    if (!rpc::parseCreateLinkResult(answer.reply.results, result)) return VI_ERROR_IO;
    const ViStatus status = createLinkStatus(result.error);
    if (status == VI_SUCCESS) linkId = result.linkId;
    return status;
}

ViStatus vxi11Query(TcpLink& link, std::int32_t linkId, std::string_view command, const ProbeContext& context,
                    std::string& answer) {
    const std::span<const std::uint8_t> bytes(reinterpret_cast<const std::uint8_t*>(command.data()), command.size());
    Answer written;
    const auto write = [&](std::uint32_t xid) { return rpc::deviceWriteCall(xid, linkId, ioTimeout(context), bytes); };
    if (const ViStatus status = call(link, write, written); status != VI_SUCCESS) return status;
    std::int32_t error = 0;
    std::uint32_t size = 0;
    if (!rpc::parseDeviceWriteResult(written.reply.results, error, size)) return VI_ERROR_IO;
    if (const ViStatus status = transferStatus(error); status != VI_SUCCESS) return status;

    answer.clear();
    for (;;) {
        Answer read;
        const auto request = [&](std::uint32_t xid) {
            return rpc::deviceReadCall(xid, linkId, static_cast<std::uint32_t>(kMaxAnswer), ioTimeout(context));
        };
        if (const ViStatus status = call(link, request, read); status != VI_SUCCESS) return status;
        rpc::DeviceReadResult result;
        if (!rpc::parseDeviceReadResult(read.reply.results, result)) return VI_ERROR_IO;
        if (const ViStatus status = transferStatus(result.error); status != VI_SUCCESS) return status;
        answer.append(result.data.begin(), result.data.end());
        if ((result.reason & rpc::kReasonEnd) != 0) return VI_SUCCESS;
        if (answer.size() >= kMaxAnswer || result.data.empty()) return VI_ERROR_IO;
    }
}

void closeVxi11Link(TcpLink& link, std::int32_t linkId) {
    Answer answer;
    exchange(link, [linkId](std::uint32_t xid) { return rpc::destroyLinkCall(xid, linkId); }, answer);
}

}  // namespace braxcfg::visa::lan
