#include "visacore/lan/lan_discovery.h"

#include <arpa/inet.h>
#include <net/if.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <random>
#include <thread>

#include "visacore/lan/tcp_link.h"
#include "visacore/lan/dns_message.h"
#include "visacore/lan/lan_query.h"
#include "visacore/lan/local_interfaces.h"
#include "visacore/lan/mdns_services.h"
#include "visacore/lan/onc_rpc.h"

namespace braxcfg::visa::lan {
namespace {

constexpr std::uint32_t kMdnsGroupV4 = 0xE00000FB;  // 224.0.0.251
constexpr const char* kMdnsGroupV6 = "ff02::fb";

class UdpSocket {
public:
    explicit UdpSocket(int family) : fd_(socket(family, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {}
    ~UdpSocket() {
        if (fd_ >= 0) close(fd_);
    }
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;
    int fd() const { return fd_; }
    void sendTo(const std::vector<std::uint8_t>& bytes, const sockaddr* to, socklen_t length) const {
        sendto(fd_, bytes.data(), bytes.size(), 0, to, length);
    }

private:
    int fd_;
};

std::string sourceText(const sockaddr_storage& from) {
    char text[INET6_ADDRSTRLEN] = "";
    if (from.ss_family == AF_INET) {
        inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(&from)->sin_addr, text, sizeof text);
        return text;
    }
    const auto* in6 = reinterpret_cast<const sockaddr_in6*>(&from);
    inet_ntop(AF_INET6, &in6->sin6_addr, text, sizeof text);
    std::string result = text;
    char zone[IF_NAMESIZE] = "";
    if (in6->sin6_scope_id != 0 && if_indextoname(in6->sin6_scope_id, zone) != nullptr) result += "%" + std::string(zone);
    return result;
}

std::string vxi11Resource(const std::string& address) {
    LanResource resource;
    resource.host = address;
    resource.deviceName = "inst0";
    return formatLanResource(resource);
}

// VXI-11 before HiSLIP before SOCKET, the order a user would try them in.
int resourceRank(const std::string& resource) {
    LanResource parsed;
    if (parseLanResource(resource, parsed) != VI_SUCCESS) return 3;
    return static_cast<int>(parsed.protocol);
}

class Collector {
public:
    explicit Collector(const DiscoveryOptions& options) : options_(options) {}

    void add(const std::string& address, unsigned method, const std::string& name,
             const std::vector<std::string>& resources) {
        DiscoveredInstrument& instrument = found_[address];
        bool changed = instrument.address.empty() || (instrument.methods & method) == 0;
        instrument.address = address;
        instrument.methods |= method;
        if (instrument.name.empty() && !name.empty()) instrument.name = name;
        for (const std::string& resource : resources) {
            if (std::find(instrument.resources.begin(), instrument.resources.end(), resource) !=
                instrument.resources.end())
                continue;
            instrument.resources.push_back(resource);
            changed = true;
        }
        std::stable_sort(instrument.resources.begin(), instrument.resources.end(),
                         [](const std::string& a, const std::string& b) { return resourceRank(a) < resourceRank(b); });
        if (changed && options_.onFound) options_.onFound(instrument);
    }

