#include "visacore/lan/sim/simulator.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <list>
#include <mutex>
#include <thread>

#include "visacore/lan/local_interfaces.h"
#include "visacore/lan/sim/hislip_service.h"
#include "visacore/lan/sim/mdns_responder.h"

namespace braxcfg::visa::lan::sim {
namespace {

enum class Kind { Portmapper, Core, Hislip, Socket, PortmapperUdp, MdnsUdp };

struct Listener {
    int fd;
    Kind kind;
    std::size_t site = 0;  // index into the sites (TCP kinds)
    std::uint16_t port = 0;
};

struct Connection {
    int fd;
    std::atomic<bool> done{false};
    std::thread thread;
};

// A numeric address with a port; false for a name.
bool socketAddress(const std::string& text, std::uint16_t port, sockaddr_storage& out, socklen_t& length) {
    out = {};
    auto* in = reinterpret_cast<sockaddr_in*>(&out);
    auto* in6 = reinterpret_cast<sockaddr_in6*>(&out);
    if (inet_pton(AF_INET, text.c_str(), &in->sin_addr) == 1) {
        in->sin_family = AF_INET;
        in->sin_port = htons(port);
        length = sizeof(sockaddr_in);
        return true;
    }
    if (inet_pton(AF_INET6, text.c_str(), &in6->sin6_addr) == 1) {
        in6->sin6_family = AF_INET6;
        in6->sin6_port = htons(port);
        length = sizeof(sockaddr_in6);
        return true;
    }
    return false;
}

std::uint16_t boundPort(int fd) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
    return address.ss_family == AF_INET ? ntohs(reinterpret_cast<sockaddr_in*>(&address)->sin_port)
                                        : ntohs(reinterpret_cast<sockaddr_in6*>(&address)->sin6_port);
}

// A bound socket, or -1 with `error` set.
int bindSocket(const std::string& address, std::uint16_t port, int type, bool shared, std::string& error) {
    sockaddr_storage storage{};
    socklen_t length = 0;
    if (!socketAddress(address, port, storage, length)) {
        error = "\"" + address + "\" is not a numeric address";
        return -1;
    }
    const int fd = socket(storage.ss_family, type | SOCK_CLOEXEC, 0);
    const int on = 1;
    if (fd >= 0) {
        setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        // Several simulators, or an mDNS daemon, may share the mDNS port.
        if (shared) setsockopt(fd, SOL_SOCKET, SO_REUSEPORT, &on, sizeof on);
        if (storage.ss_family == AF_INET6) setsockopt(fd, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
    }
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&storage), length) != 0 ||
        (type == SOCK_STREAM && listen(fd, SOMAXCONN) != 0)) {
        error = "cannot serve on " + address + " port " + std::to_string(port) + ": " + std::strerror(errno);
        if (fd >= 0) close(fd);
        return -1;
    }
    return fd;
}

std::string join(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

}  // namespace

struct Simulator::Impl {
    Lab lab;
    SimulatorOptions options;
    std::vector<Site> sites;
    std::vector<std::string> warnings;
    std::vector<Listener> listeners;
    HislipSessions sessions;
    int stopFd = -1;
    std::thread loop;
    std::mutex mutex;
    std::list<Connection> connections;

    ~Impl() { stop(); }

    bool assign(std::string& error);
    bool bindAll(std::string& error);
    bool bindPortmapper(Site& site, std::size_t index, std::string& error);
    bool addListener(const std::string& address, std::uint16_t port, Kind kind, std::size_t site, std::string& error);
    void bindMdns();
    void run();
    void accept(const Listener& listener);
    void serve(const Listener& listener, int fd);
    void answerPortmapperDatagram(int fd);
    void answerMdnsDatagram(int fd);
    void reap(bool all);
    void stop();
};

