#pragma once
// The built-in LAN resource probe: says whether a TCPIP resource answers,
// keeping three outcomes apart: found (VI_SUCCESS), host reached but the
// resource is not there (exactly VI_ERROR_RSRC_NFOUND), and every way of
// not reaching the host (each its own negative status). One deadline bounds
// the whole probe, name resolution included; a cancel token ends it early
// with VI_ERROR_ABORT.
#include <chrono>
#include <cstdint>
#include <string_view>

#include "visacore/cancel_token.h"
#include "visacore/lan/resolver.h"
#include "visacore/visa_types.h"

namespace braxcfg::visa::lan {

inline constexpr std::chrono::milliseconds kDefaultProbeBudget{3000};
inline constexpr std::uint16_t kPortmapperPort = 111;

struct LanProbeOptions {
    std::chrono::milliseconds budget = kDefaultProbeBudget;
    const CancelToken* cancel = nullptr;
    Resolver resolver = systemResolve;
    std::uint16_t portmapperPort = kPortmapperPort;
};

// VI_SUCCESS: found. VI_ERROR_RSRC_NFOUND: the host refused the connection
// or its server has no such resource. VI_ERROR_MACHINE_NAVAIL: unknown or
// unreachable host. VI_ERROR_TMO: the budget ran out. VI_ERROR_ABORT:
// cancelled. VI_ERROR_RSRC_BUSY / VI_ERROR_RSRC_LOCKED: there, but taken.
// VI_ERROR_IO / VI_ERROR_CONN_LOST: a reply that makes no sense or a peer
// that hung up mid-call. VI_ERROR_INV_RSRC_NAME: not a resource string;
// VI_ERROR_NSUP_OPER: a resource of another interface type.
ViStatus probeLanResource(std::string_view resource, const LanProbeOptions& options);

}  // namespace braxcfg::visa::lan
