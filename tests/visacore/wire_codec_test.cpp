// The bytes the probe puts on the wire and how it reads answers, against
// messages worked out by hand from the protocol definitions.
#include <gtest/gtest.h>

#include "visacore/lan/hislip_message.h"
#include "visacore/lan/onc_rpc.h"

namespace braxcfg::visa::lan {
namespace {

using namespace std::literals;
using Bytes = std::vector<std::uint8_t>;
using Kind = rpc::ReplyKind;
using State = rpc::RecordAssembler::State;

// Big-endian words, then raw bytes.
Bytes words(std::initializer_list<std::uint32_t> list, std::string_view tail = {}) {
    Bytes out;
    for (std::uint32_t w : list)
        for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(w >> shift));
    out.insert(out.end(), tail.begin(), tail.end());
    return out;
}

// GETPORT, create_link with a padded name and destroy_link are read by
// rpcbind and an rpcgen server in the integration tests.
TEST(OncRpc, CallsMatchHandEncodedRecords) {
    // A name whose length is a multiple of four gets no padding.
    EXPECT_EQ(rpc::createLinkCall(1, 2, "gpib"),
              words({0x8000003C, 1, 0, 2, 0x0607AF, 1, 10, 0, 0, 0, 0, 2, 0, 0, 4}, "gpib"));
    // device_write: link, io_timeout, lock_timeout, flags END, the data.
    EXPECT_EQ(rpc::deviceWriteCall(3, 5, 1000, words({}, "*IDN?\n")),
              words({0x80000044, 3, 0, 2, 0x0607AF, 1, 11, 0, 0, 0, 0, 5, 1000, 0, 8, 6}, "*IDN?\n\0\0"sv));
    // device_read: link, requestSize, io_timeout, lock_timeout, flags, termChar.
    EXPECT_EQ(rpc::deviceReadCall(4, 5, 65536, 250),
              words({0x80000040, 4, 0, 2, 0x0607AF, 1, 12, 0, 0, 0, 0, 5, 65536, 250, 0, 0, 0}));
}

// device_read's results: data, and data longer than what arrived.
TEST(OncRpc, ReadsDeviceReadResults) {
    rpc::DeviceReadResult result;
    const Bytes results = words({0, 4, 3}, "abc\0"sv);  // `result.data` points into it
    ASSERT_TRUE(rpc::parseDeviceReadResult(results, result));
    EXPECT_EQ(result.reason, rpc::kReasonEnd);
    EXPECT_EQ(std::string(result.data.begin(), result.data.end()), "abc");
    EXPECT_FALSE(rpc::parseDeviceReadResult(words({0, 4, 9}, "abc\0"sv), result));
}

// A denied call (hand-encoded by the scripted portmapper) and a program
// unavailable answer are read in the probe's outcomes.
TEST(OncRpc, ReadsReplyHeaders) {
    const struct { const char* what; Bytes record; Kind kind; std::uint32_t acceptStat = 0;
                   std::size_t resultBytes = 0; } cases[] = {
        {"plain success", words({5, 1, 0, 0, 0, 0, 0x1234}), Kind::Accepted, 0, 4},
        {"verifier with a padded body", words({5, 1, 0, 1, 5}, "abcde\0\0\0" "\0\0\0\0" "\0\0\x12\x34"sv),
         Kind::Accepted, 0, 4},
        {"another call's reply", words({6, 1, 0, 0, 0, 0, 1}), Kind::WrongXid},
        {"a call, not a reply", words({5, 0, 2, 100000}), Kind::Malformed},
        {"verifier over the protocol's limit", words({5, 1, 0, 1, 404}, std::string(408, '\0')), Kind::Malformed},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const rpc::Reply reply = rpc::parseReply(c.record, 5);
        EXPECT_EQ(reply.kind, c.kind);
        if (c.kind != Kind::Accepted) continue;
        EXPECT_EQ(reply.acceptStat, c.acceptStat);
        EXPECT_EQ(reply.results.size(), c.resultBytes);
    }
}

TEST(OncRpc, JoinsFragmentsWhateverTheChunking) {
    // "abc" + "defg" in two fragments, then the start of the next record.
    const Bytes stream = words({3}, "abc\x80\0\0\4defg\x80\0\0\0"sv);
    for (std::size_t chunk : {std::size_t{1}, std::size_t{3}, std::size_t{5}, stream.size()}) {
        SCOPED_TRACE(chunk);
        rpc::RecordAssembler assembler;
        State state = State::NeedMore;
        std::size_t consumed = 0;
        while (state == State::NeedMore && consumed < stream.size()) {
            std::span<const std::uint8_t> input(stream.data() + consumed, std::min(chunk, stream.size() - consumed));
            const std::size_t offered = input.size();
            state = assembler.feed(input);
            consumed += offered - input.size();
        }
        EXPECT_EQ(state, State::Complete);
        EXPECT_EQ(assembler.record(), words({}, "abcdefg"));
        EXPECT_EQ(consumed, stream.size() - 4) << "bytes of the next record must be left alone";
    }
}

// Two fragments that are each small but together too large, and text
// whose first four bytes read as a huge fragment.
TEST(OncRpc, RefusesRecordsAboveTheLimit) {
    for (const auto& [limit, stream] : {std::pair{std::size_t{16}, words({10}, "xxxxxxxxxx\x80\0\0\7"sv)},
                                        std::pair{std::size_t{64 * 1024}, words({}, "HTTP/1")}}) {
        std::span<const std::uint8_t> input(stream);
        EXPECT_EQ(rpc::RecordAssembler(limit).feed(input), State::TooLarge);
    }
}

TEST(Hislip, InitializeMatchesHandEncodedMessage) {
    EXPECT_EQ(hislip::initializeMessage("hislip0"), words({}, "HS\0\0\1\0BX\0\0\0\0\0\0\0\7hislip0"sv));
}

}  // namespace
}  // namespace braxcfg::visa::lan