bool Simulator::Impl::assign(std::string& error) {
    for (const LabInstrument& instrument : lab.instruments) {
        const std::vector<std::string> addresses = options.listen.empty() ? std::vector{instrument.address}
                                                                          : options.listen;
        for (const std::string& address : addresses) {
            sockaddr_storage storage{};
            socklen_t length = 0;
            if (!socketAddress(address, 0, storage, length)) {
                error = "[" + instrument.resource + "]: \"" + address + "\" is not a numeric address (give --listen ADDR)";
                return false;
            }
            auto site = std::find_if(sites.begin(), sites.end(), [&](const Site& s) { return s.address == address; });
            if (site == sites.end()) {
                sites.push_back(Site{address, storage.ss_family == AF_INET6, 0, 0, {}, {}, {}, {}});
                site = sites.end() - 1;
            }
            site->instruments.push_back(&instrument);
            const auto claim = [&](auto& map, const auto& key, const std::string& what) {
                if (!map.emplace(key, &instrument).second) {
                    error = "[" + instrument.resource + "]: " + what + " at " + address + " is served twice";
                    return false;
                }
                return true;
            };
            if (instrument.vxi11)
                for (const std::string& name : instrument.deviceNames)
                    if (!claim(site->devices, name, "VXI-11 device " + name)) return false;
            if (instrument.hislip &&
                !claim(site->hislip[instrument.hislipPort], instrument.hislipSubAddress,
                       "HiSLIP " + instrument.hislipSubAddress + " port " + std::to_string(instrument.hislipPort)))
                return false;
            if (instrument.socket &&
                !claim(site->sockets, instrument.socketPort, "SOCKET port " + std::to_string(instrument.socketPort)))
                return false;
        }
    }
    return true;
}

bool Simulator::Impl::addListener(const std::string& address, std::uint16_t port, Kind kind, std::size_t site,
                                  std::string& error) {
    const int fd = bindSocket(address, port, SOCK_STREAM, false, error);
    if (fd < 0) return false;
    listeners.push_back({fd, kind, site, boundPort(fd)});
    return true;
}

// 111 when it can be had (or the port the options force), else the first
// PortmapperPort of the lab's instruments here; none at all is a warning,
// since the core channel still serves a client told its port.
bool Simulator::Impl::bindPortmapper(Site& site, std::size_t index, std::string& error) {
    std::vector<std::uint16_t> candidates;
    if (options.portmapperPort) {
        // One port for every address (a free one picked at the first), so
        // a broadcast reaches them all.
        std::uint16_t port = *options.portmapperPort;
        for (const Site& other : sites)
            if (other.portmapperPort != 0) port = other.portmapperPort;
        candidates.push_back(port);
    } else {
        candidates.push_back(kStandardPortmapperPort);
        for (const LabInstrument* instrument : site.instruments)
            if (instrument->vxi11 && instrument->portmapperPort != 0) candidates.push_back(instrument->portmapperPort);
    }
    std::string reason;
    for (std::uint16_t port : candidates) {
        std::string failure;
        const int fd = bindSocket(site.address, port, SOCK_STREAM, false, failure);
        if (fd < 0) {
            if (reason.empty()) reason = failure;
            continue;
        }
        site.portmapperPort = boundPort(fd);
        listeners.push_back({fd, Kind::Portmapper, index, site.portmapperPort});
        return true;
    }
    if (options.portmapperPort) {
        error = reason;
        return false;
    }
    warnings.push_back("no portmapper at " + site.address + " (" + reason +
                       "): VXI-11 clients there need the core port, or give PortmapperPort");
    return true;
}

bool Simulator::Impl::bindAll(std::string& error) {
    for (std::size_t i = 0; i < sites.size(); ++i) {
        Site& site = sites[i];
        if (!site.devices.empty()) {
            std::uint16_t corePort = 0;
            for (const auto& [name, instrument] : site.devices)
                if (instrument->corePort != 0) corePort = instrument->corePort;
            if (!addListener(site.address, corePort, Kind::Core, i, error)) return false;
            site.corePort = listeners.back().port;
            if (!site.ipv6 && !bindPortmapper(site, i, error)) return false;
        }
        for (const auto& [port, subAddresses] : site.hislip)
            if (!addListener(site.address, port, Kind::Hislip, i, error)) return false;
        for (const auto& [port, instrument] : site.sockets)
            if (!addListener(site.address, port, Kind::Socket, i, error)) return false;
    }
    // Broadcasts reach only a socket bound to the wildcard address: one per
    // portmapper port, answering for the sites behind it.
    std::vector<std::uint16_t> udpPorts;
    for (const Site& site : sites)
        if (site.portmapperPort != 0 &&
            std::find(udpPorts.begin(), udpPorts.end(), site.portmapperPort) == udpPorts.end())
            udpPorts.push_back(site.portmapperPort);
    for (std::uint16_t port : udpPorts) {
        std::string failure;
        const int fd = bindSocket("0.0.0.0", port, SOCK_DGRAM, true, failure);
        if (fd < 0) {
            warnings.push_back("portmapper broadcasts go unanswered: " + failure);
            continue;
        }
        const int on = 1;
        setsockopt(fd, IPPROTO_IP, IP_PKTINFO, &on, sizeof on);
        listeners.push_back({fd, Kind::PortmapperUdp, 0, port});
    }
    if (options.mdns) bindMdns();
    return true;
}

