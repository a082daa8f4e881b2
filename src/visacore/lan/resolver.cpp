#include "visacore/lan/resolver.h"

#include <netdb.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>

#include "visacore/lan/tcp_link.h"

namespace braxcfg::visa::lan {
namespace {

int lookUp(const std::string& host, int flags, std::vector<SocketAddress>& out) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    addrinfo* list = nullptr;
    const int rc = getaddrinfo(host.c_str(), nullptr, &hints, &list);
    if (rc != 0) return rc;
    for (const addrinfo* it = list; it != nullptr; it = it->ai_next) {
        if (it->ai_addrlen > sizeof(sockaddr_storage)) continue;
        if (it->ai_family != AF_INET && it->ai_family != AF_INET6) continue;
        SocketAddress address;
        std::memcpy(&address.storage, it->ai_addr, it->ai_addrlen);
        address.length = it->ai_addrlen;
        out.push_back(address);
    }
    freeaddrinfo(list);
    return out.empty() ? EAI_NONAME : 0;
}

bool pickPreferred(const std::vector<SocketAddress>& addresses, SocketAddress& out) {
    for (const SocketAddress& address : addresses) {
        if (address.family() == AF_INET) {
            out = address;
            return true;
        }
    }
    if (addresses.empty()) return false;
    out = addresses.front();
    return true;
}

// What the helper thread and the waiter share. The waiter may leave first;
// whoever holds the last reference frees it.
struct Lookup {
    std::mutex mutex;
    int rc = EAI_AGAIN;
    std::vector<SocketAddress> addresses;
    int doneFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);

    ~Lookup() {
        if (doneFd >= 0) close(doneFd);
    }
};

void runLookup(const std::shared_ptr<Lookup>& lookup, const Resolver& resolver, const std::string& host) {
    std::vector<SocketAddress> addresses;
    int rc = EAI_FAIL;
    try {
        rc = resolver(host, addresses);
    } catch (...) {
        rc = EAI_FAIL;
    }
    std::lock_guard lock(lookup->mutex);
    lookup->rc = rc;
    lookup->addresses = std::move(addresses);
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(lookup->doneFd, &one, sizeof one);
}

}  // namespace

int systemResolve(const std::string& host, std::vector<SocketAddress>& out) {
    // No AI_ADDRCONFIG: it hides "localhost" on a machine whose only
    // interface is the loopback one.
    return lookUp(host, 0, out);
}

ResolveOutcome resolveHost(const std::string& host, const Resolver& resolver, const Deadline& deadline,
                           const CancelToken* cancel, SocketAddress& out) {
    std::vector<SocketAddress> addresses;
    if (lookUp(host, AI_NUMERICHOST, addresses) == 0) return pickPreferred(addresses, out) ? ResolveOutcome::Resolved
                                                                                            : ResolveOutcome::Unknown;
    if (!resolver) return ResolveOutcome::Unknown;

    std::shared_ptr<Lookup> lookup;
    try {
        lookup = std::make_shared<Lookup>();
        if (lookup->doneFd < 0) return ResolveOutcome::Failed;
        std::thread(runLookup, lookup, resolver, host).detach();
    } catch (...) {
        return ResolveOutcome::Failed;
    }
    switch (waitFor(lookup->doneFd, POLLIN, deadline, cancel)) {
    case WaitResult::Ready: break;
    case WaitResult::TimedOut: return ResolveOutcome::TimedOut;
    case WaitResult::Cancelled: return ResolveOutcome::Cancelled;
    case WaitResult::Failed: return ResolveOutcome::Failed;
    }
    std::lock_guard lock(lookup->mutex);
    if (lookup->rc != 0) return ResolveOutcome::Unknown;
    return pickPreferred(lookup->addresses, out) ? ResolveOutcome::Resolved : ResolveOutcome::Unknown;
}

}  // namespace braxcfg::visa::lan
