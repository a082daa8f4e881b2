#include "visacore/lan/hislip_message.h"

namespace braxcfg::visa::lan::hislip {
namespace {

void putBigEndian(std::vector<std::uint8_t>& out, std::uint64_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

std::uint64_t getBigEndian(std::span<const std::uint8_t> bytes) {
    std::uint64_t value = 0;
    for (std::uint8_t byte : bytes) value = value << 8 | byte;
    return value;
}

}  // namespace

std::vector<std::uint8_t> message(std::uint8_t type, std::uint8_t control, std::uint32_t parameter,
                                  std::span<const std::uint8_t> payload) {
    std::vector<std::uint8_t> out{'H', 'S', type, control};
    putBigEndian(out, parameter, 4);
    putBigEndian(out, payload.size(), 8);
    out.insert(out.end(), payload.begin(), payload.end());
    return out;
}

std::vector<std::uint8_t> initializeMessage(std::string_view subAddress) {
    const std::uint32_t parameter = std::uint32_t{kClientVersion} << 16 |
                                    std::uint32_t{static_cast<std::uint8_t>(kVendorId[0])} << 8 |
                                    static_cast<std::uint8_t>(kVendorId[1]);
    return message(kInitialize, 0, parameter,
                   {reinterpret_cast<const std::uint8_t*>(subAddress.data()), subAddress.size()});
}

bool parseHeader(std::span<const std::uint8_t> bytes, Header& out) {
    if (bytes.size() < kHeaderSize || bytes[0] != 'H' || bytes[1] != 'S') return false;
    out.type = bytes[2];
    out.control = bytes[3];
    out.parameter = static_cast<std::uint32_t>(getBigEndian(bytes.subspan(4, 4)));
    out.payloadLength = getBigEndian(bytes.subspan(8, 8));
    return true;
}

}  // namespace braxcfg::visa::lan::hislip
