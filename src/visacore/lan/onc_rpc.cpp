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

class XdrWriter {
public:
    void u32(std::uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8) bytes_.push_back(static_cast<std::uint8_t>(value >> shift));
    }
    void string(std::string_view text) {
        u32(static_cast<std::uint32_t>(text.size()));
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        bytes_.resize((bytes_.size() + 3) & ~std::size_t{3}, 0);
    }
    void callHeader(std::uint32_t xid, std::uint32_t program, std::uint32_t version, std::uint32_t procedure) {
        for (std::uint32_t word : {xid, kCall, kRpcVersion, program, version, procedure})
            u32(word);
        for (int i = 0; i < 2; ++i) {  // credential, then verifier: AUTH_NONE, empty
            u32(kAuthNone);
            u32(0);
        }
    }
    // The record: one last fragment holding everything written so far.
    std::vector<std::uint8_t> record() const {
        XdrWriter framed;
        framed.u32(kLastFragment | static_cast<std::uint32_t>(bytes_.size()));
        framed.bytes_.insert(framed.bytes_.end(), bytes_.begin(), bytes_.end());
        return std::move(framed.bytes_);
    }

private:
    std::vector<std::uint8_t> bytes_;
};

}  // namespace

std::vector<std::uint8_t> getPortCall(std::uint32_t xid, std::uint32_t program, std::uint32_t version) {
    XdrWriter writer;
    writer.callHeader(xid, kPortmapProgram, kPortmapVersion, kPortmapGetPort);
    for (std::uint32_t word : {program, version, kProtocolTcp, 0u})
        writer.u32(word);
    return writer.record();
}

std::vector<std::uint8_t> createLinkCall(std::uint32_t xid, std::int32_t clientId, std::string_view device) {
    XdrWriter writer;
    writer.callHeader(xid, kDeviceCoreProgram, kDeviceCoreVersion, kCreateLink);
    writer.u32(static_cast<std::uint32_t>(clientId));
    writer.u32(0);  // lockDevice: a probe must not take the instrument away from anyone
    writer.u32(0);  // lock_timeout
    writer.string(device);
    return writer.record();
}

std::vector<std::uint8_t> destroyLinkCall(std::uint32_t xid, std::int32_t linkId) {
    XdrWriter writer;
    writer.callHeader(xid, kDeviceCoreProgram, kDeviceCoreVersion, kDestroyLink);
    writer.u32(static_cast<std::uint32_t>(linkId));
    return writer.record();
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
    std::uint32_t length = 0;
    if (!u32(length) || length > maxLength) return false;
    const std::size_t padded = (std::size_t{length} + 3) & ~std::size_t{3};
    if (bytes_.size() - offset_ < padded) return false;
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

}  // namespace braxcfg::visa::lan::rpc
