#pragma once
// HiSLIP messages: the 16-byte header and the few message types a client
// and the simulator exchange to open a session and pass one query.
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace braxcfg::visa::lan::hislip {

inline constexpr std::size_t kHeaderSize = 16;

enum MessageType : std::uint8_t {
    kInitialize = 0,
    kInitializeResponse = 1,
    kFatalError = 2,
    kData = 6,
    kDataEnd = 7,
    kAsyncInitialize = 17,
    kAsyncInitializeResponse = 18,
};

// The first message ID a client uses; each message adds 2.
inline constexpr std::uint32_t kFirstMessageId = 0xFFFFFF00u;

// FatalError code a server sends when it has no room for another client.
inline constexpr std::uint8_t kFatalMaxClients = 4;

// Protocol version 1.0 in the high half of the parameter: every server
// must accept the earliest version.
inline constexpr std::uint16_t kClientVersion = 0x0100;

// Our two-character vendor ID in the Initialize parameter.
inline constexpr char kVendorId[2] = {'B', 'X'};

struct Header {
    std::uint8_t type = 0;
    std::uint8_t control = 0;
    std::uint32_t parameter = 0;
    std::uint64_t payloadLength = 0;
};

// Any message: header and payload.
std::vector<std::uint8_t> message(std::uint8_t type, std::uint8_t control, std::uint32_t parameter,
                                  std::span<const std::uint8_t> payload = {});
std::vector<std::uint8_t> initializeMessage(std::string_view subAddress);

// False when the bytes do not start with the "HS" prologue (or are short).
bool parseHeader(std::span<const std::uint8_t> bytes, Header& out);

}  // namespace braxcfg::visa::lan::hislip
