// simulate FILE [--listen ADDR]... [--mdns]: serves the lab's LAN
// instruments until SIGINT or SIGTERM.
#include <signal.h>

#include <iostream>

#include "command.h"
#include "visacore/lan/sim/simulator.h"

namespace braxcfg::tool {
namespace {

// SIGINT and SIGTERM; blocked before the simulator's threads start, so
// none of them takes the signal and the main thread can wait for it.
sigset_t stopSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

int runSimulate(const ParsedArgs& split) {
    std::string error;
    if (split.operands.size() != 1) return fail("simulate needs exactly one lab FILE");

    visa::lan::sim::Lab lab = visa::lan::sim::readLab(split.operands[0]);
    if (!lab.error.empty()) return fail(lab.error);
    if (lab.instruments.empty()) return fail(split.operands[0] + ": no TCPIP instrument to simulate");

    const sigset_t signals = stopSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    visa::lan::sim::SimulatorOptions options;
    options.listen = optionValues(split, "--listen");
    options.mdns = hasOption(split, "--mdns");
    visa::lan::sim::Simulator simulator;
    if (!simulator.start(std::move(lab), options, error)) return fail(split.operands[0] + ": " + error);
    for (const std::string& warning : simulator.warnings()) std::cerr << "braxcfg: warning: " << warning << "\n";
    for (const std::string& line : simulator.describe()) std::cout << line << "\n";
    std::cout << "serving; stop with Ctrl-C" << std::endl;
    int received = 0;
    sigwait(&signals, &received);
    simulator.stop();
    return 0;
}

const CommandRegistration kSimulate({"simulate", "serve the LAN instruments of a lab file",
                                     "usage: braxcfg simulate FILE [--listen ADDR]... [--mdns]\n"
                                     "Serves every TCPIP instrument of the lab FILE over VXI-11 (with a\n"
                                     "portmapper on port 111 when it can be had), HiSLIP and SOCKET, and\n"
                                     "answers VXI-11 portmapper broadcasts, until SIGINT or SIGTERM.\n"
                                     "Exit status 0 when stopped by a signal; 2 when the file or an address\n"
                                     "cannot be used (the file and line named).\n",
                                     StoreUse::None, runSimulate,
                                    {{"--listen", "ADDR",
                                      "serve every instrument at ADDR (numeric, repeatable) instead of at the host "
                                      "of its resource string",
                                      false, 0, 0, nullptr, true},
                                     {"--mdns", nullptr, "answer mDNS queries for the instruments' services"}}});

}  // namespace
}  // namespace braxcfg::tool
