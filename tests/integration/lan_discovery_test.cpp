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

// Two VXI-11 instruments behind the one portmapper socket (each reply must
// come from its own address) and one only mDNS knows.
constexpr const char* kLab = "[TCPIP0::10.77.0.10::inst0::INSTR]\n"
                             "Identification = Tolvane,Scope 4,4004,5.5\n"
                             "Protocols = VXI-11 HiSLIP\n"
                             "[TCPIP0::10.77.0.11::5025::SOCKET]\n"
                             "Identification = Tolvane,Source 9,909,2.0\n"
                             "MdnsName = Bench source\n"
                             "[TCPIP0::10.77.0.12::INSTR]\n"
                             "Identification = Tolvane,Meter 2,22,1.0\n";

class LanDiscovery : public ::testing::Test {
protected:
    void SetUp() override {
        // No duplicate address detection: the link-local IPv6 addresses are
        // usable as soon as the links are up.
        ASSERT_EQ(std::system("ip link add v0 type veth peer name v1 && ip addr add 10.77.0.1/24 brd + dev v0 && "
                              "for a in 10 11 12; do ip addr add 10.77.0.$a/24 dev v0 || exit 1; done && "
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
};

// An instrument on one line: address, the methods that found it, name,
// identification and resources.
std::string line(const DiscoveredInstrument& found) {
    std::string text = found.address + ((found.methods & kFoundByVxi11Broadcast) != 0 ? " broadcast" : "") +
                       ((found.methods & kFoundByMdns) != 0 ? " mdns" : "") + " '" + found.name + "' " +
                       found.identification;
    for (const std::string& resource : found.resources) text += " " + resource;
    return text;
}

// Both methods at once are the discover command's rows below; an answer
// discovery made up (its own query read back) would show in every row.
TEST_F(LanDiscovery, EachInstrumentOnceWithTheMethodsThatFoundIt) {
    const std::string scope = "Tolvane,Scope 4,4004,5.5 TCPIP0::10.77.0.10::inst0::INSTR";
    const std::string hislip = " TCPIP0::10.77.0.10::hislip0::INSTR";
    const std::string source =
        "10.77.0.11 mdns 'Bench source' Tolvane,Source 9,909,2.0 TCPIP0::10.77.0.11::5025::SOCKET";
    const std::string meter = "Tolvane,Meter 2,22,1.0 TCPIP0::10.77.0.12::inst0::INSTR";
    const struct { const char* what; bool mdns; std::vector<std::string> found;
                   bool broadcast = true, mdnsOverIpv4 = true, cancelled = false; } cases[] = {
        {"broadcast alone", false, {"10.77.0.10 broadcast '' " + scope, "10.77.0.12 broadcast '' " + meter}},
        // The answers' A records name the instruments, whichever family carried them.
        {"mDNS over IPv6 alone", true,
         {"10.77.0.10 mdns 'Scope 4' " + scope + hislip, source, "10.77.0.12 mdns 'Meter 2' " + meter}, false, false},
        {"cancelled before any answer", true, {}, true, true, true},
    };
    CancelToken cancelled;
    cancelled.cancel();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        sim::Simulator simulator;
        std::string error;
        sim::SimulatorOptions served;
        served.mdns = c.mdns;
        ASSERT_TRUE(simulator.start(sim::parseLab(kLab, "lab.ini"), served, error)) << error;
        DiscoveryOptions options;
        options.timeout = 1000ms;
        options.broadcast = c.broadcast;
        options.mdnsOverIpv4 = c.mdnsOverIpv4;
        options.cancel = c.cancelled ? &cancelled : nullptr;
        std::vector<std::string> found;
        for (const DiscoveredInstrument& instrument : discoverLanInstruments(options))
            found.push_back(line(instrument));
        EXPECT_EQ(found, c.found);
    }
}

// The commands as a user runs them: `simulate` serves until SIGTERM, and the
// others, in the same namespace, reach what it serves.
TEST_F(LanDiscovery, ToolCommandsReachWhatSimulateServes) {
    const std::string lab = test::testOutputDir("integration") + "/lab-" + std::to_string(getpid()) + ".ini";
    std::ofstream(lab) << kLab;
    test::Child simulate({BRAXCFG_TOOL_PATH, "simulate", lab, "--mdns"});
    // It says "serving" once every socket is bound.
    std::string said;
    for (std::string line; said.find("serving") == std::string::npos && !(line = simulate.output(5s, true)).empty();)
        said += line;
    EXPECT_NE(said.find("VXI-11  10.77.0.10 core port"), std::string::npos) << said;

    const test::ScratchStoreFiles store(test::testOutputDir("integration") + "/lan-" + std::to_string(getpid()) +
                                        ".db");
    ASSERT_EQ(test::runToolOn(store.path(), {"import", BRAXCFG_TEST_FIXTURES "/setup_every_type.reg"}).exitCode, 0);
    ASSERT_EQ(test::runToolOn(store.path(), {"setup", "INTF5"}).exitCode, 0);  // TCPIP0
    // out, err: a part of what the command prints there.
    const struct { std::vector<std::string> args; int exitCode; std::string out, err; } cases[] = {
        {{"identify", "TCPIP0::10.77.0.10::hislip0::INSTR"}, 0, "Tolvane,Scope 4,4004,5.5\n", ""},
        {{"test", "TCPIP0::10.77.0.10::inst0::INSTR", "--alias", "scope1"}, 0,
         "Resource Found\nThe resource 'scope1' was found.\n\n(TCPIP0::10.77.0.10::inst0::INSTR)\n"
         "VI_SUCCESS (0x00000000): Operation completed successfully.\n", ""},
        {{"discover", "--timeout", "1"}, 0,
         "10.77.0.10  (vxi11-broadcast, mdns)  \"Scope 4\"\n  identification: Tolvane,Scope 4,4004,5.5\n", ""},
        {{"discover", "--timeout", "1", "--add", "INTF0"}, 2, "", "braxcfg: INTF0 is not a TCPIP interface\n"},
        // The report goes to stderr, off the JSON.
        {{"discover", "--timeout", "1", "--json", "--add", "INTF5"}, 0, "[",
         "added TCPIP0::10.77.0.10::inst0::INSTR to INTF5\nadded TCPIP0::10.77.0.10::hislip0::INSTR to INTF5\n"
         "added TCPIP0::10.77.0.11::5025::SOCKET to INTF5\nadded TCPIP0::10.77.0.12::inst0::INSTR to INTF5\n"},
        {{"devices", "INTF5"}, 0, "TCPIP0::10.77.0.11::5025\n  TCPIP0::10.77.0.11::5025::SOCKET\n", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + c.args[1]);
        const test::ToolRun run = test::runToolOn(store.path(), c.args);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_NE(run.out.find(c.out), std::string::npos) << run.out;
        EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
        if (c.args.size() > 3 && c.args[3] == "--json") {
            EXPECT_EQ(nlohmann::json::parse(run.out).at(0),
                      nlohmann::json({{"address", "10.77.0.10"}, {"methods", {"vxi11-broadcast", "mdns"}},
                                      {"name", "Scope 4"}, {"identification", "Tolvane,Scope 4,4004,5.5"},
                                      {"resources", {"TCPIP0::10.77.0.10::inst0::INSTR",
                                                     "TCPIP0::10.77.0.10::hislip0::INSTR"}}}));
        }
    }
    EXPECT_EQ(simulate.stop(), 0);
    std::remove(lab.c_str());
}

}  // namespace
}  // namespace braxcfg::visa::lan
