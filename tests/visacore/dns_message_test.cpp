// mDNS messages: what the querier sends, what it reads back (compressed
// names included), and that malformed packets are refused, not misread.
#include "visacore/lan/dns_message.h"

#include <gtest/gtest.h>

#include "visacore/lan/mdns_services.h"
#include "visacore/lan/sim/mdns_responder.h"

namespace braxcfg::visa::lan {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytes(std::initializer_list<int> list) {
    Bytes out;
    for (int b : list) out.push_back(static_cast<std::uint8_t>(b));
    return out;
}

TEST(DnsMessage, QueryMatchesHandEncodedBytes) {
    EXPECT_EQ(dns::encodeQuery(0x1234, {{"_lxi._tcp.local", dns::kPtr}}, true),
              bytes({0x12, 0x34, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0,                                  //
                     4, '_', 'l', 'x', 'i', 4, '_', 't', 'c', 'p', 5, 'l', 'o', 'c', 'a', 'l', 0,  //
                     0, 12, 0x80, 1}));
}

TEST(DnsMessage, ResponseRoundTripsEveryRecordType) {
    const std::vector<dns::Record> answers{
        {"_hislip._tcp.local", dns::kPtr, 120, "Scope._hislip._tcp.local", 0, {}, {}},
        {"Scope._hislip._tcp.local", dns::kSrv, 120, "host.local", 4881, {}, {}},
        {"Scope._hislip._tcp.local", dns::kTxt, 120, {}, 0, {}, {"txtvers=1", "Manufacturer=Tolvane"}},
        {"host.local", dns::kA, 120, {}, 0, {10, 0, 0, 5}, {}},
        {"host.local", dns::kAaaa, 120, {}, 0, Bytes(16, 0xFE), {}},
    };
    dns::Message parsed;
    ASSERT_TRUE(dns::parseMessage(dns::encodeResponse(7, {{"_hislip._tcp.local", dns::kPtr}}, answers), parsed));
    EXPECT_TRUE(parsed.response);
    EXPECT_EQ(parsed.id, 7);
    ASSERT_EQ(parsed.questions.size(), 1u);
    ASSERT_EQ(parsed.records.size(), answers.size());
    for (std::size_t i = 0; i < answers.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(parsed.records[i].name, answers[i].name);
        EXPECT_EQ(parsed.records[i].type, answers[i].type);
        EXPECT_EQ(parsed.records[i].target, answers[i].target);
        EXPECT_EQ(parsed.records[i].port, answers[i].port);
        EXPECT_EQ(parsed.records[i].address, answers[i].address);
        EXPECT_EQ(parsed.records[i].texts, answers[i].texts);
    }
}

// A response as responders write it: names compressed against earlier ones.
Bytes compressedResponse() {
    return bytes({0, 0, 0x84, 0, 0, 0, 0, 2, 0, 0, 0, 0,
                  // @12: _vxi-11._tcp.local PTR -> "Box" + @12
                  7, '_', 'v', 'x', 'i', '-', '1', '1', 4, '_', 't', 'c', 'p', 5, 'l', 'o', 'c', 'a', 'l', 0,  //
                  0, 12, 0, 1, 0, 0, 0, 120, 0, 6, 3, 'B', 'o', 'x', 0xC0, 12,
                  // "Box" + @12 again through a pointer to the PTR data (@42): SRV -> port 1024, host @42
                  0xC0, 42, 0, 33, 0, 1, 0, 0, 0, 120, 0, 8, 0, 0, 0, 0, 4, 0, 0xC0, 42});
}

TEST(DnsMessage, FollowsCompressionPointers) {
    dns::Message parsed;
    ASSERT_TRUE(dns::parseMessage(compressedResponse(), parsed));
    ASSERT_EQ(parsed.records.size(), 2u);
    EXPECT_EQ(parsed.records[0].target, "Box._vxi-11._tcp.local");
    EXPECT_EQ(parsed.records[1].name, "Box._vxi-11._tcp.local");
    EXPECT_EQ(parsed.records[1].port, 1024);
}

TEST(DnsMessage, RefusesMalformedPackets) {
    const Bytes good = compressedResponse();
    const auto changed = [&](std::size_t at, int value) {
        Bytes copy = good;
        copy[at] = static_cast<std::uint8_t>(value);
        return copy;
    };
    const struct { const char* what; Bytes packet; } cases[] = {
        {"short header", bytes({0, 0, 0x84})},
        {"truncated record", Bytes(good.begin(), good.end() - 3)},
        {"pointer to itself", changed(49, 48)},
        {"pointer past the end", changed(49, 0xF0)},
        {"label longer than 63", changed(12, 64)},
        {"record length beyond the packet", changed(41, 0x60)},
        {"more records than present", changed(7, 3)},
        {"A record of 5 bytes", bytes({0, 0, 0x84, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 'h', 0, 0, 1, 0, 1, 0, 0, 0, 1, 0,
                                       5, 1, 2, 3, 4, 5})},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        dns::Message parsed;
        EXPECT_FALSE(dns::parseMessage(c.packet, parsed));
    }
}

TEST(MdnsServices, ResponsesBecomeResourceStrings) {
    const auto response = [](std::string_view type, std::uint16_t port, bool withSrv, bool withAddress) {
        const std::string instance = "Box." + std::string(type);
        dns::Message message;
        message.response = true;
        message.records.push_back({std::string(type), dns::kPtr, 120, instance, 0, {}, {}});
        if (withSrv) message.records.push_back({instance, dns::kSrv, 120, "box.local", port, {}, {}});
        if (withAddress) message.records.push_back({"box.local", dns::kA, 120, {}, 0, {10, 0, 0, 9}, {}});
        return message;
    };
    const struct { dns::Message message; std::string address; std::vector<std::string> resources; } cases[] = {
        {response("_vxi-11._tcp.local", 1024, true, true), "10.0.0.9", {"TCPIP0::10.0.0.9::inst0::INSTR"}},
        {response("_hislip._tcp.local", 4880, true, true), "10.0.0.9", {"TCPIP0::10.0.0.9::hislip0::INSTR"}},
        {response("_hislip._tcp.local", 4881, true, false), "10.0.0.1", {"TCPIP0::10.0.0.1::hislip0,4881::INSTR"}},
        {response("_scpi-raw._tcp.local", 5026, true, true), "10.0.0.9", {"TCPIP0::10.0.0.9::5026::SOCKET"}},
        // Without SRV record: the sender's address and the usual port.
        {response("_scpi-raw._tcp.local", 0, false, false), "10.0.0.1", {"TCPIP0::10.0.0.1::5025::SOCKET"}},
        // A web service names the box but offers no VISA resource.
        {response("_lxi._tcp.local", 80, true, true), "10.0.0.9", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message.records.front().name);
        const auto findings = readServiceResponse(c.message, "10.0.0.1");
        ASSERT_EQ(findings.size(), 1u);
        EXPECT_EQ(findings[0].instanceName, "Box");
        EXPECT_EQ(findings[0].address, c.address);
        EXPECT_EQ(findings[0].resources, c.resources);
    }
}

}  // namespace
}  // namespace braxcfg::visa::lan

