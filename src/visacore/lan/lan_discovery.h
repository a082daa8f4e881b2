#pragma once
// Finding LAN instruments: a VXI-11 portmapper broadcast (GETPORT for the
// core program to the broadcast address of every up IPv4 interface) and
// one-shot mDNS queries for the instrument service types (IPv4 and IPv6
// multicast on every up interface), run together until the timeout. Each
// instrument is listed once, with the methods that found it, the resource
// strings it offers and, when asked, its identification.
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "visacore/cancel_token.h"
#include "visacore/visa_types.h"

namespace braxcfg::visa::lan {

enum DiscoveryMethod : unsigned { kFoundByVxi11Broadcast = 1, kFoundByMdns = 2 };

struct DiscoveredInstrument {
    std::string address;                // numeric; an IPv6 address with its zone
    unsigned methods = 0;               // DiscoveryMethod bits
    std::string name;                   // the mDNS instance name, when announced
    std::vector<std::string> resources; // VXI-11 first, then HiSLIP, then SOCKET
    ViStatus identifyStatus = VI_ERROR_NSUP_OPER;  // VI_ERROR_NSUP_OPER: not asked
    std::string identification;
};

struct DiscoveryOptions {
    std::chrono::milliseconds timeout{2000};  // how long replies are collected
    const CancelToken* cancel = nullptr;
    bool broadcast = true;
    bool mdns = true;
    bool mdnsOverIpv4 = true;  // with mdns: which multicast groups are asked
    bool mdnsOverIpv6 = true;
    bool identify = true;
    std::chrono::milliseconds identifyBudget{2000};  // per instrument, all asked at once
    // Where the queries go; tests and the simulator use other ports.
    std::uint16_t portmapperPort = 111;
    std::uint16_t mdnsPort = 5353;
    // Called on the caller's thread as replies come in (an instrument's
    // first finding or a new method), for progress.
    std::function<void(const DiscoveredInstrument&)> onFound;
};

// Instruments ordered by address. Sends on every up interface of the
// machine (loopback included): run it in a private network namespace to
// keep the traffic there.
std::vector<DiscoveredInstrument> discoverLanInstruments(const DiscoveryOptions& options);

}  // namespace braxcfg::visa::lan
