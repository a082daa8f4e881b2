#pragma once
// A VXI-11 link over the core channel: the portmapper lookup, create_link,
// one query (device_write then device_read) and destroy_link, each bounded
// by the caller's deadline and cancel token.
#include <cstdint>
#include <string>
#include <string_view>

#include "visacore/lan/probe_step.h"

namespace braxcfg::visa::lan {

// Connects `link` to the core channel of `host` and opens a link to
// `device`. VI_SUCCESS with `linkId` set, or the status that says why not
// (see probeLanResource).
ViStatus openVxi11Link(const SocketAddress& host, std::string_view device, const ProbeContext& context,
                       TcpLink& link, std::int32_t& linkId);

// Writes `command` as one message and reads the instrument's answer up to
// its END. VI_ERROR_TMO when the instrument does not answer in time.
ViStatus vxi11Query(TcpLink& link, std::int32_t linkId, std::string_view command, const ProbeContext& context,
                    std::string& answer);

// Closing the link is a courtesy to the instrument; its outcome does not
// change what was found.
void closeVxi11Link(TcpLink& link, std::int32_t linkId);

}  // namespace braxcfg::visa::lan
