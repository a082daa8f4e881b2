#pragma once
// The LAN resource strings the probe understands:
//   TCPIP[board]::host[::lan_device_name][::INSTR]
//   TCPIP[board]::host::port::SOCKET
// Words compare without regard to case. The device name defaults to inst0;
// "hislipN[,port]" means HiSLIP, anything else is a VXI-11 device name
// ("instN", "gpib0,N[,sad]", ...). A host is a name, an IPv4 address or an
// IPv6 address in brackets.
#include <cstdint>
#include <string>
#include <string_view>

#include "visacore/visa_types.h"

namespace braxcfg::visa::lan {

enum class LanProtocol { Vxi11, Hislip, Socket };

inline constexpr std::uint16_t kHislipDefaultPort = 4880;

struct LanResource {
    LanProtocol protocol = LanProtocol::Vxi11;
    unsigned board = 0;
    std::string host;        // as written, without the brackets of an IPv6 address
    std::string deviceName;  // VXI-11 device name, or the HiSLIP sub-address without its port
    std::uint16_t port = 0;  // HiSLIP and SOCKET
};

// VI_SUCCESS with `out` filled; VI_ERROR_NSUP_OPER for a well-formed
// resource of another interface type (GPIB0::1::INSTR); otherwise
// VI_ERROR_INV_RSRC_NAME.
ViStatus parseLanResource(std::string_view text, LanResource& out);

// The canonical resource string: "TCPIP0::10.0.0.5::inst0::INSTR",
// "TCPIP0::10.0.0.5::hislip0,4881::INSTR" (the port only when it is not
// 4880), "TCPIP0::[fe80::1%eth0]::5025::SOCKET".
std::string formatLanResource(const LanResource& resource);

}  // namespace braxcfg::visa::lan