namespace braxcfg::visa::lan::sim {
namespace {

TEST(MdnsResponder, OneAnswerPerInstrumentOfferingTheService) {
    LabInstrument scope, meter;
    scope.mdnsName = "Scope";
    meter.mdnsName = "Meter";
    Site first{"10.0.0.2", false, 111, 1024, {{"inst0", &scope}}, {{4881, {{"hislip0", &scope}}}}, {}, {&scope}};
    Site second{"10.0.0.3", false, 111, 0, {}, {}, {{5025, &meter}}, {&meter}};
    const auto answers = [&](std::string_view type, bool response = false, std::vector<Site> sites = {}) {
        dns::Message query;
        query.id = 9;
        query.response = response;
        query.questions.push_back({std::string(type), dns::kPtr});
        std::vector<dns::Message> parsed;
        for (const auto& packet : mdnsResponses(query, sites.empty() ? std::vector{first, second} : sites)) {
            parsed.emplace_back();
            EXPECT_TRUE(dns::parseMessage(packet, parsed.back()));
        }
        return parsed;
    };
    const auto hislip = answers("_HISLIP._tcp.local");
    ASSERT_EQ(hislip.size(), 1u);
    EXPECT_EQ(hislip[0].id, 9) << "a one-shot querier matches answers by ID";
    ASSERT_EQ(hislip[0].questions.size(), 1u) << "and expects its question back";
    const auto findings = readServiceResponse(hislip[0], "192.0.2.1");
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].address, "10.0.0.2") << "from the A record, not the sender";
    EXPECT_EQ(findings[0].instanceName, "Scope");
    EXPECT_EQ(findings[0].resources, std::vector<std::string>{"TCPIP0::10.0.0.2::hislip0,4881::INSTR"});

    EXPECT_EQ(answers("_vxi-11._tcp.local").size(), 1u);
    const auto raw = answers("_scpi-raw._tcp.local");
    ASSERT_EQ(raw.size(), 1u);
    EXPECT_EQ(readServiceResponse(raw[0], "").at(0).resources,
              std::vector<std::string>{"TCPIP0::10.0.0.3::5025::SOCKET"});
    EXPECT_TRUE(answers("_http._tcp.local").empty());
    EXPECT_TRUE(answers("_lxi._tcp.local").empty()) << "the simulator has no web service";
    EXPECT_TRUE(answers("_vxi-11._tcp.local", true).empty()) << "answers are not questions";

    // One instrument served at two addresses: two instances, told apart.
    Site again = first;
    again.address = "10.0.0.4";
    const auto twice = answers("_vxi-11._tcp.local", false, {first, again});
    ASSERT_EQ(twice.size(), 2u);
    EXPECT_EQ(readServiceResponse(twice[0], "").at(0).instanceName, "Scope @10.0.0.2");
    EXPECT_EQ(readServiceResponse(twice[1], "").at(0).instanceName, "Scope @10.0.0.4");
}

}  // namespace
}  // namespace braxcfg::visa::lan::sim
