// Discovery and the LAN commands of the tool against the simulator, inside
// the private network namespace: a veth pair gives the broadcast and
// multicast a real interface, and nothing leaves the namespace.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "child_process.h"
#include "store_files.h"
#include "temp_store.h"
#include "tool_run.h"
#include "visacore/lan/lan_discovery.h"
#include "visacore/lan/local_interfaces.h"
#include "visacore/lan/sim/simulator.h"

namespace braxcfg::visa::lan {
namespace {

using namespace std::chrono_literals;

constexpr const char* kLab = "[TCPIP0::10.77.0.10::inst0::INSTR]\n"
                             "Identification = Tolvane,Scope 4,4004,5.5\n"
                             "Protocols = VXI-11 HiSLIP\n"
                             "[TCPIP0::10.77.0.11::5025::SOCKET]\n"
                             "Identification = Tolvane,Source 9,909,2.0\n"
                             "MdnsName = Bench source\n";

class LanDiscovery : public ::testing::Test {
protected:
    void SetUp() override {
        // No duplicate address detection: the link-local IPv6 addresses are
        // usable as soon as the links are up.
        ASSERT_EQ(std::system("ip link add v0 type veth peer name v1 && ip addr add 10.77.0.1/24 brd + dev v0 && "
                              "ip addr add 10.77.0.10/24 dev v0 && ip addr add 10.77.0.11/24 dev v0 && "
                              "sysctl -qw net.ipv6.conf.v0.accept_dad=0 net.ipv6.conf.v1.accept_dad=0 && "
                              "ip link set v0 up && ip link set v1 up"),
                  0)
            << "cannot make the veth pair";
        // The kernel gives the links their IPv6 addresses a moment after
        // they come up; mDNS over IPv6 needs them on both sides.
        const auto ready = [] {
            int withIpv6 = 0;
            for (const LocalInterface& intf : localInterfaces())
                withIpv6 += (intf.name == "v0" || intf.name == "v1") && intf.hasIpv6;
            return withIpv6 == 2;
        };
        for (int i = 0; i < 500 && !ready(); ++i) std::this_thread::sleep_for(10ms);
        ASSERT_TRUE(ready()) << "the veth pair got no IPv6 link-local addresses";
    }
    void TearDown() override { std::system("ip link del v0"); }

    void serve(bool mdns) {
        std::string error;
        sim::SimulatorOptions options;
        options.mdns = mdns;
        ASSERT_TRUE(simulator_.start(sim::parseLab(kLab, "lab.ini"), options, error)) << error;
    }

    static std::vector<DiscoveredInstrument> discover(DiscoveryOptions options = {}) {
        options.timeout = 1000ms;
        return discoverLanInstruments(options);
    }

    sim::Simulator simulator_;
};

TEST_F(LanDiscovery, BothMethodsAndEachInstrumentOnce) {
    serve(true);
    const auto found = discover();
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].address, "10.77.0.10");
    EXPECT_EQ(found[0].methods, kFoundByVxi11Broadcast | kFoundByMdns);
    EXPECT_EQ(found[0].name, "Scope 4");
    EXPECT_EQ(found[0].resources,
              (std::vector<std::string>{"TCPIP0::10.77.0.10::inst0::INSTR", "TCPIP0::10.77.0.10::hislip0::INSTR"}));
    EXPECT_EQ(found[0].identifyStatus, VI_SUCCESS);
    EXPECT_EQ(found[0].identification, "Tolvane,Scope 4,4004,5.5");
    // No VXI-11 there: only mDNS knows it.
    EXPECT_EQ(found[1].address, "10.77.0.11");
    EXPECT_EQ(found[1].methods, unsigned{kFoundByMdns});
    EXPECT_EQ(found[1].name, "Bench source");
    EXPECT_EQ(found[1].resources, std::vector<std::string>{"TCPIP0::10.77.0.11::5025::SOCKET"});
    EXPECT_EQ(found[1].identification, "Tolvane,Source 9,909,2.0");
}

TEST_F(LanDiscovery, BroadcastAloneWithoutMdnsAnswers) {
    serve(false);
    const auto found = discover();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].address, "10.77.0.10");
    EXPECT_EQ(found[0].methods, unsigned{kFoundByVxi11Broadcast});
    EXPECT_EQ(found[0].resources, std::vector<std::string>{"TCPIP0::10.77.0.10::inst0::INSTR"});
}

TEST_F(LanDiscovery, MdnsOverIpv6Alone) {
    serve(true);
    DiscoveryOptions options;
    options.broadcast = false;
    options.mdnsOverIpv4 = false;
    const auto found = discover(options);
    ASSERT_EQ(found.size(), 2u);
    // The answers' A records name the instruments, whichever family carried them.
    EXPECT_EQ(found[0].address, "10.77.0.10");
    EXPECT_EQ(found[0].methods, unsigned{kFoundByMdns});
    EXPECT_EQ(found[1].address, "10.77.0.11");
}

TEST_F(LanDiscovery, BroadcastAnsweredFromEachAddress) {
    // Two VXI-11 instruments behind one portmapper socket: each reply must
    // come from its instrument's own address.
    std::string error;
    ASSERT_TRUE(simulator_.start(sim::parseLab("[TCPIP0::10.77.0.10::INSTR]\nIdentification = A,One,1,1\n"
                                               "[TCPIP0::10.77.0.11::INSTR]\nIdentification = A,Two,2,1\n",
                                               "lab.ini"),
                                 {}, error))
        << error;
    DiscoveryOptions options;
    options.mdns = false;
    const auto found = discover(options);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].identification, "A,One,1,1");
    EXPECT_EQ(found[1].identification, "A,Two,2,1");
    EXPECT_EQ(found[1].resources, std::vector<std::string>{"TCPIP0::10.77.0.11::inst0::INSTR"});
}

