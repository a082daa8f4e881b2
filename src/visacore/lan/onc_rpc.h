#pragma once
// The few ONC-RPC messages VXI-11 needs, encoded and decoded by hand:
// portmapper GETPORT, create_link, device_write, device_read and
// destroy_link, framed with TCP record marking (a UDP datagram carries the
// same record without its mark). Both sides: the client's calls and
// replies, and the simulator's view of a call. Pure functions over bytes;
// no I/O here.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace braxcfg::visa::lan::rpc {

inline constexpr std::uint32_t kPortmapProgram = 100000;
inline constexpr std::uint32_t kPortmapVersion = 2;
inline constexpr std::uint32_t kPortmapGetPort = 3;
inline constexpr std::uint32_t kProtocolTcp = 6;

inline constexpr std::uint32_t kDeviceCoreProgram = 0x0607AF;
inline constexpr std::uint32_t kDeviceCoreVersion = 1;
inline constexpr std::uint32_t kCreateLink = 10;
inline constexpr std::uint32_t kDeviceWrite = 11;
inline constexpr std::uint32_t kDeviceRead = 12;
inline constexpr std::uint32_t kDestroyLink = 23;

// Device core error codes, as create_link, device_write and device_read
// answer them.
inline constexpr std::int32_t kNoError = 0;
inline constexpr std::int32_t kSyntaxError = 1;
inline constexpr std::int32_t kDeviceNotAccessible = 3;
inline constexpr std::int32_t kInvalidLinkId = 4;
inline constexpr std::int32_t kOutOfResources = 9;
inline constexpr std::int32_t kDeviceLocked = 11;
inline constexpr std::int32_t kIoTimeout = 15;
inline constexpr std::int32_t kInvalidAddress = 21;

// device_write/device_read flags: the last bytes of a message (END).
inline constexpr std::uint32_t kFlagEnd = 8;
// device_read reasons: the read stopped at END.
inline constexpr std::uint32_t kReasonEnd = 4;

// accept_stat of an accepted reply.
inline constexpr std::uint32_t kAcceptSuccess = 0;
inline constexpr std::uint32_t kProgramUnavailable = 1;
inline constexpr std::uint32_t kProcedureUnavailable = 3;
inline constexpr std::uint32_t kGarbageArguments = 4;

inline constexpr std::uint32_t kLastFragment = 0x80000000u;

// Complete call records, record mark included.
std::vector<std::uint8_t> getPortCall(std::uint32_t xid, std::uint32_t program, std::uint32_t version);
std::vector<std::uint8_t> createLinkCall(std::uint32_t xid, std::int32_t clientId, std::string_view device);
std::vector<std::uint8_t> destroyLinkCall(std::uint32_t xid, std::int32_t linkId);
std::vector<std::uint8_t> deviceWriteCall(std::uint32_t xid, std::int32_t linkId, std::uint32_t ioTimeoutMs,
                                          std::span<const std::uint8_t> data);
std::vector<std::uint8_t> deviceReadCall(std::uint32_t xid, std::int32_t linkId, std::uint32_t requestSize,
                                         std::uint32_t ioTimeoutMs);

// A record's body without its mark, as one UDP datagram carries it.
std::span<const std::uint8_t> withoutRecordMark(std::span<const std::uint8_t> record);

// Collects the fragments of one record from a byte stream.
class RecordAssembler {
public:
    enum class State { NeedMore, Complete, TooLarge };

    explicit RecordAssembler(std::size_t maxRecord = 64 * 1024) : maxRecord_(maxRecord) {}

    // Takes bytes off the front of `input` (all of them unless the record
    // completes first) and says where the record stands.
    State feed(std::span<const std::uint8_t>& input);
    const std::vector<std::uint8_t>& record() const { return record_; }

private:
    std::size_t maxRecord_;
    std::vector<std::uint8_t> record_;
    std::uint8_t mark_[4] = {};
    std::size_t markBytes_ = 0;
    std::size_t fragmentLeft_ = 0;
    bool lastFragment_ = false;
    bool inFragment_ = false;
    State state_ = State::NeedMore;
};

// Reads big-endian words from a reply body.
class XdrReader {
public:
    explicit XdrReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
    bool u32(std::uint32_t& value);
    // Skips a variable-length opaque (length word, bytes padded to 4).
    bool skipOpaque(std::size_t maxLength);
    // A variable-length opaque or string of at most `maxLength` bytes.
    bool opaque(std::size_t maxLength, std::span<const std::uint8_t>& out);
    // What has not been read yet.
    std::span<const std::uint8_t> rest() const { return bytes_.subspan(offset_); }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t offset_ = 0;
};

enum class ReplyKind {
    Accepted,   // MSG_ACCEPTED; see acceptStat
    Denied,     // MSG_DENIED
    WrongXid,   // an answer to another call
    Malformed,  // not an RPC reply
};

struct Reply {
    ReplyKind kind = ReplyKind::Malformed;
    std::uint32_t acceptStat = 0;
    std::span<const std::uint8_t> results;  // the procedure's results, when accepted with success
};

// Decodes the header of a reply record (without its record mark).
Reply parseReply(std::span<const std::uint8_t> record, std::uint32_t xid);

// Results of the three procedures; false when the results are too short.
bool parseGetPortResult(std::span<const std::uint8_t> results, std::uint32_t& port);
struct CreateLinkResult {
    std::int32_t error = 0;
    std::int32_t linkId = 0;
    std::uint16_t abortPort = 0;
    std::uint32_t maxReceiveSize = 0;
};
bool parseCreateLinkResult(std::span<const std::uint8_t> results, CreateLinkResult& out);
// device_write's error and the number of bytes taken.
bool parseDeviceWriteResult(std::span<const std::uint8_t> results, std::int32_t& error, std::uint32_t& size);
struct DeviceReadResult {
    std::int32_t error = 0;
    std::uint32_t reason = 0;
    std::span<const std::uint8_t> data;
};
bool parseDeviceReadResult(std::span<const std::uint8_t> results, DeviceReadResult& out);

// --- the server's side ---

// A call as a server sees it. `arguments` points into the record.
struct Call {
    std::uint32_t xid = 0;
    std::uint32_t program = 0;
    std::uint32_t version = 0;
    std::uint32_t procedure = 0;
    std::span<const std::uint8_t> arguments;
};
// False when the record is not an RPC call of version 2.
bool parseCall(std::span<const std::uint8_t> record, Call& out);

// An accepted reply record (mark included) with an empty verifier and
// `acceptStat`; `results` follow only when the call succeeded.
std::vector<std::uint8_t> acceptedReply(std::uint32_t xid, std::uint32_t acceptStat,
                                        std::span<const std::uint8_t> results = {});

// Big-endian words and XDR opaques, for a server's results.
class XdrWriter {
public:
    void u32(std::uint32_t value);
    void opaque(std::span<const std::uint8_t> bytes);
    void string(std::string_view text);
    const std::vector<std::uint8_t>& bytes() const { return bytes_; }
    std::vector<std::uint8_t>& bytes() { return bytes_; }

private:
    std::vector<std::uint8_t> bytes_;
};

}  // namespace braxcfg::visa::lan::rpc
