#pragma once
// Host name resolution with a bound. The name service may take as long as
// it likes (an unreachable DNS server holds getaddrinfo for many seconds),
// so a lookup runs on a helper thread that is abandoned when the probe's
// deadline passes or it is cancelled.
#include <functional>
#include <string>
#include <vector>

#include "visacore/cancel_token.h"
#include "visacore/lan/socket_address.h"
#include "visacore/lan/tcp_link.h"

namespace braxcfg::visa::lan {

// Looks `host` up and fills `out` with stream addresses; returns 0 or a
// getaddrinfo error (EAI_NONAME, ...). Tests inject their own.
using Resolver = std::function<int(const std::string& host, std::vector<SocketAddress>& out)>;

// The system's name service (getaddrinfo). Blocking; only ever called on a
// helper thread by resolveHost.
int systemResolve(const std::string& host, std::vector<SocketAddress>& out);

enum class ResolveOutcome { Resolved, Unknown, TimedOut, Cancelled, Failed };

// A numeric IPv4 or IPv6 address is taken as it is, without the resolver.
// Otherwise `resolver` runs on a helper thread under `deadline`. Of several
// addresses the first IPv4 one is preferred.
ResolveOutcome resolveHost(const std::string& host, const Resolver& resolver, const Deadline& deadline,
                           const CancelToken* cancel, SocketAddress& out);

}  // namespace braxcfg::visa::lan
