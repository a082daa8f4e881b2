#pragma once
// The machine's network interfaces that discovery sends on: each up IPv4
// interface's broadcast address, and every up interface that takes
// multicast (for mDNS over IPv4 and IPv6).
#include <netinet/in.h>

#include <string>
#include <vector>

namespace braxcfg::visa::lan {

struct LocalInterface {
    std::string name;
    unsigned index = 0;
    bool loopback = false;
    bool multicast = false;
    bool hasIpv4 = false;
    in_addr ipv4{};       // its first IPv4 address, when hasIpv4
    bool hasBroadcast = false;
    in_addr broadcast{};  // the IPv4 broadcast address, when hasBroadcast
    bool hasIpv6 = false;
};

// Up interfaces, in the system's order. The loopback interface has no
// broadcast flag but a local broadcast route: its broadcast address is
// 127.255.255.255, so instruments served on loopback can be found too.
std::vector<LocalInterface> localInterfaces();

}  // namespace braxcfg::visa::lan
