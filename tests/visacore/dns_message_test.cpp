// mDNS messages: what the querier sends, what it reads back (compressed
// names included, a pointer loop refused), and the services the answers
// name. Malformed packets in general are the mdns fuzz target's.
#include "visacore/lan/dns_message.h"

#include <gtest/gtest.h>

#include "visacore/lan/mdns_services.h"

namespace braxcfg::visa::lan {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(DnsMessage, QueryMatchesHandEncodedBytes) {
    EXPECT_EQ(dns::encodeQuery(0x1234, {{"_lxi._tcp.local", dns::kPtr}}, true),
              (Bytes{0x12, 0x34, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0,                                  //
                     4, '_', 'l', 'x', 'i', 4, '_', 't', 'c', 'p', 5, 'l', 'o', 'c', 'a', 'l', 0,  //
                     0, 12, 0x80, 1}));
}

// A response as responders write it, names compressed against earlier
// ones; then the same with a pointer that points at itself.
TEST(DnsMessage, FollowsCompressionPointersAndRefusesALoop) {
    const Bytes good{0, 0, 0x84, 0, 0, 0, 0, 2, 0, 0, 0, 0,
                     // @12: _vxi-11._tcp.local PTR -> "Box" + @12
                     7, '_', 'v', 'x', 'i', '-', '1', '1', 4, '_', 't', 'c', 'p',  //
                     5, 'l', 'o', 'c', 'a', 'l', 0,                                //
                     0, 12, 0, 1, 0, 0, 0, 120, 0, 6, 3, 'B', 'o', 'x', 0xC0, 12,
                     // "Box" + @12 again through a pointer to the PTR data (@42): SRV -> port 1024, host @42
                     0xC0, 42, 0, 33, 0, 1, 0, 0, 0, 120, 0, 8, 0, 0, 0, 0, 4, 0, 0xC0, 42};
    dns::Message parsed;
    ASSERT_TRUE(dns::parseMessage(good, parsed));
    ASSERT_EQ(parsed.records.size(), 2u);
    EXPECT_EQ(parsed.records[0].target, "Box._vxi-11._tcp.local");
    EXPECT_EQ(parsed.records[1].name, "Box._vxi-11._tcp.local");
    EXPECT_EQ(parsed.records[1].port, 1024);

    Bytes loop = good;
    loop[49] = 48;
    EXPECT_FALSE(dns::parseMessage(loop, parsed));
}

// Complete answers (SRV and address) from the simulator's responder are read
// back in the discovery integration test (and checked to parse by the mdns
// fuzz target); here what a reader fills in for a partial one.
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
        // Without address record: the sender's address.
        {response("_hislip._tcp.local", 4881, true, false), "10.0.0.1", {"TCPIP0::10.0.0.1::hislip0,4881::INSTR"}},
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
