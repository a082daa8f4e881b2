// What the LAN probe reads from outside: the resource string a user typed,
// and whatever a host sends back (RPC records and their headers, HiSLIP
// headers). None of it may crash or read out of bounds.
//
// Input: one selector byte (0: resource string, 1: RPC byte stream,
// 2: HiSLIP header), then the text or bytes.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "visacore/lan/hislip_message.h"
#include "visacore/lan/lan_resource.h"
#include "visacore/lan/onc_rpc.h"

namespace {

using namespace braxcfg::visa::lan;

void parseResource(std::span<const std::uint8_t> bytes) {
    LanResource resource;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (parseLanResource(text, resource) == braxcfg::visa::VI_SUCCESS && resource.host.empty()) __builtin_trap();
}

// The stream in chunks of a size the input chooses, as recv() might hand
// it over, then the reply and results the probe would decode.
void readRpcStream(std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return;
    const std::size_t chunk = bytes[0] % 7 + 1;
    bytes = bytes.subspan(1);
    rpc::RecordAssembler assembler(4096);
    auto state = rpc::RecordAssembler::State::NeedMore;
    while (state == rpc::RecordAssembler::State::NeedMore && !bytes.empty()) {
        std::span<const std::uint8_t> input = bytes.first(std::min(chunk, bytes.size()));
        const std::size_t offered = input.size();
        state = assembler.feed(input);
        bytes = bytes.subspan(offered - input.size());
    }
    if (state != rpc::RecordAssembler::State::Complete) return;
    const rpc::Reply reply = rpc::parseReply(assembler.record(), 1);
    std::uint32_t port = 0;
    rpc::CreateLinkResult link;
    rpc::parseGetPortResult(reply.results, port);
    rpc::parseCreateLinkResult(reply.results, link);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::span<const std::uint8_t> rest(data + 1, size - 1);
    switch (data[0] % 3) {
    case 0: parseResource(rest); break;
    case 1: readRpcStream(rest); break;
    default: {
        hislip::Header header;
        hislip::parseHeader(rest, header);
    }
    }
    return 0;
}
