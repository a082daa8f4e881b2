#include "visacore/lan/lan_resource.h"

#include <gtest/gtest.h>

namespace braxcfg::visa::lan {
namespace {

struct ParseCase {
    const char* text;
    ViStatus status;
    LanProtocol protocol = LanProtocol::Vxi11;
    const char* host = "";
    const char* device = "";
    std::uint16_t port = 0;
    unsigned board = 0;
};

TEST(LanResource, ParsesWhatUsersWrite) {
    const ParseCase cases[] = {
        // Defaults: board 0, device inst0, class INSTR.
        {"TCPIP::scope.lab::INSTR", VI_SUCCESS, LanProtocol::Vxi11, "scope.lab", "inst0"},
        {"TCPIP::10.0.0.5", VI_SUCCESS, LanProtocol::Vxi11, "10.0.0.5", "inst0"},
        {"TCPIP3::10.0.0.5::inst2", VI_SUCCESS, LanProtocol::Vxi11, "10.0.0.5", "inst2", 0, 3},
        {"tcpip0::host::INST1::instr", VI_SUCCESS, LanProtocol::Vxi11, "host", "INST1"},
        {"TCPIP0::gw::gpib0,2::INSTR", VI_SUCCESS, LanProtocol::Vxi11, "gw", "gpib0,2"},
        {"TCPIP0::gw::gpib0,2,96::INSTR", VI_SUCCESS, LanProtocol::Vxi11, "gw", "gpib0,2,96"},
        {"  TCPIP0::host::inst0::INSTR\t", VI_SUCCESS, LanProtocol::Vxi11, "host", "inst0"},
        // Brackets keep "::" inside an IPv6 host or a device name.
        {"TCPIP0::[fe80::1%eth0]::inst0::INSTR", VI_SUCCESS, LanProtocol::Vxi11, "fe80::1%eth0", "inst0"},
        {"TCPIP0::[::1]::hislip0::INSTR", VI_SUCCESS, LanProtocol::Hislip, "::1", "hislip0", 4880},
        {"TCPIP0::gw::usb0[2391::1031::SN7::0]::INSTR", VI_SUCCESS, LanProtocol::Vxi11, "gw",
         "usb0[2391::1031::SN7::0]"},
        // HiSLIP: default port 4880, an explicit one after the comma.
        {"TCPIP0::host::hislip0::INSTR", VI_SUCCESS, LanProtocol::Hislip, "host", "hislip0", 4880},
        {"TCPIP0::host::HiSLIP2,4881::INSTR", VI_SUCCESS, LanProtocol::Hislip, "host", "HiSLIP2", 4881},
        {"TCPIP0::host::hislip0,65535", VI_SUCCESS, LanProtocol::Hislip, "host", "hislip0", 65535},
        // SOCKET needs a port from 1 to 65535.
        {"TCPIP0::host::5025::SOCKET", VI_SUCCESS, LanProtocol::Socket, "host", "", 5025},
        {"TCPIP::host::1::socket", VI_SUCCESS, LanProtocol::Socket, "host", "", 1},
        {"TCPIP0::host::0::SOCKET", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::host::65536::SOCKET", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::host::50x::SOCKET", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::host::SOCKET", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::host::hislip0,0::INSTR", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::host::hislip::INSTR", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::host::hislipA::INSTR", VI_ERROR_INV_RSRC_NAME},
        // Malformed.
        {"", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::", VI_ERROR_INV_RSRC_NAME},
        {"TCPIPX::host::INSTR", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::host::inst0::INSTR::more", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::host::inst0::BACKPLANE", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::ho st::inst0::INSTR", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::[fe80::1::inst0::INSTR", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::[]::inst0::INSTR", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::host::in st0::INSTR", VI_ERROR_INV_RSRC_NAME},
        {"TCPIP0::host::::INSTR", VI_ERROR_INV_RSRC_NAME},
        {"garbage", VI_ERROR_INV_RSRC_NAME},
        // Other interface types are resource strings, but not LAN ones.
        {"GPIB0::24::INSTR", VI_ERROR_NSUP_OPER},
        {"gpib-vxi1::8::INSTR", VI_ERROR_NSUP_OPER},
        {"ASRL1::INSTR", VI_ERROR_NSUP_OPER},
        {"USB0::0x1234::0x5678::SN::INSTR", VI_ERROR_NSUP_OPER},
        {"RSIB::host::INSTR", VI_ERROR_NSUP_OPER},
    };
    for (const ParseCase& c : cases) {
        SCOPED_TRACE(c.text);
        LanResource parsed;
        ASSERT_EQ(parseLanResource(c.text, parsed), c.status);
        if (c.status != VI_SUCCESS) continue;
        EXPECT_EQ(parsed.protocol, c.protocol);
        EXPECT_EQ(parsed.host, c.host);
        EXPECT_EQ(parsed.deviceName, c.device);
        EXPECT_EQ(parsed.port, c.port);
        EXPECT_EQ(parsed.board, c.board);
    }
}

TEST(LanResource, RefusesOverlongParts) {
    LanResource parsed;
    EXPECT_EQ(parseLanResource("TCPIP0::" + std::string(256, 'h') + "::INSTR", parsed), VI_ERROR_INV_RSRC_NAME);
    EXPECT_EQ(parseLanResource("TCPIP0::" + std::string(255, 'h') + "::INSTR", parsed), VI_SUCCESS);
}

}  // namespace
}  // namespace braxcfg::visa::lan
