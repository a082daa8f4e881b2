// The simulator's ONC-RPC servers: a portmapper that knows one program
// (the VXI-11 core channel at this address) and the core channel itself,
// with links that pass one query at a time.
#include <algorithm>
#include <map>

#include "visacore/lan/onc_rpc.h"
#include "visacore/lan/sim/sim_site.h"

namespace braxcfg::visa::lan::sim {
namespace {

constexpr std::uint32_t kNullProcedure = 0;
constexpr std::uint32_t kMaxTransfer = 65536;

using Bytes = std::vector<std::uint8_t>;

struct Link {
    const LabInstrument* instrument;
    std::string input;   // written bytes up to the next END
    std::string output;  // the answer not yet read
};

Bytes words(std::initializer_list<std::uint32_t> values) {
    rpc::XdrWriter writer;
    for (std::uint32_t value : values) writer.u32(value);
    return std::move(writer.bytes());
}

class CoreChannel {
public:
    explicit CoreChannel(const Site& site) : site_(site) {}

    // The reply to one call of the core program.
    Bytes answer(const rpc::Call& call) {
        rpc::XdrReader args(call.arguments);
        switch (call.procedure) {
        case rpc::kCreateLink: return createLink(args, call.xid);
        case rpc::kDeviceWrite: return deviceWrite(args, call.xid);
        case rpc::kDeviceRead: return deviceRead(args, call.xid);
        case rpc::kDestroyLink: {
            std::uint32_t id = 0;
            if (!args.u32(id)) return rpc::acceptedReply(call.xid, rpc::kGarbageArguments);
            return rpc::acceptedReply(call.xid, rpc::kAcceptSuccess, words({static_cast<std::uint32_t>(links_.erase(id) ? rpc::kNoError : rpc::kInvalidLinkId)}));
        }
        default: return rpc::acceptedReply(call.xid, rpc::kProcedureUnavailable);
        }
    }

private:
    Bytes createLink(rpc::XdrReader& args, std::uint32_t xid) {
        std::uint32_t clientId = 0, lock = 0, lockTimeout = 0;
        std::span<const std::uint8_t> device;
        if (!args.u32(clientId) || !args.u32(lock) || !args.u32(lockTimeout) || !args.opaque(256, device))
            return rpc::acceptedReply(xid, rpc::kGarbageArguments);
        const auto found = site_.devices.find(std::string(device.begin(), device.end()));
        if (found == site_.devices.end())
            return rpc::acceptedReply(xid, rpc::kAcceptSuccess, words({rpc::kDeviceNotAccessible, 0, 0, 0}));
        const std::uint32_t id = nextLink_++;
        links_[id] = Link{found->second, {}, {}};
        return rpc::acceptedReply(xid, rpc::kAcceptSuccess, words({rpc::kNoError, id, 0, kMaxTransfer}));
    }

    Bytes deviceWrite(rpc::XdrReader& args, std::uint32_t xid) {
        std::uint32_t id = 0, ioTimeout = 0, lockTimeout = 0, flags = 0;
        std::span<const std::uint8_t> data;
        if (!args.u32(id) || !args.u32(ioTimeout) || !args.u32(lockTimeout) || !args.u32(flags) ||
            !args.opaque(kMaxTransfer, data))
            return rpc::acceptedReply(xid, rpc::kGarbageArguments);
        const auto link = links_.find(id);
        if (link == links_.end()) return rpc::acceptedReply(xid, rpc::kAcceptSuccess, words({rpc::kInvalidLinkId, 0}));
        link->second.input.append(data.begin(), data.end());
        if ((flags & rpc::kFlagEnd) != 0) {
            link->second.output = respond(*link->second.instrument, link->second.input);
            link->second.input.clear();
        }
        return rpc::acceptedReply(xid, rpc::kAcceptSuccess,
                                  words({rpc::kNoError, static_cast<std::uint32_t>(data.size())}));
    }

    Bytes deviceRead(rpc::XdrReader& args, std::uint32_t xid) {
        std::uint32_t id = 0, requestSize = 0;
        if (!args.u32(id) || !args.u32(requestSize)) return rpc::acceptedReply(xid, rpc::kGarbageArguments);
        const auto link = links_.find(id);
        if (link == links_.end()) return rpc::acceptedReply(xid, rpc::kAcceptSuccess, words({rpc::kInvalidLinkId, 0, 0}));
        std::string& output = link->second.output;
        // Nothing to read: a real instrument would wait out the I/O timeout.
        if (output.empty()) return rpc::acceptedReply(xid, rpc::kAcceptSuccess, words({rpc::kIoTimeout, 0, 0}));
        const std::size_t size = std::min<std::size_t>(output.size(), std::max<std::uint32_t>(requestSize, 1));
        rpc::XdrWriter results;
        results.u32(rpc::kNoError);
        results.u32(size == output.size() ? rpc::kReasonEnd : 0);
        results.opaque({reinterpret_cast<const std::uint8_t*>(output.data()), size});
        output.erase(0, size);
        return rpc::acceptedReply(xid, rpc::kAcceptSuccess, results.bytes());
    }

    const Site& site_;
    std::map<std::uint32_t, Link> links_;
    std::uint32_t nextLink_ = 1;
};

}  // namespace

Bytes portmapperAnswer(const rpc::Call& call, const Site& site) {
    if (call.program != rpc::kPortmapProgram || call.version != rpc::kPortmapVersion)
        return rpc::acceptedReply(call.xid, rpc::kProgramUnavailable);
    if (call.procedure == kNullProcedure) return rpc::acceptedReply(call.xid, rpc::kAcceptSuccess);
    if (call.procedure != rpc::kPortmapGetPort) return rpc::acceptedReply(call.xid, rpc::kProcedureUnavailable);
    rpc::XdrReader args(call.arguments);
    std::uint32_t program = 0, version = 0, protocol = 0;
    if (!args.u32(program) || !args.u32(version) || !args.u32(protocol))
        return rpc::acceptedReply(call.xid, rpc::kGarbageArguments);
    const bool registered = program == rpc::kDeviceCoreProgram && version == rpc::kDeviceCoreVersion &&
                            protocol == rpc::kProtocolTcp && site.corePort != 0;
    // Port 0: not registered, as every portmapper says it.
    return rpc::acceptedReply(call.xid, rpc::kAcceptSuccess, words({registered ? site.corePort : 0u}));
}

void servePortmapper(const Stream& stream, const Site& site) {
    for (Bytes record; stream.readRecord(record);) {
        rpc::Call call;
        if (!rpc::parseCall(record, call) || !stream.write(portmapperAnswer(call, site))) return;
    }
}

void serveCore(const Stream& stream, const Site& site) {
    CoreChannel channel(site);
    for (Bytes record; stream.readRecord(record);) {
        rpc::Call call;
        if (!rpc::parseCall(record, call)) return;
        const bool ours = call.program == rpc::kDeviceCoreProgram && call.version == rpc::kDeviceCoreVersion;
        if (!stream.write(ours ? channel.answer(call) : rpc::acceptedReply(call.xid, rpc::kProgramUnavailable)))
            return;
    }
}

}  // namespace braxcfg::visa::lan::sim
