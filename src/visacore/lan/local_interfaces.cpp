#include "visacore/lan/local_interfaces.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>

#include <algorithm>

namespace braxcfg::visa::lan {

std::vector<LocalInterface> localInterfaces() {
    std::vector<LocalInterface> result;
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) return result;
    for (const ifaddrs* it = list; it != nullptr; it = it->ifa_next) {
        if (it->ifa_addr == nullptr || (it->ifa_flags & IFF_UP) == 0) continue;
        const int family = it->ifa_addr->sa_family;
        if (family != AF_INET && family != AF_INET6) continue;
        auto found = std::find_if(result.begin(), result.end(),
                                  [&](const LocalInterface& known) { return known.name == it->ifa_name; });
        if (found == result.end()) {
            LocalInterface added;
            added.name = it->ifa_name;
            added.index = if_nametoindex(it->ifa_name);
            added.loopback = (it->ifa_flags & IFF_LOOPBACK) != 0;
            added.multicast = (it->ifa_flags & IFF_MULTICAST) != 0;
            result.push_back(added);
            found = result.end() - 1;
        }
        if (family == AF_INET6) {
            found->hasIpv6 = true;
            continue;
        }
        if (found->hasIpv4) continue;
        found->hasIpv4 = true;
        found->ipv4 = reinterpret_cast<const sockaddr_in*>(it->ifa_addr)->sin_addr;
        if (found->loopback) {
            found->hasBroadcast = true;
            found->broadcast.s_addr = htonl(0x7FFFFFFF);
        } else if ((it->ifa_flags & IFF_BROADCAST) != 0 && it->ifa_broadaddr != nullptr) {
            found->hasBroadcast = true;
            found->broadcast = reinterpret_cast<const sockaddr_in*>(it->ifa_broadaddr)->sin_addr;
        }
    }
    freeifaddrs(list);
    return result;
}

}  // namespace braxcfg::visa::lan
