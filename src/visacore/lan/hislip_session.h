#pragma once
// A HiSLIP session: Initialize on the synchronous channel, AsyncInitialize
// on the asynchronous one, then a query as DataEnd and the server's Data
// and DataEnd messages back. Every wait is bounded by the caller's context.
#include <cstdint>
#include <string>
#include <string_view>

#include "visacore/lan/probe_step.h"

namespace braxcfg::visa::lan {

// Connects `sync` (whose deadline bounds every wait) to `host` at `port`
// and initializes it for `subAddress`.
// VI_SUCCESS with the server's session ID, or the status that says why not
// (see probeLanResource).
ViStatus openHislipSync(const SocketAddress& host, std::string_view subAddress, std::uint16_t port, TcpLink& sync,
                        std::uint16_t& sessionId);

// Completes the session on `async` and passes one query over `sync`.
ViStatus hislipQuery(const SocketAddress& host, std::uint16_t port, std::uint16_t sessionId, TcpLink& sync,
                     TcpLink& async, std::string_view command, std::string& answer);

}  // namespace braxcfg::visa::lan
