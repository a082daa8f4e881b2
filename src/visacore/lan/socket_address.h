#pragma once
// An IPv4 or IPv6 socket address as the resolver hands it over.
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>
#include <string>

namespace braxcfg::visa::lan {

struct SocketAddress {
    sockaddr_storage storage{};
    socklen_t length = 0;

    int family() const { return storage.ss_family; }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }
    // The same host with another port.
    SocketAddress withPort(std::uint16_t port) const;
    // "127.0.0.1:111", "[::1]:4880"; for diagnostics.
    std::string text() const;

    static SocketAddress ipv4(std::uint32_t hostOrderAddress, std::uint16_t port);
};

}  // namespace braxcfg::visa::lan
