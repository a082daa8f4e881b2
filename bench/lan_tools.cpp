// The LAN tools against the simulator: an identification round trip on
// loopback for each protocol, and discovery of 50 simulated instruments in
// a private network namespace (root only; skipped otherwise), timed until
// the last of them answered.
#include <benchmark/benchmark.h>
#include <sched.h>
#include <unistd.h>

#include <cstdlib>

#include "fake_servers.h"
#include "visacore/lan/lan_discovery.h"
#include "visacore/lan/lan_query.h"
#include "visacore/lan/sim/simulator.h"

namespace {

using namespace braxcfg::visa::lan;
using namespace std::chrono_literals;

constexpr int kInstruments = 50;

void identify(benchmark::State& state, const std::string& rest) {
    const std::uint16_t hislipPort = braxcfg::test::closedPort(), socketPort = braxcfg::test::closedPort();
    const std::string text = "[TCPIP0::127.0.0.1::inst0::INSTR]\nIdentification = Tolvane,Scope 4,4004,5.5\n"
                             "Protocols = VXI-11 HiSLIP SOCKET\nHislipPort = " + std::to_string(hislipPort) +
                             "\nSocketPort = " + std::to_string(socketPort) + "\n";
    sim::Simulator simulator;
    sim::SimulatorOptions options;
    options.portmapperPort = 0;
    std::string error;
    if (!simulator.start(sim::parseLab(text, "bench.ini"), options, error)) return state.SkipWithError(error.c_str());
    std::string resource = "TCPIP0::127.0.0.1::" + rest;
    for (const auto& [from, to] : {std::pair{"HPORT", hislipPort}, std::pair{"SPORT", socketPort}})
        if (const auto at = resource.find(from); at != std::string::npos) resource.replace(at, 5, std::to_string(to));
    LanProbeOptions probe;
    probe.portmapperPort = simulator.sites()[0].portmapperPort;
    std::string answer;
    for (auto _ : state)
        if (queryLanResource(resource, kIdentificationQuery, probe, answer) != braxcfg::visa::VI_SUCCESS)
            return state.SkipWithError("the identification failed");
}

void BM_IdentifyVxi11(benchmark::State& state) { identify(state, "inst0::INSTR"); }
void BM_IdentifyHislip(benchmark::State& state) { identify(state, "hislip0,HPORT::INSTR"); }
void BM_IdentifySocket(benchmark::State& state) { identify(state, "SPORT::SOCKET"); }
BENCHMARK(BM_IdentifyVxi11)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_IdentifyHislip)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_IdentifySocket)->Unit(benchmark::kMicrosecond);

// The benchmark's own network: a veth pair with one address per simulated
// instrument. Only the main thread moves into it, before any thread starts
// that must live there.
const char* enterBenchNetwork() {
    if (geteuid() != 0) return "discovery needs root for a private network namespace";
    if (unshare(CLONE_NEWNET) != 0) return "cannot make a private network namespace";
    std::string command = "ip link set lo up && ip link add b0 type veth peer name b1 && "
                          "ip addr add 10.78.0.1/24 brd + dev b0";
    for (int i = 0; i < kInstruments; ++i) command += " && ip addr add 10.78.0." + std::to_string(10 + i) + "/24 dev b0";
    command += " && ip link set b0 up && ip link set b1 up";
    return std::system(command.c_str()) == 0 ? nullptr : "cannot make the veth pair";
}

void BM_Discover50(benchmark::State& state) {
    static const char* const failure = enterBenchNetwork();
    if (failure != nullptr) return state.SkipWithError(failure);
    std::string text;
    for (int i = 0; i < kInstruments; ++i)
        text += "[TCPIP0::10.78.0." + std::to_string(10 + i) + "::inst0::INSTR]\nIdentification = Tolvane,Unit " +
                std::to_string(i) + ",1,1\nProtocols = VXI-11 HiSLIP\n";
    sim::Simulator simulator;
    sim::SimulatorOptions options;
    options.mdns = true;
    std::string error;
    if (!simulator.start(sim::parseLab(text, "bench.ini"), options, error)) return state.SkipWithError(error.c_str());

    for (auto _ : state) {
        // Both methods must have reported every instrument: 2 per instrument.
        int reports = 0;
        auto start = std::chrono::steady_clock::now(), last = start;
        DiscoveryOptions discovery;
        discovery.timeout = 3000ms;
        discovery.onFound = [&](const DiscoveredInstrument&) {
            ++reports;
            last = std::chrono::steady_clock::now();
        };
        const auto found = discoverLanInstruments(discovery);
        const auto end = std::chrono::steady_clock::now();
        int identified = 0;
        for (const DiscoveredInstrument& instrument : found) identified += instrument.identifyStatus == 0;
        if (found.size() != kInstruments || identified != kInstruments)
            return state.SkipWithError("not every simulated instrument was found and identified in time");
        state.SetIterationTime(std::chrono::duration<double>(last - start).count());
        state.counters["identify_ms"] = std::chrono::duration<double, std::milli>(end - start).count() -
                                        discovery.timeout.count();
        state.counters["reports"] = reports;
    }
}
BENCHMARK(BM_Discover50)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
