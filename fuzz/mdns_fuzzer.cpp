// What discovery and the simulator read from the network's mDNS traffic:
// any packet, parsed, read as instrument services, and answered as the
// simulator would. None of it may crash or read out of bounds.
#include <cstddef>
#include <cstdint>
#include <span>

#include "visacore/lan/dns_message.h"
#include "visacore/lan/mdns_services.h"
#include "visacore/lan/sim/mdns_responder.h"

using namespace braxcfg::visa::lan;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    dns::Message message;
    if (!dns::parseMessage(std::span<const std::uint8_t>(data, size), message)) return 0;
    for (const ServiceFinding& finding : readServiceResponse(message, "10.0.0.1"))
        if (finding.address.empty()) __builtin_trap();
    static const sim::LabInstrument instrument = [] {
        sim::LabInstrument lab;
        lab.identification = "Tolvane,Scope,1,1";
        lab.mdnsName = "Scope";
        return lab;
    }();
    sim::Site site;
    site.address = "10.0.0.2";
    site.corePort = 1024;
    site.devices["inst0"] = &instrument;
    site.instruments.push_back(&instrument);
    // Every answer the simulator sends must read back.
    for (const auto& response : sim::mdnsResponses(message, {site})) {
        dns::Message again;
        if (!dns::parseMessage(response, again)) __builtin_trap();
    }
    return 0;
}
