// The bytes the probe puts on the wire and how it reads answers, checked
// against messages worked out by hand from the protocol definitions.
#include <gtest/gtest.h>

#include "visacore/lan/hislip_message.h"
#include "visacore/lan/onc_rpc.h"

namespace braxcfg::visa::lan {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes words(std::initializer_list<std::uint32_t> list) {
    Bytes out;
    for (std::uint32_t w : list)
        for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(w >> shift));
    return out;
}

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
    return out;
}

TEST(OncRpc, CallsMatchHandEncodedRecords) {
    const Bytes createLink = concat({words({0x80000040, 0x01020304, 0, 2, 0x0607AF, 1, 10, 0, 0, 0, 0,  //
                                            0x11, 0, 0, 5}),
                                     {'i', 'n', 's', 't', '0', 0, 0, 0}});
    EXPECT_EQ(rpc::createLinkCall(0x01020304, 0x11, "inst0"), createLink);

    // A name whose length is a multiple of four gets no padding.
    const Bytes fourChars = concat({words({0x8000003C, 1, 0, 2, 0x0607AF, 1, 10, 0, 0, 0, 0, 2, 0, 0, 4}),
                                    {'g', 'p', 'i', 'b'}});
    EXPECT_EQ(rpc::createLinkCall(1, 2, "gpib"), fourChars);

    EXPECT_EQ(rpc::getPortCall(7, 0x0607AF, 1),
              words({0x80000038, 7, 0, 2, 100000, 2, 3, 0, 0, 0, 0, 0x0607AF, 1, 6, 0}));
    EXPECT_EQ(rpc::destroyLinkCall(9, 42), words({0x8000002C, 9, 0, 2, 0x0607AF, 1, 23, 0, 0, 0, 0, 42}));
}

TEST(OncRpc, ReadsReplyHeaders) {
    struct Case {
        const char* what;
        Bytes record;
        rpc::ReplyKind kind;
        std::uint32_t acceptStat = 0;
        std::size_t resultBytes = 0;
    };
    const Case cases[] = {
        {"plain success", words({5, 1, 0, 0, 0, 0, 0x1234}), rpc::ReplyKind::Accepted, 0, 4},
        {"verifier with a padded body",
         concat({words({5, 1, 0, 1, 5}), {'a', 'b', 'c', 'd', 'e', 0, 0, 0}, words({0, 0x1234})}),
         rpc::ReplyKind::Accepted, 0, 4},
        {"program unavailable", words({5, 1, 0, 0, 0, 1}), rpc::ReplyKind::Accepted, 1, 0},
        {"denied", words({5, 1, 1, 0, 2, 2}), rpc::ReplyKind::Denied},
        {"another call's reply", words({6, 1, 0, 0, 0, 0, 1}), rpc::ReplyKind::WrongXid},
        {"a call, not a reply", words({5, 0, 2, 100000}), rpc::ReplyKind::Malformed},
        {"verifier longer than the record", words({5, 1, 0, 1, 8, 0}), rpc::ReplyKind::Malformed},
        {"verifier over the protocol's limit", concat({words({5, 1, 0, 1, 404}), Bytes(404, 0), words({0})}),
         rpc::ReplyKind::Malformed},
        {"no accept_stat", words({5, 1, 0, 0, 0}), rpc::ReplyKind::Malformed},
        {"reply_stat out of range", words({5, 1, 2, 0, 0, 0}), rpc::ReplyKind::Malformed},
        {"truncated word", {0, 0, 0, 5, 0, 0}, rpc::ReplyKind::Malformed},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const rpc::Reply reply = rpc::parseReply(c.record, 5);
        EXPECT_EQ(reply.kind, c.kind);
        if (c.kind != rpc::ReplyKind::Accepted) continue;
        EXPECT_EQ(reply.acceptStat, c.acceptStat);
        EXPECT_EQ(reply.results.size(), c.resultBytes);
    }
}

TEST(OncRpc, JoinsFragmentsWhateverTheChunking) {
    // "abc" + "defg" in two fragments, then the start of the next record.
    const Bytes stream = concat({words({0x00000003}), {'a', 'b', 'c'}, words({0x80000004}), {'d', 'e', 'f', 'g'},
                                 words({0x80000000})});
    for (std::size_t chunk : {std::size_t{1}, std::size_t{3}, std::size_t{5}, stream.size()}) {
        SCOPED_TRACE(chunk);
        rpc::RecordAssembler assembler;
        auto state = rpc::RecordAssembler::State::NeedMore;
        std::size_t consumed = 0;
        while (state == rpc::RecordAssembler::State::NeedMore && consumed < stream.size()) {
            std::span<const std::uint8_t> input(stream.data() + consumed, std::min(chunk, stream.size() - consumed));
            const std::size_t offered = input.size();
            state = assembler.feed(input);
            consumed += offered - input.size();
        }
        EXPECT_EQ(state, rpc::RecordAssembler::State::Complete);
        EXPECT_EQ(assembler.record(), (Bytes{'a', 'b', 'c', 'd', 'e', 'f', 'g'}));
        EXPECT_EQ(consumed, stream.size() - 4) << "bytes of the next record must be left alone";
    }
}

TEST(OncRpc, RefusesRecordsAboveTheLimit) {
    rpc::RecordAssembler assembler(16);
    // Two fragments that are each small but together too large.
    const Bytes stream = concat({words({10}), Bytes(10, 'x'), words({0x80000007})});
    std::span<const std::uint8_t> input(stream);
    EXPECT_EQ(assembler.feed(input), rpc::RecordAssembler::State::TooLarge);

    rpc::RecordAssembler http;
    const Bytes text{'H', 'T', 'T', 'P', '/', '1'};
    std::span<const std::uint8_t> textInput(text);
    EXPECT_EQ(http.feed(textInput), rpc::RecordAssembler::State::TooLarge);
}

TEST(Hislip, InitializeMatchesHandEncodedMessage) {
    const Bytes expected{'H', 'S', 0, 0, 0x01, 0x00, 'B', 'X', 0, 0, 0, 0, 0, 0, 0, 7,
                         'h', 'i', 's', 'l', 'i', 'p', '0'};
    EXPECT_EQ(hislip::initializeMessage("hislip0"), expected);
}

}  // namespace
}  // namespace braxcfg::visa::lan
