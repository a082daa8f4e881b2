#pragma once
// Simulated LAN instruments: serves the instruments of a lab over VXI-11
// (a portmapper and a core channel per address), HiSLIP and raw SOCKET,
// answers portmapper broadcasts, and answers mDNS queries when asked. Each
// instrument is served at the address of its resource string, or at every
// address given to listen on. All serving happens on threads of its own
// until stop() or destruction.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "visacore/lan/sim/lab_instruments.h"
#include "visacore/lan/sim/sim_site.h"

namespace braxcfg::visa::lan::sim {

inline constexpr std::uint16_t kStandardPortmapperPort = 111;
inline constexpr std::uint16_t kStandardMdnsPort = 5353;

struct SimulatorOptions {
    std::vector<std::string> listen;  // numeric addresses; empty: each instrument's own
    bool mdns = false;
    // The portmapper's port for every address: unset tries 111 and then the
    // lab's PortmapperPort; 0 takes a free port (tests).
    std::optional<std::uint16_t> portmapperPort;
    std::uint16_t mdnsPort = kStandardMdnsPort;
};

class Simulator {
public:
    Simulator();
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // Binds every service and starts serving; false with `error` when an
    // address or port cannot be used or two instruments claim one name.
    bool start(Lab lab, const SimulatorOptions& options, std::string& error);
    void stop();

    // What is served where (valid while running).
    const std::vector<Site>& sites() const;
    // One line per service for the user: "VXI-11 127.0.0.1 core 40123 (inst0) portmapper 111".
    std::vector<std::string> describe() const;
    // What could not be served but did not stop the start (no portmapper).
    const std::vector<std::string>& warnings() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace braxcfg::visa::lan::sim
