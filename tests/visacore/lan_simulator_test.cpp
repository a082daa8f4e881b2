// Queries against the simulator on loopback, each way an instrument is not
// there. Ports are free ones picked by the test; the portmapper takes a free
// port too (the probe is told which). Identification over each protocol is
// the discovery and identify commands' integration test; the labs the
// simulator refuses say why to whoever runs it.
#include <gtest/gtest.h>

#include "fake_servers.h"
#include "visacore/lan/lan_query.h"
#include "visacore/lan/sim/simulator.h"

namespace braxcfg::visa::lan::sim {
namespace {

using namespace std::chrono_literals;

TEST(SimulatedLab, AnswersWhatItKnowsUntilStopped) {
    const std::uint16_t hislipPort = test::closedPort();
    const Lab lab = parseLab("[TCPIP0::127.0.0.1::inst0::INSTR]\n"
                             "Identification = Tolvane,Scope 4,4004,5.5\n"
                             "Protocols = VXI-11 HiSLIP\n"
                             "DeviceNames = inst0 gpib0,7\n"
                             "HislipPort = " + std::to_string(hislipPort) + "\n"
                             "Reply.*OPC? = 1\n",
                             "test.ini");
    Simulator simulator;
    std::string error;
    SimulatorOptions simulatorOptions;
    simulatorOptions.portmapperPort = 0;
    ASSERT_TRUE(simulator.start(lab, simulatorOptions, error)) << error;

    const auto at = [](const std::string& rest) { return "TCPIP0::127.0.0.1::" + rest; };
    // Defaults, case and canned replies are the parsers' to decide.
    const struct { std::string resource, command; ViStatus status; std::string answer; } cases[] = {
        {at("GPIB0,7::INSTR"), "*OPC?", VI_SUCCESS, "1"},
        {at("inst3::INSTR"), "*IDN?", VI_ERROR_RSRC_NFOUND, ""},
        // A query the instrument has no answer for: it never answers.
        {at("inst0::INSTR"), "SYST:ERR?", VI_ERROR_TMO, ""},
        {at("hislip4," + std::to_string(hislipPort) + "::INSTR"), "*IDN?", VI_ERROR_RSRC_NFOUND, ""},
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

}  // namespace
}  // namespace braxcfg::visa::lan::sim
