// The commands that change interfaces, devices and aliases, run as child
// processes: set-up and end of pass through the loaded plug-in against a
// fixture with every interface type, and each command's exit codes and
// output on one store.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "braxcfg_version.h"
#include "tool_folder.h"

namespace {

const std::string kFixtures = BRAXCFG_TEST_FIXTURES;

using braxcfg::test::readFile;
using braxcfg::test::replaceAll;
using SetupEndPassTool = braxcfg::test::ToolFolder;

TEST_F(SetupEndPassTool, EveryInterfaceTypeGoesThroughSetUpAndEndOfPass) {
    std::filesystem::create_directories(dir_ + "/intfcfg");
    write("intfcfg/intfcfg.ini", "[Cfg232]\r\nVISAAutoConfig=True\r\n");
    write("base.reg", "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion]\n\"BaseDir\"=\"" +
                          dir_ + "\"\n");
    std::string output;
    ASSERT_EQ(run({"import", kFixtures + "/setup_every_type.reg"}, &output), 0) << output;
    ASSERT_EQ(run({"import", path("base.reg")}, &output), 0) << output;
    for (const char* intf : {"INTF0", "INTF1", "INTF2", "INTF3", "INTF4", "INTF5", "INTF6", "INTF7", "INTF8",
                             "INTF9", "INTF12"})
        ASSERT_EQ(run({"setup", intf}, &output), 0) << intf << ": " << output;
    ASSERT_EQ(run({"end-pass"}, &output), 0) << output;
    ASSERT_EQ(run({"export", "--utf8", path("out.reg")}, &output), 0) << output;

    std::string exported = readFile(path("out.reg"));
    replaceAll(exported, "\"BaseDir\"=\"" + dir_ + "\"", "\"BaseDir\"=\"@BASEDIR@\"");
    exported = std::regex_replace(exported, std::regex("\"LastMod\"=\"[A-Z][a-z]{2} [A-Z][a-z]{2} \\d{2} "
                                                       "\\d{2}:\\d{2}:\\d{2} \\d{4}\""),
                                  "\"LastMod\"=\"@LASTMOD@\"");
    std::string expected = readFile(kFixtures + "/setup_every_type.expected.reg");
    char number[16];
    // "ManfVersionNbr" is the version in the VISA encoding (12, 12 and 8 bits).
    std::snprintf(number, sizeof number, "%08x",
                  BRAXCFG_VERSION_MAJOR << 20 | BRAXCFG_VERSION_MINOR << 8 | BRAXCFG_VERSION_PATCH);
    replaceAll(expected, "@VERSIONNBR@", number);
    std::snprintf(number, sizeof number, "%08x", BRAXCFG_MANUFACTURER_ID);
    replaceAll(expected, "@MANFID@", number);
    replaceAll(expected, "@VERSION@", BRAXCFG_VERSION_TEXT);
    replaceAll(expected, "@YEARS@", BRAXCFG_COPYRIGHT_YEARS);
    EXPECT_EQ(exported, expected);
}

// Rows run in order on one store, each seeing what the rows above left.
// Without a display, so that no command can open a dialog.
TEST_F(SetupEndPassTool, EachCommandChecksItsInterfaceAndSaysWhatItDid) {
    const std::string noIntf = " in " + store() + " (braxcfg interfaces lists them)\n";
    const std::string notAKey = "' is not an interface key name (INTF0, INTF1, ...)\n";
    const struct { std::vector<std::string> args; int exitCode; std::string output; } rows[] = {  // stdout + stderr
        // One row per place that checks the key (the plug-in's exports share one; edit and configure one),
        // each of its two refusals at least once.
        {{"start", "intf0"}, 1, "braxcfg: there is no interface intf0" + noIntf},
        {{"configure", "INTF0"}, 1, "braxcfg: there is no interface INTF0" + noIntf},
        {{"devices", "INTF7"}, 1, "braxcfg: there is no interface INTF7" + noIntf},
        {{"interfaces", "remove", "VISAInfo"}, 2, "braxcfg: 'VISAInfo" + notAKey},
        {{"setup", "INTF0\\VISADev"}, 2, "braxcfg: 'INTF0\\VISADev" + notAKey},
        {{"interfaces", "add", "GPIB"}, 0, "INTF0\n"},
        {{"interfaces", "add", "gpib", "--board", "3"}, 0, "INTF1\n"},
        {{"interfaces", "add", "GPIB", "--board", "3"}, 2,
         "braxcfg: another interface is already called GPIB3; nothing was added\n"},
        {{"interfaces", "add", "Gpib"}, 0, "INTF2\n"},  // GPIB1, the lowest free board
        {{"interfaces", "add", "GPIB", "--socket"}, 2, "braxcfg: only TCPIP interfaces have SOCKET resources\n"},
        {{"interfaces", "add", "TCPIP", "--socket"}, 0, "INTF3\n"},
        {{"interfaces", "add", "ASRL"}, 0, "INTF4\n"},  // serial ports count from 1
        {{"interfaces", "add", "LAN"}, 2,
         "braxcfg: unknown interface type 'LAN' (GPIB, VXI, GPIB-VXI, ASRL, PXI, TCPIP, USB or RSIB)\n"},
        {{"interfaces", "add", "VXI", "--board", "65536"}, 2, "braxcfg: the board number must be from 0 to 65535\n"},
        {{"interfaces", "add", "VXI", "--board", "2x"}, 2,
         "braxcfg: --board takes a number from 0 to 65535, not '2x'\n"},
        {{"interfaces", "add"}, 2, "braxcfg: usage: braxcfg interfaces add TYPE [--board N] [--socket]\n"},
        {{"interfaces", "remove", "INTF1"}, 0, ""},
        {{"interfaces", "add", "VXI"}, 0, "INTF1\n"},  // the lowest free key
        {{"configure", "INTF3"}, 1,
         "braxcfg: INTF3 is not a GPIB, VXI or GPIB-VXI interface; 'braxcfg edit INTF3' edits its devices\n"},
        {{"edit", "INTF4"}, 1,
         "braxcfg: INTF4 has no device list to edit (editable are valid GPIB, VXI, GPIB-VXI and TCPIP interfaces, "
         "while the product's VISA is present)\n"},
        {{"edit", "INTF0"}, 2, "braxcfg: edit opens a dialog: no display (set DISPLAY)\n"},
        {{"devices", "INTF3", "add", "TCPIP0::host::5025::SOCKET", "--class", "SOCKET"}, 0, ""},
        {{"devices", "INTF3"}, 0,
         "TCPIP0::host::5025::SOCKET\n  TCPIP0::host::5025::SOCKET::SOCKET\n    Driver = \"INSTR\"\n"
         "    Prefix = \"SOCKET\"\n"},
        {{"devices", "INTF3", "clear"}, 0, ""},
        {{"devices", "INTF3"}, 0, "No device entries on INTF3 (TCPIP0).\n"},
        {{"interfaces"}, 0,
         "KEY      VISANAME     TYPE      SETUP      AUTOCONFIG DEVICES\n"
         "INTF0    GPIB0        GPIB      set-up     1          0\n"
         "INTF1    VXI0         VXI       set-up     1          0\n"
         "INTF2    GPIB1        GPIB      set-up     1          0\n"
         "INTF3    TCPIP0       TCPIP     set-up     0          0\n"
         "INTF4    ASRL1        ASRL      set-up     0          0\n"},
        {{"aliases", "set", "Scope1", "--resource", "TCPIP0::scope::INSTR", "--korl-address", "gpib0,3"}, 0, ""},
        {{"aliases", "set", "Dmm", "--resource", "TCPIP0::dmm::INSTR"}, 0, ""},
        {{"aliases", "set", "SCOPE1", "--resource", "TCPIP0::scope2::INSTR"}, 0, ""},  // the same alias
        {{"aliases", "remove", "dmm"}, 0, ""},
        {{"aliases", "remove", "dmm"}, 2, "braxcfg: no alias named dmm\n"},
        {{"aliases"}, 0, "ALIAS                RESOURCE (VISADevices)                   KORL ADDRESS (Devices)\n"
                         "SCOPE1               TCPIP0::scope2::INSTR                    gpib0,3\n"},
    };
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) unsetenv(name);
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.args));
        std::string output;
        EXPECT_EQ(run(row.args, &output), row.exitCode);
        EXPECT_EQ(output, row.output);
    }
}

}  // namespace
