// The probe against scripted loopback servers: every outcome of each
// protocol, the deadline on every silent path, and cancelling.
#include "visacore/lan/lan_probe.h"

#include <gtest/gtest.h>
#include <netdb.h>

#include <chrono>
#include <future>
#include <thread>

#include "fake_servers.h"

namespace braxcfg::visa::lan {
namespace {

using namespace std::chrono_literals;
using test::FakeServer;
using test::PortmapScript;
using Clock = std::chrono::steady_clock;

// Slack for a loaded CI machine; what matters is that a silent path ends
// near its budget instead of the kernel's minutes.
constexpr auto kBudgetMargin = 500ms;

// Names of the test world: "scope.test" is this machine, all else unknown.
int testResolver(const std::string& host, std::vector<SocketAddress>& out) {
    if (host != "scope.test") return EAI_NONAME;
    out.push_back(SocketAddress::ipv4(0x7F000001, 0));
    return 0;
}

LanProbeOptions optionsFor(std::uint16_t portmapperPort, std::chrono::milliseconds budget = 2000ms) {
    LanProbeOptions options;
    options.portmapperPort = portmapperPort;
    options.budget = budget;
    options.resolver = testResolver;
    return options;
}

std::string hislipResource(std::uint16_t port, const char* host = "127.0.0.1") {
    return std::string("TCPIP0::") + host + "::hislip0," + std::to_string(port) + "::INSTR";
}

std::string socketResource(std::uint16_t port) { return "TCPIP0::127.0.0.1::" + std::to_string(port) + "::SOCKET"; }

test::CoreScript instrumentWithDevices() {
    test::CoreScript script;
    script.errors = {{"inst0", 0},  {"gpib0,2", 0}, {"inst9", 3},   {"inst-x", 1},
                     {"gpib0,5", 21}, {"busy0", 9},  {"locked0", 11}, {"odd0", 4}};
    script.unknownError = 3;
    return script;
}

struct Vxi11Case {
    const char* what;
    const char* device;
    PortmapScript::Reply portmap = PortmapScript::Reply::Port;
    enum class Target { Core, Zero, Stale, NoPortmapper } target = Target::Core;
    ViStatus expected = VI_SUCCESS;
};

TEST(LanProbe, Vxi11Outcomes) {
    using Reply = PortmapScript::Reply;
    using Target = Vxi11Case::Target;
    const Vxi11Case cases[] = {
        {"default device found", "inst0"},
        {"gateway address found", "gpib0,2"},
        {"device not accessible", "inst9", Reply::Port, Target::Core, VI_ERROR_RSRC_NFOUND},
        {"syntax error", "inst-x", Reply::Port, Target::Core, VI_ERROR_RSRC_NFOUND},
        {"invalid address", "gpib0,5", Reply::Port, Target::Core, VI_ERROR_RSRC_NFOUND},
        {"out of resources", "busy0", Reply::Port, Target::Core, VI_ERROR_RSRC_BUSY},
        {"locked by another link", "locked0", Reply::Port, Target::Core, VI_ERROR_RSRC_LOCKED},
        {"unexpected create_link error", "odd0", Reply::Port, Target::Core, VI_ERROR_IO},
        {"program not registered (port 0)", "inst0", Reply::Port, Target::Zero, VI_ERROR_RSRC_NFOUND},
        {"stale registration", "inst0", Reply::Port, Target::Stale, VI_ERROR_RSRC_NFOUND},
        {"no portmapper", "inst0", Reply::Port, Target::NoPortmapper, VI_ERROR_RSRC_NFOUND},
        {"program unavailable", "inst0", Reply::ProgramUnavailable, Target::Core, VI_ERROR_RSRC_NFOUND},
        {"call denied", "inst0", Reply::Denied, Target::Core, VI_ERROR_IO},
        {"reply to another call", "inst0", Reply::WrongXid, Target::Core, VI_ERROR_IO},
        {"not an RPC server", "inst0", Reply::Garbage, Target::Core, VI_ERROR_IO},
        {"portmapper hangs up", "inst0", Reply::Close, Target::Core, VI_ERROR_CONN_LOST},
    };
    for (const Vxi11Case& c : cases) {
        SCOPED_TRACE(c.what);
        auto record = std::make_shared<test::CoreRecord>();
        FakeServer core(test::vxi11Core(instrumentWithDevices(), record));
        PortmapScript script{c.portmap, 0};
        if (c.target == Target::Core) script.port = core.port();
        if (c.target == Target::Stale) script.port = test::closedPort();
        FakeServer portmapper(test::portmapper(script));

        const std::string resource = std::string("TCPIP0::127.0.0.1::") + c.device + "::INSTR";
        const std::uint16_t portmapperPort = c.target == Target::NoPortmapper ? test::closedPort() : portmapper.port();
        EXPECT_EQ(probeLanResource(resource, optionsFor(portmapperPort)), c.expected);

        std::lock_guard lock(record->mutex);
        if (c.portmap == Reply::Port && c.target == Target::Core) {
            EXPECT_EQ(record->devices, std::vector<std::string>{c.device});
        }
        EXPECT_EQ(record->destroyed, c.expected == VI_SUCCESS ? 1 : 0) << "a link is closed exactly when it was made";
        EXPECT_FALSE(record->lockRequested);
    }
}

TEST(LanProbe, Vxi11ReadsFragmentedRepliesWithVerifier) {
    auto record = std::make_shared<test::CoreRecord>();
    test::CoreScript script = instrumentWithDevices();
    script.fragmentedReply = true;
    FakeServer core(test::vxi11Core(script, record));
    FakeServer portmapper(test::portmapper({PortmapScript::Reply::Port, core.port()}));
    EXPECT_EQ(probeLanResource("TCPIP::127.0.0.1::INSTR", optionsFor(portmapper.port())), VI_SUCCESS);
    EXPECT_EQ(probeLanResource("TCPIP::127.0.0.1::inst9::INSTR", optionsFor(portmapper.port())),
              VI_ERROR_RSRC_NFOUND);
}

TEST(LanProbe, HislipOutcomes) {
    using Reply = test::HislipScript::Reply;
    struct Case {
        const char* what;
        test::HislipScript script;
        ViStatus expected;
    };
    const Case cases[] = {
        {"initialize response", {Reply::InitializeResponse}, VI_SUCCESS},
        {"fatal error: invalid initialization", {Reply::FatalError, 3}, VI_ERROR_RSRC_NFOUND},
        {"fatal error: unidentified", {Reply::FatalError, 0}, VI_ERROR_RSRC_NFOUND},
        {"fatal error: too many clients", {Reply::FatalError, 4}, VI_ERROR_RSRC_BUSY},
        {"closes without answering", {Reply::Close}, VI_ERROR_RSRC_NFOUND},
        {"not a HiSLIP server", {Reply::Garbage}, VI_ERROR_RSRC_NFOUND},
        {"unexpected message type", {Reply::OtherMessage}, VI_ERROR_IO},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        auto record = std::make_shared<test::HislipRecord>();
        FakeServer server(test::hislipServer(c.script, record));
        EXPECT_EQ(probeLanResource(hislipResource(server.port()), optionsFor(test::closedPort())), c.expected);
        std::lock_guard lock(record->mutex);
        EXPECT_EQ(record->subAddresses, std::vector<std::string>{"hislip0"}) << "the port is not part of it";
    }
    EXPECT_EQ(probeLanResource(hislipResource(test::closedPort()), optionsFor(test::closedPort())),
              VI_ERROR_RSRC_NFOUND);
}

TEST(LanProbe, SocketConnectsAndSendsNothing) {
    auto received = std::make_shared<std::atomic<std::size_t>>(0);
    {
        FakeServer server(test::rawListener(received));
        EXPECT_EQ(probeLanResource(socketResource(server.port()), optionsFor(test::closedPort())), VI_SUCCESS);
        for (int i = 0; i < 100 && server.accepted() == 0; ++i) std::this_thread::sleep_for(10ms);
        ASSERT_EQ(server.accepted(), 1);
    }
    EXPECT_EQ(received->load(), 0u);
    EXPECT_EQ(probeLanResource(socketResource(test::closedPort()), optionsFor(test::closedPort())),
              VI_ERROR_RSRC_NFOUND);
}

TEST(LanProbe, ResolvesNamesThroughTheResolverPreferringIpv4) {
    auto record = std::make_shared<test::HislipRecord>();
    FakeServer server(test::hislipServer({}, record));
    LanProbeOptions options = optionsFor(test::closedPort());
    int calls = 0;
    options.resolver = [&calls](const std::string& host, std::vector<SocketAddress>& out) {
        ++calls;
        if (host != "scope.test") return EAI_NONAME;
        SocketAddress v6;
        v6.storage.ss_family = AF_INET6;
        v6.length = sizeof(sockaddr_in6);
        reinterpret_cast<sockaddr_in6*>(&v6.storage)->sin6_addr = in6addr_loopback;
        out = {v6, SocketAddress::ipv4(0x7F000001, 0)};  // the server listens on IPv4 only
        return 0;
    };
    EXPECT_EQ(probeLanResource(hislipResource(server.port(), "scope.test"), options), VI_SUCCESS);
    EXPECT_EQ(probeLanResource(hislipResource(server.port(), "nohost.test"), options), VI_ERROR_MACHINE_NAVAIL);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(probeLanResource(hislipResource(server.port()), options), VI_SUCCESS);
    EXPECT_EQ(calls, 2) << "a numeric address needs no resolver";
}

TEST(LanProbe, RefusesWhatIsNotALanResource) {
    const LanProbeOptions options = optionsFor(test::closedPort());
    EXPECT_EQ(probeLanResource("GPIB0::24::INSTR", options), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(probeLanResource("TCPIP0::host::0::SOCKET", options), VI_ERROR_INV_RSRC_NAME);
}

// Servers that never answer at some step. Each returns VI_ERROR_TMO within
// its budget plus the margin.
TEST(LanProbe, EverySilentStepEndsAtTheDeadline) {
    constexpr auto budget = 300ms;
    auto coreRecord = std::make_shared<test::CoreRecord>();
    test::CoreScript silentScript;
    silentScript.silent = true;
    FakeServer silentCore(test::vxi11Core(silentScript, coreRecord));
    FakeServer portmapperToSilentCore(test::portmapper({PortmapScript::Reply::Port, silentCore.port()}));
    FakeServer silentPortmapper(test::portmapper({PortmapScript::Reply::Silent, 0}));
    auto hislipRecord = std::make_shared<test::HislipRecord>();
    FakeServer silentHislip(test::hislipServer({test::HislipScript::Reply::Silent}, hislipRecord));
    test::SilentListener droppedSyns;

    struct Case {
        const char* what;
        std::string resource;
        std::uint16_t portmapperPort;
        Resolver resolver = testResolver;
    };
    const Case cases[] = {
        {"portmapper drops the connect", "TCPIP0::127.0.0.1::inst0::INSTR", droppedSyns.port()},
        {"portmapper never answers", "TCPIP0::127.0.0.1::inst0::INSTR", silentPortmapper.port()},
        {"core channel never answers", "TCPIP0::127.0.0.1::inst0::INSTR", portmapperToSilentCore.port()},
        {"HiSLIP drops the connect", hislipResource(droppedSyns.port()), 0},
        {"HiSLIP never answers", hislipResource(silentHislip.port()), 0},
        {"SOCKET drops the connect", socketResource(droppedSyns.port()), 0},
        {"name service hangs", "TCPIP0::slow.test::inst0::INSTR", 0,
         [](const std::string&, std::vector<SocketAddress>&) {
             std::this_thread::sleep_for(3s);
             return EAI_AGAIN;
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        LanProbeOptions options = optionsFor(c.portmapperPort, budget);
        options.resolver = c.resolver;
        const auto start = Clock::now();
        EXPECT_EQ(probeLanResource(c.resource, options), VI_ERROR_TMO);
        EXPECT_LT(Clock::now() - start, budget + kBudgetMargin);
    }
}

TEST(LanProbe, CancelEndsAWaitAtOnce) {
    test::SilentListener droppedSyns;
    const auto hangingResolver = [](const std::string&, std::vector<SocketAddress>&) {
        std::this_thread::sleep_for(3s);
        return EAI_AGAIN;
    };
    struct Case {
        const char* what;
        std::string resource;
        Resolver resolver;
        bool cancelFirst;
    };
    const Case cases[] = {
        {"during connect", socketResource(droppedSyns.port()), testResolver, false},
        {"during name resolution", "TCPIP0::slow.test::inst0::INSTR", hangingResolver, false},
        {"before the probe starts", socketResource(droppedSyns.port()), testResolver, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CancelToken cancel;
        LanProbeOptions options = optionsFor(test::closedPort(), 10s);
        options.cancel = &cancel;
        options.resolver = c.resolver;
        if (c.cancelFirst) cancel.cancel();
        const auto start = Clock::now();
        auto result = std::async(std::launch::async, [&] { return probeLanResource(c.resource, options); });
        if (!c.cancelFirst) {
            ASSERT_EQ(result.wait_for(100ms), std::future_status::timeout) << "the probe ended before the cancel";
            cancel.cancel();
        }
        EXPECT_EQ(result.get(), VI_ERROR_ABORT);
        EXPECT_LT(Clock::now() - start, 100ms + kBudgetMargin);
    }
}

}  // namespace
}  // namespace braxcfg::visa::lan