void Simulator::Impl::bindMdns() {
    const std::vector<LocalInterface> interfaces = localInterfaces();
    std::string failure;
    const int v4 = bindSocket("0.0.0.0", options.mdnsPort, SOCK_DGRAM, true, failure);
    if (v4 >= 0) {
        for (const LocalInterface& intf : interfaces) {
            if (!intf.hasIpv4) continue;
            ip_mreqn group{};
            group.imr_multiaddr.s_addr = htonl(0xE00000FB);
            group.imr_ifindex = static_cast<int>(intf.index);
            setsockopt(v4, IPPROTO_IP, IP_ADD_MEMBERSHIP, &group, sizeof group);
        }
        listeners.push_back({v4, Kind::MdnsUdp, 0, options.mdnsPort});
    } else {
        warnings.push_back("no mDNS answers over IPv4: " + failure);
    }
    const int v6 = bindSocket("::", options.mdnsPort, SOCK_DGRAM, true, failure);
    if (v6 < 0) return;  // a machine without IPv6
    for (const LocalInterface& intf : interfaces) {
        if (!intf.hasIpv6) continue;
        ipv6_mreq group{};
        inet_pton(AF_INET6, "ff02::fb", &group.ipv6mr_multiaddr);
        group.ipv6mr_interface = intf.index;
        setsockopt(v6, IPPROTO_IPV6, IPV6_JOIN_GROUP, &group, sizeof group);
    }
    listeners.push_back({v6, Kind::MdnsUdp, 0, options.mdnsPort});
}

void Simulator::Impl::run() {
    std::vector<pollfd> fds{{stopFd, POLLIN, 0}};
    for (const Listener& listener : listeners) fds.push_back({listener.fd, POLLIN, 0});
    for (;;) {
        if (poll(fds.data(), fds.size(), 1000) < 0 && errno != EINTR) return;
        if (fds[0].revents != 0) return;
        for (std::size_t i = 1; i < fds.size(); ++i) {
            if (fds[i].revents == 0) continue;
            const Listener& listener = listeners[i - 1];
            if (listener.kind == Kind::PortmapperUdp)
                answerPortmapperDatagram(listener.fd);
            else if (listener.kind == Kind::MdnsUdp)
                answerMdnsDatagram(listener.fd);
            else
                accept(listener);
        }
        reap(false);
    }
}

void Simulator::Impl::accept(const Listener& listener) {
    const int fd = accept4(listener.fd, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) return;
    // Every answer is one write that the client waits for.
    const int on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    std::lock_guard lock(mutex);
    Connection& connection = connections.emplace_back();
    connection.fd = fd;
    connection.thread = std::thread([this, listener, fd, &connection] {
        serve(listener, fd);
        connection.done = true;
    });
}

void Simulator::Impl::serve(const Listener& listener, int fd) {
    const Stream stream{fd};
    const Site& site = sites[listener.site];
    switch (listener.kind) {
    case Kind::Portmapper: return servePortmapper(stream, site);
    case Kind::Core: return serveCore(stream, site);
    case Kind::Hislip: return serveHislip(stream, site.hislip.at(listener.port), sessions);
    case Kind::Socket: return serveSocket(stream, *site.sockets.at(listener.port));
    case Kind::PortmapperUdp:
    case Kind::MdnsUdp: break;
    }
}

// A GETPORT sent to one of our addresses is answered for it; one sent to a
// broadcast address, once for every address behind this port, each reply
// from its own address so the client sees one instrument per address.
void Simulator::Impl::answerPortmapperDatagram(int fd) {
    std::uint8_t buffer[2048];
    alignas(cmsghdr) char control[256];
    sockaddr_in from{};
    iovec io{buffer, sizeof buffer};
    msghdr message{&from, sizeof from, &io, 1, control, sizeof control, 0};
    const ssize_t n = recvmsg(fd, &message, 0);
    if (n <= 0) return;
    in_addr destination{};
    for (cmsghdr* c = CMSG_FIRSTHDR(&message); c != nullptr; c = CMSG_NXTHDR(&message, c))
        if (c->cmsg_level == IPPROTO_IP && c->cmsg_type == IP_PKTINFO)
            destination = reinterpret_cast<const in_pktinfo*>(CMSG_DATA(c))->ipi_addr;
    rpc::Call call;
    if (!rpc::parseCall({buffer, static_cast<std::size_t>(n)}, call)) return;
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &destination, text, sizeof text);
    const bool direct = std::any_of(sites.begin(), sites.end(), [&](const Site& s) { return s.address == text; });
    const std::uint16_t port = boundPort(fd);
    for (const Site& site : sites) {
        if (site.ipv6 || site.portmapperPort != port || (direct && site.address != text)) continue;
        const auto record = portmapperAnswer(call, site);
        const auto body = rpc::withoutRecordMark(record);
        iovec reply{const_cast<std::uint8_t*>(body.data()), body.size()};
        alignas(cmsghdr) char source[CMSG_SPACE(sizeof(in_pktinfo))] = {};
        msghdr out{&from, sizeof from, &reply, 1, source, sizeof source, 0};
        cmsghdr* c = CMSG_FIRSTHDR(&out);
        c->cmsg_level = IPPROTO_IP;
        c->cmsg_type = IP_PKTINFO;
        c->cmsg_len = CMSG_LEN(sizeof(in_pktinfo));
        in_pktinfo info{};
        inet_pton(AF_INET, site.address.c_str(), &info.ipi_spec_dst);
        std::memcpy(CMSG_DATA(c), &info, sizeof info);
        sendmsg(fd, &out, 0);
    }
}

