#include "visacore/lan/mdns_services.h"

#include <arpa/inet.h>

#include <algorithm>

namespace braxcfg::visa::lan {
namespace {

constexpr std::uint16_t kRawSocketPort = 5025;

const dns::Record* findRecord(const dns::Message& message, std::string_view name, std::uint16_t type) {
    for (const dns::Record& record : message.records)
        if (record.type == type && dns::sameName(record.name, name)) return &record;
    return nullptr;
}

std::string addressText(const dns::Record& record) {
    char text[INET6_ADDRSTRLEN] = "";
    inet_ntop(record.type == dns::kA ? AF_INET : AF_INET6, record.address.data(), text, sizeof text);
    return text;
}

std::string instanceLabel(std::string_view instance, std::string_view serviceType) {
    if (instance.size() > serviceType.size() + 1) instance.remove_suffix(serviceType.size() + 1);
    return std::string(instance);
}

}  // namespace

std::optional<LanProtocol> serviceProtocol(std::string_view serviceType) {
    if (dns::sameName(serviceType, kInstrumentServiceTypes[0])) return LanProtocol::Vxi11;
    if (dns::sameName(serviceType, kInstrumentServiceTypes[1])) return LanProtocol::Hislip;
    if (dns::sameName(serviceType, kInstrumentServiceTypes[2])) return LanProtocol::Socket;
    return std::nullopt;
}

std::string_view serviceTypeOf(LanProtocol protocol) {
    switch (protocol) {
    case LanProtocol::Hislip: return kInstrumentServiceTypes[1];
    case LanProtocol::Socket: return kInstrumentServiceTypes[2];
    case LanProtocol::Vxi11: break;
    }
    return kInstrumentServiceTypes[0];
}

std::vector<ServiceFinding> readServiceResponse(const dns::Message& response, const std::string& sourceAddress) {
    std::vector<ServiceFinding> findings;
    for (const dns::Record& pointer : response.records) {
        if (pointer.type != dns::kPtr) continue;
        const auto type = std::find_if(kInstrumentServiceTypes.begin(), kInstrumentServiceTypes.end(),
                                       [&](std::string_view known) { return dns::sameName(known, pointer.name); });
        if (type == kInstrumentServiceTypes.end()) continue;

        ServiceFinding finding{sourceAddress, instanceLabel(pointer.target, *type), {}};
        LanResource resource;
        resource.protocol = serviceProtocol(*type).value_or(LanProtocol::Vxi11);
        resource.port = resource.protocol == LanProtocol::Socket ? kRawSocketPort : kHislipDefaultPort;
        if (const dns::Record* service = findRecord(response, pointer.target, dns::kSrv)) {
            resource.port = service->port;
            const dns::Record* host = findRecord(response, service->target, dns::kA);
            if (host == nullptr) host = findRecord(response, service->target, dns::kAaaa);
            if (host != nullptr) finding.address = addressText(*host);
        }
        resource.host = finding.address;
        resource.deviceName = resource.protocol == LanProtocol::Hislip ? "hislip0" : "inst0";
        if (serviceProtocol(*type) && resource.port != 0) finding.resources.push_back(formatLanResource(resource));
        findings.push_back(std::move(finding));
    }
    return findings;
}

}  // namespace braxcfg::visa::lan
