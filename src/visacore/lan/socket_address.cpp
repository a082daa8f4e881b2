#include "visacore/lan/socket_address.h"

#include <arpa/inet.h>

namespace braxcfg::visa::lan {

SocketAddress SocketAddress::withPort(std::uint16_t port) const {
    SocketAddress copy = *this;
    if (family() == AF_INET)
        reinterpret_cast<sockaddr_in*>(&copy.storage)->sin_port = htons(port);
    else if (family() == AF_INET6)
        reinterpret_cast<sockaddr_in6*>(&copy.storage)->sin6_port = htons(port);
    return copy;
}

std::string SocketAddress::text() const {
    char host[INET6_ADDRSTRLEN] = "?";
    unsigned port = 0;
    if (family() == AF_INET) {
        const auto* in = reinterpret_cast<const sockaddr_in*>(&storage);
        inet_ntop(AF_INET, &in->sin_addr, host, sizeof host);
        port = ntohs(in->sin_port);
        return std::string(host) + ":" + std::to_string(port);
    }
    if (family() == AF_INET6) {
        const auto* in6 = reinterpret_cast<const sockaddr_in6*>(&storage);
        inet_ntop(AF_INET6, &in6->sin6_addr, host, sizeof host);
        port = ntohs(in6->sin6_port);
    }
    return "[" + std::string(host) + "]:" + std::to_string(port);
}

SocketAddress SocketAddress::ipv4(std::uint32_t hostOrderAddress, std::uint16_t port) {
    SocketAddress address;
    auto* in = reinterpret_cast<sockaddr_in*>(&address.storage);
    in->sin_family = AF_INET;
    in->sin_addr.s_addr = htonl(hostOrderAddress);
    in->sin_port = htons(port);
    address.length = sizeof(sockaddr_in);
    return address;
}

}  // namespace braxcfg::visa::lan
