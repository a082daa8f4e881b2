// Identify against the simulator on loopback, one table for every protocol, and
// the simulator's refusals. Ports are free ones picked by the test; the
// portmapper takes a free port too (the probe is told which).
#include <gtest/gtest.h>

#include "fake_servers.h"
#include "visacore/lan/lan_query.h"
#include "visacore/lan/sim/simulator.h"

namespace braxcfg::visa::lan::sim {
namespace {

using namespace std::chrono_literals;

TEST(SimulatedLab, IdentifiesOverEachProtocolUntilStopped) {
    const std::uint16_t hislipPort = test::closedPort(), socketPort = test::closedPort();
    const Lab lab = parseLab("[TCPIP0::127.0.0.1::inst0::INSTR]\n"
                             "Identification = Tolvane,Scope 4,4004,5.5\n"
                             "Protocols = VXI-11 HiSLIP\n"
                             "DeviceNames = inst0 gpib0,7\n"
                             "HislipPort = " + std::to_string(hislipPort) + "\n"
                             "Reply.*OPC? = 1\n"
                             "[TCPIP0::127.0.0.1::" + std::to_string(socketPort) + "::SOCKET]\n"
                             "Identification = Tolvane,Source 9,909,2.0\n",
                             "test.ini");
    Simulator simulator;
    std::string error;
    SimulatorOptions simulatorOptions;
    simulatorOptions.portmapperPort = 0;
    ASSERT_TRUE(simulator.start(lab, simulatorOptions, error)) << error;

    const auto at = [](const std::string& rest) { return "TCPIP0::127.0.0.1::" + rest; };
    const std::string hislip = "hislip0," + std::to_string(hislipPort) + "::INSTR";
    const std::string socket = std::to_string(socketPort) + "::SOCKET";
    // Defaults, case and canned replies are the parsers' to decide; here:
    // each protocol's query, and each way an instrument is not there.
    const struct { std::string resource, command; ViStatus status; std::string answer; } cases[] = {
        {at("inst0::INSTR"), "*IDN?", VI_SUCCESS, "Tolvane,Scope 4,4004,5.5"},
        {at("GPIB0,7::INSTR"), "*OPC?", VI_SUCCESS, "1"},
        {at("inst3::INSTR"), "*IDN?", VI_ERROR_RSRC_NFOUND, ""},
        // A query the instrument has no answer for: it never answers.
        {at("inst0::INSTR"), "SYST:ERR?", VI_ERROR_TMO, ""},
        {at(hislip), "*IDN?", VI_SUCCESS, "Tolvane,Scope 4,4004,5.5"},
        {at("hislip4," + std::to_string(hislipPort) + "::INSTR"), "*IDN?", VI_ERROR_RSRC_NFOUND, ""},
        {at(socket), "*IDN?", VI_SUCCESS, "Tolvane,Source 9,909,2.0"},
    };
    LanProbeOptions options;
    options.budget = 2000ms;
    options.portmapperPort = simulator.sites()[0].portmapperPort;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.resource + " " + c.command);
        std::string answer = "stale";
        EXPECT_EQ(queryLanResource(c.resource, c.command, options, answer), c.status);
        EXPECT_EQ(answer, c.answer);
    }
    // The probe sees the same instrument the query does, until the simulator stops.
    EXPECT_EQ(probeLanResource(at("inst0::INSTR"), options), VI_SUCCESS);
    simulator.stop();
    EXPECT_EQ(probeLanResource(at("inst0::INSTR"), options), VI_ERROR_RSRC_NFOUND) << "stopped: refused";
}

TEST(Simulator, RefusesLabsItCannotServe) {
    const test::FakeServer occupant([](test::Peer&) {});
    const struct { std::string text; std::string error; } cases[] = {
        {"[TCPIP0::scope.lab::INSTR]\nIdentification = x\n",
         "[TCPIP0::scope.lab::INSTR]: \"scope.lab\" is not a numeric address (give --listen ADDR)"},
        {"[TCPIP0::127.0.0.1::INSTR]\nIdentification = x\n[TCPIP0::127.0.0.1::inst0::INSTR]\nIdentification = y\n",
         "[TCPIP0::127.0.0.1::inst0::INSTR]: VXI-11 device inst0 at 127.0.0.1 is served twice"},
        {"[TCPIP0::127.0.0.1::" + std::to_string(occupant.port()) + "::SOCKET]\nIdentification = x\n",
         "cannot serve on 127.0.0.1 port " + std::to_string(occupant.port()) + ": Address already in use"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        Simulator simulator;
        std::string error;
        SimulatorOptions options;
        options.portmapperPort = 0;
        EXPECT_FALSE(simulator.start(parseLab(c.text, "t.ini"), options, error));
        EXPECT_EQ(error, c.error);
        EXPECT_TRUE(simulator.sites().empty());
    }
}

}  // namespace
}  // namespace braxcfg::visa::lan::sim
