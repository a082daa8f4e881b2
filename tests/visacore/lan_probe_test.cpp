// The probe against scripted loopback servers: each protocol's outcomes,
// the deadline on every kind of wait, and cancelling.
#include "visacore/lan/lan_probe.h"

#include <gtest/gtest.h>
#include <netdb.h>

#include <future>
#include <thread>

#include "fake_servers.h"

namespace braxcfg::visa::lan {
namespace {

using namespace std::chrono_literals;
using namespace braxcfg::test;
using PR = PortmapScript::Reply;
using HR = HislipScript::Reply;
using Clock = std::chrono::steady_clock;

// Slack for a loaded machine: a silent path must end near its budget, not
// after the kernel's minutes.
constexpr auto kMargin = 500ms;

// The test world's names: "scope.test" is this machine, first by its IPv6
// address (where nothing listens: the probe must prefer IPv4), anything else
// is unknown. Numeric addresses must never come here.
int testResolver(const std::string& host, std::vector<SocketAddress>& out) {
    if (host != "scope.test") return EAI_NONAME;
    SocketAddress v6{.length = sizeof(sockaddr_in6)};
    v6.storage.ss_family = AF_INET6;
    reinterpret_cast<sockaddr_in6*>(&v6.storage)->sin6_addr = in6addr_loopback;
    out = {v6, SocketAddress::ipv4(0x7F000001, 0)};
    return 0;
}

int hangingResolver(const std::string&, std::vector<SocketAddress>&) {
    std::this_thread::sleep_for(3s);
    return EAI_AGAIN;
}

LanProbeOptions options(std::uint16_t portmapperPort = closedPort(), std::chrono::milliseconds budget = 2000ms,
                        Resolver resolver = testResolver) {
    return {.budget = budget, .resolver = std::move(resolver), .portmapperPort = portmapperPort};
}

std::string lan(const std::string& rest, const char* host = "127.0.0.1") {
    return std::string("TCPIP0::") + host + "::" + rest;
}
std::string hislip(std::uint16_t port, const char* host = "127.0.0.1") {
    return lan("hislip0," + std::to_string(port) + "::INSTR", host);
}
std::string socketAt(std::uint16_t port, const char* host = "127.0.0.1") {
    return lan(std::to_string(port) + "::SOCKET", host);
}

// A link made, a device not there and a withdrawn registration are the
// integration test's, against rpcbind and an rpcgen server.
TEST(LanProbe, Vxi11Outcomes) {
    // linkError: create_link's answer.
    const struct { const char* what; const char* device; std::int32_t linkError; ViStatus expected;
                   PR portmap = PR::Port; bool portmapperUp = true; } cases[] = {
        {"out of resources", "busy0", 9, VI_ERROR_RSRC_BUSY},
        {"locked by another link", "locked0", 11, VI_ERROR_RSRC_LOCKED},
        {"unexpected create_link error", "odd0", 4, VI_ERROR_IO},
        {"no portmapper", "inst0", 0, VI_ERROR_RSRC_NFOUND, PR::Port, false},
        {"program unavailable", "inst0", 0, VI_ERROR_RSRC_NFOUND, PR::ProgramUnavailable},
        {"call denied", "inst0", 0, VI_ERROR_IO, PR::Denied},
        {"portmapper hangs up", "inst0", 0, VI_ERROR_CONN_LOST, PR::Close},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        auto record = std::make_shared<CoreRecord>();
        {
            FakeServer core(vxi11Core({.unknownError = c.linkError}, record));
            FakeServer portmapper(test::portmapper({c.portmap, core.port()}));
            const auto portmapperPort = c.portmapperUp ? portmapper.port() : closedPort();
            EXPECT_EQ(probeLanResource(lan(std::string(c.device) + "::INSTR"), options(portmapperPort)), c.expected);
        }
        const bool reachesCore = c.portmap == PR::Port && c.portmapperUp;
        EXPECT_EQ(record->devices, reachesCore ? std::vector<std::string>{c.device} : std::vector<std::string>{});
        EXPECT_EQ(record->destroyed, 0) << "no link was made to close";
    }
}

// A server that answers is the resource test's (tcpip).
TEST(LanProbe, HislipOutcomes) {
    const struct { const char* what; HislipScript script; ViStatus expected; } cases[] = {
        {"fatal error: invalid initialization", {HR::FatalError, 3}, VI_ERROR_RSRC_NFOUND},
        {"fatal error: too many clients", {HR::FatalError, 4}, VI_ERROR_RSRC_BUSY},
        {"closes without answering", {HR::Close}, VI_ERROR_RSRC_NFOUND},
        {"unexpected message type", {HR::OtherMessage}, VI_ERROR_IO},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        auto record = std::make_shared<HislipRecord>();
        {
            FakeServer server(hislipServer(c.script, record));
            EXPECT_EQ(probeLanResource(hislip(server.port()), options()), c.expected);
        }
        EXPECT_EQ(record->subAddresses, std::vector<std::string>{"hislip0"}) << "the port is not part of it";
    }
}

// By name: the resolver is asked, and its IPv4 address taken.
TEST(LanProbe, SocketConnectsAndSendsNothing) {
    auto received = std::make_shared<std::atomic<std::size_t>>(0);
    {
        FakeServer server(rawListener(received));
        EXPECT_EQ(probeLanResource(socketAt(server.port(), "scope.test"), options()), VI_SUCCESS);
        for (int i = 0; i < 100 && server.accepted() == 0; ++i) std::this_thread::sleep_for(10ms);
        ASSERT_EQ(server.accepted(), 1);
    }
    EXPECT_EQ(*received, 0u);
}

// Without a server, with one that never answers, or cancelled: the probe
// ends at once, at its deadline or at the cancel, never after the kernel's
// minutes. Every protocol connects and reads through the same link, so
// each wait is tried once. An unknown host is the integration test's.
TEST(LanProbe, EndsByTheDeadlineOrTheCancel) {
    constexpr auto budget = 300ms, cancelAfter = 100ms;
    enum Cancel { Never, Before, During };  // During: `cancelAfter` into the probe
    FakeServer silentPortmapper(portmapper({PR::Silent}));
    SilentListener droppedSyns;
    const struct { const char* what; std::string resource; ViStatus expected; std::uint16_t portmapperPort = 0;
                   Resolver resolver = testResolver; Cancel cancel = Never; } cases[] = {
        {"refused: the host is there", hislip(closedPort()), VI_ERROR_RSRC_NFOUND},
        {"connect dropped", socketAt(droppedSyns.port()), VI_ERROR_TMO},
        {"portmapper never answers", lan("inst0::INSTR"), VI_ERROR_TMO, silentPortmapper.port()},
        {"name service hangs", lan("inst0::INSTR", "slow.test"), VI_ERROR_TMO, 0, hangingResolver},
        {"cancelled during connect", socketAt(droppedSyns.port()), VI_ERROR_ABORT, 0, testResolver, During},
        {"cancelled during name resolution", lan("inst0::INSTR", "slow.test"), VI_ERROR_ABORT, 0, hangingResolver,
         During},
        {"cancelled before the probe starts", socketAt(droppedSyns.port()), VI_ERROR_ABORT, 0, testResolver, Before},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        CancelToken cancel;
        LanProbeOptions opts = options(c.portmapperPort, c.cancel == Never ? budget : 10s, c.resolver);
        opts.cancel = &cancel;
        if (c.cancel == Before) cancel.cancel();
        const auto start = Clock::now();
        auto result = std::async(std::launch::async, [&] { return probeLanResource(c.resource, opts); });
        if (c.cancel == During) {
            ASSERT_EQ(result.wait_for(cancelAfter), std::future_status::timeout) << "the probe ended before the cancel";
            cancel.cancel();
        }
        EXPECT_EQ(result.get(), c.expected);
        EXPECT_LT(Clock::now() - start, (c.cancel == Never ? budget : cancelAfter) + kMargin);
    }
}

}  // namespace
}  // namespace braxcfg::visa::lan