TEST_F(LanDiscovery, SilentOrCancelledGivesNothing) {
    EXPECT_TRUE(discover().empty()) << "silent network, at the deadline";
    serve(true);
    CancelToken cancel;
    cancel.cancel();
    DiscoveryOptions options;
    options.cancel = &cancel;
    EXPECT_TRUE(discover(options).empty()) << "cancelled before any answer";
}

TEST_F(LanDiscovery, ToolIdentifyOutcomes) {
    serve(false);
    const struct { std::vector<std::string> args; int exitCode; std::string out, err; } cases[] = {
        {{"TCPIP0::10.77.0.10::inst0::INSTR"}, 0, "Tolvane,Scope 4,4004,5.5\n", ""},
        {{"TCPIP0::10.77.0.10::hislip0::INSTR"}, 0, "Tolvane,Scope 4,4004,5.5\n", ""},
        {{"TCPIP::10.77.0.11::5025::SOCKET", "--timeout", "1500"}, 0, "Tolvane,Source 9,909,2.0\n", ""},
        {{"TCPIP0::10.77.0.10::inst5::INSTR"}, 1, "",
         "braxcfg: TCPIP0::10.77.0.10::inst5::INSTR: VI_ERROR_RSRC_NFOUND (0xBFFF0011): Insufficient location "
         "information or the requested device or resource is not present in the system.\n"},
        {{"TCPIP0::10.77.0.10::INSTR", "--timeout", "0"}, 2, "",
         "braxcfg: --timeout takes milliseconds from 1 to 60000\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args[0]);
        std::vector<std::string> args{"identify"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const test::ToolRun run = test::runTool(args);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_EQ(run.out, c.out);
        EXPECT_EQ(run.err, c.err);
    }
}

// `simulate` serves until SIGTERM, and `discover` in the same namespace
// lists what it serves.
TEST_F(LanDiscovery, ToolSimulateUntilStopped) {
    const std::string lab = test::testOutputDir("integration") + "/lab-" + std::to_string(getpid()) + ".ini";
    std::ofstream(lab) << kLab;
    test::Child simulate({BRAXCFG_TOOL_PATH, "simulate", lab, "--mdns"});
    // It says "serving" once every socket is bound.
    std::string said;
    for (std::string line; said.find("serving") == std::string::npos && !(line = simulate.output(5s, true)).empty();)
        said += line;
    EXPECT_NE(said.find("VXI-11  10.77.0.10 core port"), std::string::npos) << said;

    const test::ToolRun run = test::runTool({"discover", "--timeout", "1"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.out.find("10.77.0.10  (vxi11-broadcast, mdns)  \"Scope 4\"\n"
                           "  identification: Tolvane,Scope 4,4004,5.5\n"),
              std::string::npos)
        << run.out;
    EXPECT_EQ(simulate.stop(), 0);
    std::remove(lab.c_str());
}

TEST_F(LanDiscovery, ToolDiscoverJsonAddsWhatItFoundToATcpipInterface) {
    serve(true);
    const test::ScratchStoreFiles store(test::testOutputDir("integration") + "/lan-add-" + std::to_string(getpid()) +
                                        ".db");
    const auto tool = [&](const std::vector<std::string>& args) { return test::runToolOn(store.path(), args); };
    ASSERT_EQ(tool({"import", BRAXCFG_TEST_FIXTURES "/setup_every_type.reg"}).exitCode, 0);
    ASSERT_EQ(tool({"setup", "INTF5"}).exitCode, 0);  // TCPIP0
    EXPECT_EQ(tool({"discover", "--timeout", "1", "--add", "INTF0"}).err,
              "braxcfg: INTF0 is not a TCPIP interface\n");
    const test::ToolRun added = tool({"discover", "--timeout", "1", "--json", "--add", "INTF5"});
    EXPECT_EQ(added.exitCode, 0);
    EXPECT_EQ(added.err, "added TCPIP0::10.77.0.10::inst0::INSTR to INTF5\n"
                         "added TCPIP0::10.77.0.10::hislip0::INSTR to INTF5\n"
                         "added TCPIP0::10.77.0.11::5025::SOCKET to INTF5\n");
    // The report stays off the JSON.
    const auto list = nlohmann::json::parse(added.out);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]["address"], "10.77.0.10");
    EXPECT_EQ(list[0]["methods"], nlohmann::json({"vxi11-broadcast", "mdns"}));
    EXPECT_EQ(list[0]["identification"], "Tolvane,Scope 4,4004,5.5");
    EXPECT_EQ(list[1]["resources"], nlohmann::json({"TCPIP0::10.77.0.11::5025::SOCKET"}));
    const std::string listed = tool({"devices", "INTF5"}).out;
    for (const char* entry : {"TCPIP0::10.77.0.10::inst0\n  TCPIP0::10.77.0.10::inst0::INSTR\n",
                              "TCPIP0::10.77.0.10::hislip0\n  TCPIP0::10.77.0.10::hislip0::INSTR\n",
                              "TCPIP0::10.77.0.11::5025\n  TCPIP0::10.77.0.11::5025::SOCKET\n"})
        EXPECT_NE(listed.find(entry), std::string::npos) << entry << " in\n" << listed;
}

}  // namespace
}  // namespace braxcfg::visa::lan
