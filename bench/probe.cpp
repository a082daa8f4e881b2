// How long the resource probe takes against loopback servers: found and
// host-located answers for each protocol, the whole resource test, and the
// time to give up on a host that never answers.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include "fake_servers.h"
#include "tcpip/resource_probe.h"
#include "ui/testing/message_box_capture.h"
#include "visacore/lan/lan_probe.h"
#include "visacore/visa_api.h"

namespace {

using namespace braxcfg;
using visa::lan::LanProbeOptions;

LanProbeOptions loopbackOptions(std::uint16_t portmapperPort, std::chrono::milliseconds budget) {
    LanProbeOptions options;
    options.portmapperPort = portmapperPort;
    options.budget = budget;
    return options;
}

void expectStatus(benchmark::State& state, visa::ViStatus status, visa::ViStatus expected) {
    if (status != expected) state.SkipWithError("the probe gave an unexpected status");
}

void vxi11(benchmark::State& state, const char* device, visa::ViStatus expected) {
    test::CoreScript script;
    script.errors = {{"inst0", 0}};
    script.unknownError = 3;
    test::FakeServer core(test::vxi11Core(script, std::make_shared<test::CoreRecord>()));
    test::FakeServer portmapper(test::portmapper({test::PortmapScript::Reply::Port, core.port()}));
    const std::string resource = std::string("TCPIP0::127.0.0.1::") + device + "::INSTR";
    const LanProbeOptions options = loopbackOptions(portmapper.port(), std::chrono::milliseconds(3000));
    for (auto _ : state) expectStatus(state, visa::lan::probeLanResource(resource, options), expected);
}

void BM_Vxi11Found(benchmark::State& state) { vxi11(state, "inst0", visa::VI_SUCCESS); }
void BM_Vxi11HostLocated(benchmark::State& state) { vxi11(state, "inst9", visa::VI_ERROR_RSRC_NFOUND); }

void hislip(benchmark::State& state, test::HislipScript script, visa::ViStatus expected) {
    test::FakeServer server(test::hislipServer(script, std::make_shared<test::HislipRecord>()));
    const std::string resource = "TCPIP0::127.0.0.1::hislip0," + std::to_string(server.port()) + "::INSTR";
    const LanProbeOptions options = loopbackOptions(0, std::chrono::milliseconds(3000));
    for (auto _ : state) expectStatus(state, visa::lan::probeLanResource(resource, options), expected);
}

void BM_HislipFound(benchmark::State& state) { hislip(state, {}, visa::VI_SUCCESS); }
void BM_HislipHostLocated(benchmark::State& state) {
    hislip(state, {test::HislipScript::Reply::FatalError, 3}, visa::VI_ERROR_RSRC_NFOUND);
}

void BM_SocketFound(benchmark::State& state) {
    test::FakeServer server(test::rawListener(std::make_shared<std::atomic<std::size_t>>(0)));
    const std::string resource = "TCPIP0::127.0.0.1::" + std::to_string(server.port()) + "::SOCKET";
    const LanProbeOptions options = loopbackOptions(0, std::chrono::milliseconds(3000));
    for (auto _ : state) expectStatus(state, visa::lan::probeLanResource(resource, options), visa::VI_SUCCESS);
}

// The Test button end to end: resource manager, probe, message, close.
void BM_ResourceTestFound(benchmark::State& state) {
    setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1);
    visa::reselectVisaLibrary();
    test::FakeServer server(test::hislipServer({}, std::make_shared<test::HislipRecord>()));
    const std::string resource = "TCPIP0::127.0.0.1::hislip0," + std::to_string(server.port()) + "::INSTR";
    ui::MessageBoxCapture boxes;
    for (auto _ : state) {
        if (tcpip::TestResource(nullptr, "scope1", resource, {std::chrono::milliseconds(3000)}) != 1)
            state.SkipWithError("the resource test did not find the resource");
    }
}

// A host that drops every connection attempt: the probe must give up at
// its deadline (argument, in milliseconds), not at the kernel's.
void BM_SilentHostGivesUp(benchmark::State& state) {
    test::SilentListener silent;
    const std::string resource = "TCPIP0::127.0.0.1::" + std::to_string(silent.port()) + "::SOCKET";
    const LanProbeOptions options = loopbackOptions(0, std::chrono::milliseconds(state.range(0)));
    for (auto _ : state) expectStatus(state, visa::lan::probeLanResource(resource, options), visa::VI_ERROR_TMO);
}

BENCHMARK(BM_Vxi11Found)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_Vxi11HostLocated)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_HislipFound)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_HislipHostLocated)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_SocketFound)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_ResourceTestFound)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_SilentHostGivesUp)->Arg(200)->Arg(1000)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