    std::vector<DiscoveredInstrument> take() {
        std::vector<DiscoveredInstrument> result;
        for (auto& [address, instrument] : found_) result.push_back(std::move(instrument));
        return result;
    }

private:
    const DiscoveryOptions& options_;
    std::map<std::string, DiscoveredInstrument> found_;
};

std::uint32_t randomXid() {
    std::random_device seed;
    return static_cast<std::uint32_t>(seed());
}

void sendBroadcasts(const UdpSocket& socket, std::uint32_t xid, const std::vector<LocalInterface>& interfaces,
                    std::uint16_t port) {
    const int on = 1;
    setsockopt(socket.fd(), SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
    const auto record = rpc::getPortCall(xid, rpc::kDeviceCoreProgram, rpc::kDeviceCoreVersion);
    const auto body = rpc::withoutRecordMark(record);
    const std::vector<std::uint8_t> datagram(body.begin(), body.end());
    for (const LocalInterface& intf : interfaces) {
        if (!intf.hasBroadcast) continue;
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_addr = intf.broadcast;
        to.sin_port = htons(port);
        socket.sendTo(datagram, reinterpret_cast<const sockaddr*>(&to), sizeof to);
    }
}

std::vector<std::uint8_t> mdnsQuery() {
    std::vector<dns::Question> questions;
    for (std::string_view type : kInstrumentServiceTypes) questions.push_back({std::string(type), dns::kPtr});
    // From a port other than 5353 a query is a one-shot one: responders
    // answer it directly to the querier.
    return dns::encodeQuery(0, questions, true);
}

void sendMdnsV4(const UdpSocket& socket, const std::vector<LocalInterface>& interfaces, std::uint16_t port) {
    const int ttl = 255;
    setsockopt(socket.fd(), IPPROTO_IP, IP_MULTICAST_TTL, &ttl, sizeof ttl);
    const auto query = mdnsQuery();
    for (const LocalInterface& intf : interfaces) {
        if (!intf.hasIpv4 || (!intf.multicast && !intf.loopback)) continue;
        ip_mreqn via{};
        via.imr_ifindex = static_cast<int>(intf.index);
        setsockopt(socket.fd(), IPPROTO_IP, IP_MULTICAST_IF, &via, sizeof via);
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_addr.s_addr = htonl(kMdnsGroupV4);
        to.sin_port = htons(port);
        socket.sendTo(query, reinterpret_cast<const sockaddr*>(&to), sizeof to);
    }
}

void sendMdnsV6(const UdpSocket& socket, const std::vector<LocalInterface>& interfaces, std::uint16_t port) {
    const int hops = 255;
    setsockopt(socket.fd(), IPPROTO_IPV6, IPV6_MULTICAST_HOPS, &hops, sizeof hops);
    const auto query = mdnsQuery();
    for (const LocalInterface& intf : interfaces) {
        if (!intf.hasIpv6 || !intf.multicast) continue;
        const unsigned index = intf.index;
        setsockopt(socket.fd(), IPPROTO_IPV6, IPV6_MULTICAST_IF, &index, sizeof index);
        sockaddr_in6 to{};
        to.sin6_family = AF_INET6;
        inet_pton(AF_INET6, kMdnsGroupV6, &to.sin6_addr);
        to.sin6_port = htons(port);
        to.sin6_scope_id = index;
        socket.sendTo(query, reinterpret_cast<const sockaddr*>(&to), sizeof to);
    }
}

void readBroadcastReply(std::span<const std::uint8_t> datagram, std::uint32_t xid, const std::string& source,
                        Collector& collector) {
    const rpc::Reply reply = rpc::parseReply(datagram, xid);
    std::uint32_t port = 0;
    // A portmapper without the core program answers port 0.
    if (reply.kind != rpc::ReplyKind::Accepted || reply.acceptStat != rpc::kAcceptSuccess ||
        !rpc::parseGetPortResult(reply.results, port) || port == 0 || port > 0xFFFF)
        return;
    collector.add(source, kFoundByVxi11Broadcast, {}, {vxi11Resource(source)});
}

void readMdnsReply(std::span<const std::uint8_t> datagram, const std::string& source, Collector& collector) {
    dns::Message message;
    if (!dns::parseMessage(datagram, message) || !message.response) return;
    for (const ServiceFinding& finding : readServiceResponse(message, source))
        collector.add(finding.address, kFoundByMdns, finding.instanceName, finding.resources);
}

// Collects replies on all sockets until the deadline or a cancel.
void collect(const std::vector<const UdpSocket*>& sockets, const UdpSocket* broadcast, std::uint32_t xid,
             const DiscoveryOptions& options, Collector& collector) {
    const Deadline deadline(options.timeout);
    std::vector<pollfd> fds;
    for (const UdpSocket* socket : sockets) fds.push_back({socket->fd(), POLLIN, 0});
    fds.push_back({options.cancel != nullptr ? options.cancel->fd() : -1, POLLIN, 0});
    std::uint8_t buffer[9000];
    while (!deadline.expired()) {
        if (options.cancel != nullptr && options.cancel->cancelled()) return;
        const int count = poll(fds.data(), fds.size(), deadline.pollTimeoutMs());
        if (count < 0 && errno != EINTR) return;
        if (fds.back().revents != 0) return;
        for (std::size_t i = 0; i + 1 < fds.size(); ++i) {
            if (fds[i].revents == 0) continue;
            sockaddr_storage from{};
            socklen_t length = sizeof from;
            const ssize_t n = recvfrom(fds[i].fd, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&from), &length);
            if (n <= 0) continue;
            const std::span<const std::uint8_t> datagram(buffer, static_cast<std::size_t>(n));
            if (sockets[i] == broadcast)
                readBroadcastReply(datagram, xid, sourceText(from), collector);
            else
                readMdnsReply(datagram, sourceText(from), collector);
        }
    }
}

void identifyAll(std::vector<DiscoveredInstrument>& instruments, const DiscoveryOptions& options) {
    std::vector<std::thread> threads;
    for (DiscoveredInstrument& instrument : instruments) {
        if (instrument.resources.empty()) continue;
        threads.emplace_back([&instrument, &options] {
            LanProbeOptions probe;
            probe.budget = options.identifyBudget;
            probe.cancel = options.cancel;
            probe.portmapperPort = options.portmapperPort;
            probe.resolver = nullptr;  // numeric addresses only
            instrument.identifyStatus = queryLanResource(instrument.resources.front(), kIdentificationQuery, probe,
                                                         instrument.identification);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace

std::vector<DiscoveredInstrument> discoverLanInstruments(const DiscoveryOptions& options) {
    const std::vector<LocalInterface> interfaces = localInterfaces();
    const UdpSocket broadcast(AF_INET), mdnsV4(AF_INET), mdnsV6(AF_INET6);
    const std::uint32_t xid = randomXid();
    std::vector<const UdpSocket*> sockets;
    if (options.broadcast && broadcast.fd() >= 0) {
        sendBroadcasts(broadcast, xid, interfaces, options.portmapperPort);
        sockets.push_back(&broadcast);
    }
    if (options.mdns && options.mdnsOverIpv4 && mdnsV4.fd() >= 0) {
        sendMdnsV4(mdnsV4, interfaces, options.mdnsPort);
        sockets.push_back(&mdnsV4);
    }
    if (options.mdns && options.mdnsOverIpv6 && mdnsV6.fd() >= 0) {
        sendMdnsV6(mdnsV6, interfaces, options.mdnsPort);
        sockets.push_back(&mdnsV6);
    }
    Collector collector(options);
    collect(sockets, &broadcast, xid, options, collector);
    std::vector<DiscoveredInstrument> instruments = collector.take();
    if (options.identify) identifyAll(instruments, options);
    return instruments;
}

}  // namespace braxcfg::visa::lan
