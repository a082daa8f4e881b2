#include "visacore/lan/sim/mdns_responder.h"

#include <arpa/inet.h>

#include <algorithm>

#include "visacore/lan/mdns_services.h"

namespace braxcfg::visa::lan::sim {
namespace {

// Seconds a querier may keep the records; short, as a simulator comes and goes.
constexpr std::uint32_t kTtl = 120;

// "sim-127-0-0-5.local": one host name per served address.
std::string hostName(const std::string& address) {
    std::string name = "sim-" + address;
    std::replace_if(name.begin(), name.end(), [](char c) { return c == '.' || c == ':' || c == '%'; }, '-');
    return name + ".local";
}

dns::Record addressRecord(const Site& site) {
    dns::Record record{hostName(site.address), site.ipv6 ? dns::kAaaa : dns::kA, kTtl, {}, 0, {}, {}};
    record.address.resize(site.ipv6 ? 16 : 4);
    inet_pton(site.ipv6 ? AF_INET6 : AF_INET, site.address.c_str(), record.address.data());
    return record;
}

// The port at which `site` serves `instrument` over `protocol`; 0 when not.
std::uint16_t servedPort(const Site& site, const LabInstrument& instrument, LanProtocol protocol) {
    switch (protocol) {
    case LanProtocol::Vxi11:
        for (const auto& [name, served] : site.devices)
            if (served == &instrument) return site.corePort;
        return 0;
    case LanProtocol::Hislip:
        for (const auto& [port, subAddresses] : site.hislip)
            for (const auto& [name, served] : subAddresses)
                if (served == &instrument) return port;
        return 0;
    case LanProtocol::Socket:
        for (const auto& [port, served] : site.sockets)
            if (served == &instrument) return port;
        return 0;
    }
    return 0;
}

// Instance names must be unique: an instrument served at several
// addresses (--listen) gets the address added to its name.
std::string instanceName(const LabInstrument& instrument, const Site& site, const std::vector<Site>& sites) {
    const auto servedAt = std::count_if(sites.begin(), sites.end(), [&](const Site& other) {
        return std::find(other.instruments.begin(), other.instruments.end(), &instrument) != other.instruments.end();
    });
    return servedAt > 1 ? instrument.mdnsName + " @" + site.address : instrument.mdnsName;
}

}  // namespace

std::vector<std::vector<std::uint8_t>> mdnsResponses(const dns::Message& query, const std::vector<Site>& sites) {
    std::vector<std::vector<std::uint8_t>> responses;
    if (query.response) return responses;
    for (const dns::Question& question : query.questions) {
        if (question.type != dns::kPtr && question.type != dns::kAny) continue;
        const auto protocol = serviceProtocol(question.name);
        if (!protocol) continue;
        const std::string_view type = serviceTypeOf(*protocol);
        for (const Site& site : sites) {
            for (const LabInstrument* instrument : site.instruments) {
                const std::uint16_t port = servedPort(site, *instrument, *protocol);
                if (port == 0) continue;
                const std::string instance = instanceName(*instrument, site, sites) + "." + std::string(type);
                const std::vector<dns::Record> answers{
                    {std::string(type), dns::kPtr, kTtl, instance, 0, {}, {}},
                    {instance, dns::kSrv, kTtl, hostName(site.address), port, {}, {}},
                    {instance, dns::kTxt, kTtl, {}, 0, {}, {"txtvers=1"}},
                    addressRecord(site),
                };
                responses.push_back(dns::encodeResponse(query.id, {question}, answers));
            }
        }
    }
    return responses;
}

}  // namespace braxcfg::visa::lan::sim
