#pragma once
// DNS messages as multicast DNS carries them: the questions a one-shot
// querier asks (PTR for a service type) and the records an answer holds
// (PTR, SRV, TXT, A, AAAA). Names are dotted text without the final dot.
// Pure functions over bytes; the parser takes any input without harm.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace braxcfg::visa::lan::dns {

enum RecordType : std::uint16_t { kA = 1, kPtr = 12, kTxt = 16, kAaaa = 28, kSrv = 33, kAny = 255 };

inline constexpr std::uint16_t kClassIn = 1;
// The top bit of a question's class asks for a unicast answer; of a
// record's class, it says the record replaces older ones (cache flush).
inline constexpr std::uint16_t kClassTopBit = 0x8000;

struct Question {
    std::string name;
    std::uint16_t type = kPtr;
};

struct Record {
    std::string name;
    std::uint16_t type = 0;
    std::uint32_t ttl = 0;
    std::string target;                  // PTR: the instance; SRV: the host
    std::uint16_t port = 0;              // SRV
    std::vector<std::uint8_t> address;   // A: 4 bytes, AAAA: 16 bytes
    std::vector<std::string> texts;      // TXT
};

struct Message {
    std::uint16_t id = 0;
    bool response = false;
    std::vector<Question> questions;
    std::vector<Record> records;  // answers, authority and additional records, in order
};

// A query for `questions`; `unicastResponse` sets the question's top class
// bit so responders answer the querier directly.
std::vector<std::uint8_t> encodeQuery(std::uint16_t id, const std::vector<Question>& questions,
                                      bool unicastResponse);
// An authoritative response repeating `questions` (as answers to a
// querier that is not on port 5353 must) with `answers`.
std::vector<std::uint8_t> encodeResponse(std::uint16_t id, const std::vector<Question>& questions,
                                         const std::vector<Record>& answers);

// False for a message that is truncated or malformed (bad name labels,
// compression loops, record data that does not fit its type).
bool parseMessage(std::span<const std::uint8_t> bytes, Message& out);

// DNS names compare without regard to ASCII case.
bool sameName(std::string_view a, std::string_view b);

}  // namespace braxcfg::visa::lan::dns
