#pragma once
// The DNS-SD service types of LAN instruments and what each offers: a
// VXI-11 device (inst0), a HiSLIP server (hislip0 at the port), a raw SCPI
// socket (at the port); an LXI web service names the box only.
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "visacore/lan/dns_message.h"
#include "visacore/lan/lan_resource.h"

namespace braxcfg::visa::lan {

inline constexpr std::array<std::string_view, 4> kInstrumentServiceTypes = {
    "_vxi-11._tcp.local", "_hislip._tcp.local", "_scpi-raw._tcp.local", "_lxi._tcp.local"};

// The protocol a service type offers; none for _lxi._tcp.
std::optional<LanProtocol> serviceProtocol(std::string_view serviceType);
// The service type of a protocol.
std::string_view serviceTypeOf(LanProtocol protocol);

// What one mDNS response says about one instrument.
struct ServiceFinding {
    std::string address;         // numeric, IPv6 with its zone ("fe80::1%eth0")
    std::string instanceName;    // "Scope 4" (the first label of the instance)
    std::vector<std::string> resources;
};

// Reads the instruments out of a response that came from `sourceAddress`.
// An instance's address is its SRV host's A (else AAAA) record in the same
// response, else the sender's; an instance without SRV record gets the
// protocol's usual port.
std::vector<ServiceFinding> readServiceResponse(const dns::Message& response, const std::string& sourceAddress);

}  // namespace braxcfg::visa::lan
