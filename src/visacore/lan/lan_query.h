#pragma once
// One query to a LAN instrument: open the resource, send a command, read
// the answer, close. VXI-11 uses a link with device_write/device_read,
// HiSLIP a full session (both channels), SOCKET a newline-terminated line.
// The probe's deadline, cancel token and statuses apply: a resource that
// cannot be opened gives exactly the status probeLanResource would.
#include <string>
#include <string_view>

#include "visacore/lan/lan_probe.h"

namespace braxcfg::visa::lan {

inline constexpr std::string_view kIdentificationQuery = "*IDN?";

// VI_SUCCESS with the answer, its line end removed.
ViStatus queryLanResource(std::string_view resource, std::string_view command, const LanProbeOptions& options,
                          std::string& answer);

}  // namespace braxcfg::visa::lan
