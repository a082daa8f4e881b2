#include "visacore/lan/onc_rpc.h"

#include <algorithm>

namespace braxcfg::visa::lan::rpc {
namespace {

constexpr std::uint32_t kCall = 0;
constexpr std::uint32_t kReply = 1;
constexpr std::uint32_t kRpcVersion = 2;
constexpr std::uint32_t kMsgAccepted = 0;
constexpr std::uint32_t kMsgDenied = 1;
constexpr std::uint32_t kAuthNone = 0;
// RFC 5531 caps an authenticator's body at 400 bytes.
constexpr std::size_t kMaxAuthBody = 400;

void callHeader(XdrWriter& writer, std::uint32_t xid, std::uint32_t program, std::uint32_t version,
                std::uint32_t procedure) {
    for (std::uint32_t word : {xid, kCall, kRpcVersion, program, version, procedure})
        writer.u32(word);
    for (int i = 0; i < 2; ++i) {  // credential, then verifier: AUTH_NONE, empty
        writer.u32(kAuthNone);
        writer.u32(0);
    }
}

// The record: one last fragment holding everything written.
std::vector<std::uint8_t> record(const XdrWriter& body) {
    XdrWriter framed;
    framed.u32(kLastFragment | static_cast<std::uint32_t>(body.bytes().size()));
    framed.bytes().insert(framed.bytes().end(), body.bytes().begin(), body.bytes().end());
    return std::move(framed.bytes());
}

}  // namespace

void XdrWriter::u32(std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes_.push_back(static_cast<std::uint8_t>(value >> shift));
}

void XdrWriter::opaque(std::span<const std::uint8_t> bytes) {
    u32(static_cast<std::uint32_t>(bytes.size()));
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    bytes_.resize((bytes_.size() + 3) & ~std::size_t{3}, 0);
}

void XdrWriter::string(std::string_view text) {
    opaque({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

std::vector<std::uint8_t> getPortCall(std::uint32_t xid, std::uint32_t program, std::uint32_t version) {
    XdrWriter writer;
    callHeader(writer, xid, kPortmapProgram, kPortmapVersion, kPortmapGetPort);
    for (std::uint32_t word : {program, version, kProtocolTcp, 0u})
        writer.u32(word);
    return record(writer);
}

std::vector<std::uint8_t> createLinkCall(std::uint32_t xid, std::int32_t clientId, std::string_view device) {
    XdrWriter writer;
    callHeader(writer, xid, kDeviceCoreProgram, kDeviceCoreVersion, kCreateLink);
    writer.u32(static_cast<std::uint32_t>(clientId));
    writer.u32(0);  // lockDevice: a probe must not take the instrument away from anyone
    writer.u32(0);  // lock_timeout
    writer.string(device);
    return record(writer);
}

std::vector<std::uint8_t> destroyLinkCall(std::uint32_t xid, std::int32_t linkId) {
    XdrWriter writer;
    callHeader(writer, xid, kDeviceCoreProgram, kDeviceCoreVersion, kDestroyLink);
    writer.u32(static_cast<std::uint32_t>(linkId));
    return record(writer);
}

std::vector<std::uint8_t> deviceWriteCall(std::uint32_t xid, std::int32_t linkId, std::uint32_t ioTimeoutMs,
                                          std::span<const std::uint8_t> data) {
    XdrWriter writer;
    callHeader(writer, xid, kDeviceCoreProgram, kDeviceCoreVersion, kDeviceWrite);
    for (std::uint32_t word : {static_cast<std::uint32_t>(linkId), ioTimeoutMs, 0u, kFlagEnd})
        writer.u32(word);
    writer.opaque(data);
    return record(writer);
}

std::vector<std::uint8_t> deviceReadCall(std::uint32_t xid, std::int32_t linkId, std::uint32_t requestSize,
                                         std::uint32_t ioTimeoutMs) {
    XdrWriter writer;
    callHeader(writer, xid, kDeviceCoreProgram, kDeviceCoreVersion, kDeviceRead);
    // lock_timeout 0, no flags, no termination character: the instrument's END ends the read.
    for (std::uint32_t word : {static_cast<std::uint32_t>(linkId), requestSize, ioTimeoutMs, 0u, 0u, 0u})
        writer.u32(word);
    return record(writer);
}

std::span<const std::uint8_t> withoutRecordMark(std::span<const std::uint8_t> record) {
    return record.size() < 4 ? record.subspan(record.size()) : record.subspan(4);
}

RecordAssembler::State RecordAssembler::feed(std::span<const std::uint8_t>& input) {
    while (state_ == State::NeedMore && !input.empty()) {
        if (!inFragment_) {
            mark_[markBytes_++] = input.front();
            input = input.subspan(1);
            if (markBytes_ < 4) continue;
            const std::uint32_t mark = std::uint32_t{mark_[0]} << 24 | std::uint32_t{mark_[1]} << 16 |
                                       std::uint32_t{mark_[2]} << 8 | mark_[3];
            markBytes_ = 0;
            lastFragment_ = (mark & kLastFragment) != 0;
            fragmentLeft_ = mark & ~kLastFragment;
            inFragment_ = true;
            if (record_.size() + fragmentLeft_ > maxRecord_) state_ = State::TooLarge;
        } else {
            const std::size_t take = std::min(fragmentLeft_, input.size());
            record_.insert(record_.end(), input.begin(), input.begin() + static_cast<std::ptrdiff_t>(take));
            input = input.subspan(take);
            fragmentLeft_ -= take;
        }
        if (inFragment_ && fragmentLeft_ == 0 && state_ == State::NeedMore) {
            inFragment_ = false;
            if (lastFragment_) state_ = State::Complete;
        }
    }
    return state_;
}

bool XdrReader::u32(std::uint32_t& value) {
    if (bytes_.size() - offset_ < 4) return false;
    value = std::uint32_t{bytes_[offset_]} << 24 | std::uint32_t{bytes_[offset_ + 1]} << 16 |
            std::uint32_t{bytes_[offset_ + 2]} << 8 | bytes_[offset_ + 3];
    offset_ += 4;
    return true;
}

bool XdrReader::skipOpaque(std::size_t maxLength) {
    std::span<const std::uint8_t> skipped;
    return opaque(maxLength, skipped);
}

bool XdrReader::opaque(std::size_t maxLength, std::span<const std::uint8_t>& out) {
    std::uint32_t length = 0;
    if (!u32(length) || length > maxLength) return false;
    const std::size_t padded = (std::size_t{length} + 3) & ~std::size_t{3};
    if (bytes_.size() - offset_ < padded) return false;
    out = bytes_.subspan(offset_, length);
    offset_ += padded;
    return true;
}

Reply parseReply(std::span<const std::uint8_t> record, std::uint32_t xid) {
    Reply reply;
    XdrReader reader(record);
    std::uint32_t replyXid = 0, type = 0, replyStat = 0, verifierFlavor = 0;
    if (!reader.u32(replyXid) || !reader.u32(type) || type != kReply) return reply;
    if (replyXid != xid) {
        reply.kind = ReplyKind::WrongXid;
        return reply;
    }
    if (!reader.u32(replyStat)) return reply;
    if (replyStat == kMsgDenied) {
        reply.kind = ReplyKind::Denied;
        return reply;
    }
    if (replyStat != kMsgAccepted || !reader.u32(verifierFlavor) || !reader.skipOpaque(kMaxAuthBody) ||
        !reader.u32(reply.acceptStat))
        return reply;
    reply.kind = ReplyKind::Accepted;
    reply.results = reader.rest();
    return reply;
}

bool parseGetPortResult(std::span<const std::uint8_t> results, std::uint32_t& port) {
    XdrReader reader(results);
    return reader.u32(port);
}

bool parseCreateLinkResult(std::span<const std::uint8_t> results, CreateLinkResult& out) {
    XdrReader reader(results);
    std::uint32_t error = 0, linkId = 0, abortPort = 0;
    if (!reader.u32(error) || !reader.u32(linkId) || !reader.u32(abortPort) || !reader.u32(out.maxReceiveSize))
        return false;
    out.error = static_cast<std::int32_t>(error);
    out.linkId = static_cast<std::int32_t>(linkId);
    out.abortPort = static_cast<std::uint16_t>(abortPort);
    return true;
}

bool parseDeviceWriteResult(std::span<const std::uint8_t> results, std::int32_t& error, std::uint32_t& size) {
    XdrReader reader(results);
    std::uint32_t word = 0;
    if (!reader.u32(word) || !reader.u32(size)) return false;
    error = static_cast<std::int32_t>(word);
    return true;
}

bool parseDeviceReadResult(std::span<const std::uint8_t> results, DeviceReadResult& out) {
    XdrReader reader(results);
    std::uint32_t error = 0;
    if (!reader.u32(error) || !reader.u32(out.reason) || !reader.opaque(results.size(), out.data)) return false;
    out.error = static_cast<std::int32_t>(error);
    return true;
}

bool parseCall(std::span<const std::uint8_t> record, Call& out) {
    XdrReader reader(record);
    std::uint32_t type = 0, rpcVersion = 0, flavor = 0;
    if (!reader.u32(out.xid) || !reader.u32(type) || type != kCall || !reader.u32(rpcVersion) ||
        rpcVersion != kRpcVersion || !reader.u32(out.program) || !reader.u32(out.version) ||
        !reader.u32(out.procedure))
        return false;
    for (int i = 0; i < 2; ++i)  // credential and verifier, whatever their flavor
        if (!reader.u32(flavor) || !reader.skipOpaque(kMaxAuthBody)) return false;
    out.arguments = reader.rest();
    return true;
}

std::vector<std::uint8_t> acceptedReply(std::uint32_t xid, std::uint32_t acceptStat,
                                        std::span<const std::uint8_t> results) {
    XdrWriter writer;
    for (std::uint32_t word : {xid, kReply, kMsgAccepted, kAuthNone, 0u, acceptStat})
        writer.u32(word);
    if (acceptStat == kAcceptSuccess) writer.bytes().insert(writer.bytes().end(), results.begin(), results.end());
    return record(writer);
}

}  // namespace braxcfg::visa::lan::rpc
