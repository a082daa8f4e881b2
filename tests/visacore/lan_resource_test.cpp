#include "visacore/lan/lan_resource.h"

#include <gtest/gtest.h>

namespace braxcfg::visa::lan {
namespace {

TEST(LanResource, ParsesWhatUsersWrite) {
    const struct { std::string text; LanProtocol protocol; std::string host; const char* device;
                   std::uint16_t port = 0; unsigned board = 0; } cases[] = {
        // Defaults: board 0, device inst0, class INSTR.
        {"TCPIP::scope.lab::INSTR", LanProtocol::Vxi11, "scope.lab", "inst0"},
        {"TCPIP3::10.0.0.5::inst2", LanProtocol::Vxi11, "10.0.0.5", "inst2", 0, 3},
        {"tcpip0::host::INST1::instr", LanProtocol::Vxi11, "host", "INST1"},
        {"  TCPIP0::host::inst0::INSTR\t", LanProtocol::Vxi11, "host", "inst0"},
        // Brackets keep "::" inside an IPv6 host or a device name.
        {"TCPIP0::[fe80::1%eth0]::inst0::INSTR", LanProtocol::Vxi11, "fe80::1%eth0", "inst0"},
        {"TCPIP0::gw::usb0[2391::1031::SN7::0]::INSTR", LanProtocol::Vxi11, "gw", "usb0[2391::1031::SN7::0]"},
        // HiSLIP: default port 4880, an explicit one after the comma.
        {"TCPIP0::host::HiSLIP2,4881::INSTR", LanProtocol::Hislip, "host", "HiSLIP2", 4881},
        {"TCPIP0::host::hislip0,65535", LanProtocol::Hislip, "host", "hislip0", 65535},
        // SOCKET needs a port from 1 to 65535.
        {"TCPIP::host::1::socket", LanProtocol::Socket, "host", "", 1},
        // Host names up to 255 characters.
        {"TCPIP0::" + std::string(255, 'h') + "::INSTR", LanProtocol::Vxi11, std::string(255, 'h'), "inst0"},
    };
    for (const auto& c : cases) {
        LanResource parsed;
        ASSERT_EQ(parseLanResource(c.text, parsed), VI_SUCCESS) << c.text;
        EXPECT_EQ(std::tie(parsed.protocol, parsed.host, parsed.deviceName, parsed.port, parsed.board),
                  std::make_tuple(c.protocol, c.host, std::string(c.device), c.port, c.board));
    }
}

TEST(LanResource, RefusesMalformedAndForeignStrings) {
    const std::string malformed[] = {
        "TCPIP0::", "TCPIPX::host::INSTR", "TCPIP0::host::::INSTR", "TCPIP0::host::inst0::INSTR::more",
        "TCPIP0::host::inst0::BACKPLANE", "TCPIP0::ho st::inst0::INSTR", "TCPIP0::host::in st0::INSTR",
        "TCPIP0::[fe80::1::inst0::INSTR", "TCPIP0::[]::inst0::INSTR",
        // SOCKET needs a port from 1 to 65535, HiSLIP a number and a valid port.
        "TCPIP0::host::0::SOCKET", "TCPIP0::host::65536::SOCKET", "TCPIP0::host::50x::SOCKET", "TCPIP0::host::SOCKET",
        "TCPIP0::host::hislip0,0::INSTR", "TCPIP0::host::hislip::INSTR", "TCPIP0::host::hislipA::INSTR",
        "TCPIP0::" + std::string(256, 'h') + "::INSTR",
    };
    LanResource parsed;
    for (const std::string& bad : malformed) EXPECT_EQ(parseLanResource(bad, parsed), VI_ERROR_INV_RSRC_NAME) << bad;
    // Other interface types are resource strings, but not LAN ones.
    for (const char* other : {"GPIB0::24::INSTR", "gpib-vxi1::8::INSTR", "RSIB::host::INSTR"})
        EXPECT_EQ(parseLanResource(other, parsed), VI_ERROR_NSUP_OPER) << other;
}

}  // namespace
}  // namespace braxcfg::visa::lan