void Simulator::Impl::answerMdnsDatagram(int fd) {
    std::uint8_t buffer[9000];
    sockaddr_storage from{};
    socklen_t length = sizeof from;
    const ssize_t n = recvfrom(fd, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&from), &length);
    dns::Message query;
    if (n <= 0 || !dns::parseMessage({buffer, static_cast<std::size_t>(n)}, query)) return;
    // Straight back to the querier, which for a one-shot query is the
    // only one listening on its port.
    for (const auto& response : mdnsResponses(query, sites))
        sendto(fd, response.data(), response.size(), 0, reinterpret_cast<sockaddr*>(&from), length);
}

void Simulator::Impl::reap(bool all) {
    std::lock_guard lock(mutex);
    for (auto it = connections.begin(); it != connections.end();) {
        if (all) shutdown(it->fd, SHUT_RDWR);
        if (!all && !it->done) {
            ++it;
            continue;
        }
        it->thread.join();
        close(it->fd);
        it = connections.erase(it);
    }
}

void Simulator::Impl::stop() {
    if (loop.joinable()) {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = write(stopFd, &one, sizeof one);
        loop.join();
    }
    reap(true);
    for (const Listener& listener : listeners) close(listener.fd);
    listeners.clear();
    if (stopFd >= 0) close(stopFd);
    stopFd = -1;
}

Simulator::Simulator() = default;
Simulator::~Simulator() = default;

bool Simulator::start(Lab lab, const SimulatorOptions& options, std::string& error) {
    stop();
    impl_ = std::make_unique<Impl>();
    impl_->lab = std::move(lab);
    impl_->options = options;
    impl_->stopFd = eventfd(0, EFD_CLOEXEC);
    if (impl_->stopFd < 0 || !impl_->assign(error) || !impl_->bindAll(error)) {
        impl_.reset();
        return false;
    }
    impl_->loop = std::thread([impl = impl_.get()] { impl->run(); });
    return true;
}

void Simulator::stop() { impl_.reset(); }

const std::vector<Site>& Simulator::sites() const {
    static const std::vector<Site> none;
    return impl_ ? impl_->sites : none;
}

const std::vector<std::string>& Simulator::warnings() const {
    static const std::vector<std::string> none;
    return impl_ ? impl_->warnings : none;
}

std::vector<std::string> Simulator::describe() const {
    std::vector<std::string> lines;
    for (const Site& site : sites()) {
        if (site.corePort != 0) {
            std::vector<std::string> names;
            for (const auto& [name, instrument] : site.devices) names.push_back(name);
            lines.push_back("VXI-11  " + site.address + " core port " + std::to_string(site.corePort) +
                            (site.portmapperPort != 0 ? ", portmapper port " + std::to_string(site.portmapperPort)
                                                      : ", no portmapper") +
                            ": " + join(names));
        }
        for (const auto& [port, subAddresses] : site.hislip) {
            std::vector<std::string> names;
            for (const auto& [name, instrument] : subAddresses) names.push_back(name);
            lines.push_back("HiSLIP  " + site.address + " port " + std::to_string(port) + ": " + join(names));
        }
        for (const auto& [port, instrument] : site.sockets)
            lines.push_back("SOCKET  " + site.address + " port " + std::to_string(port) + ": " + instrument->resource);
    }
    if (impl_ && impl_->options.mdns) lines.push_back("mDNS    answers on port " + std::to_string(impl_->options.mdnsPort));
    return lines;
}

}  // namespace braxcfg::visa::lan::sim
