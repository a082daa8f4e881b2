// braxcfg setup / end-pass through the loaded plug-in, from a fixture store
// with every interface type to the exported result.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include "braxcfg_version.h"
#include "store_write_lock.h"
#include "tool_folder.h"

namespace {

const std::string kFixtures = BRAXCFG_TEST_FIXTURES;

using braxcfg::test::readFile;
using braxcfg::test::replaceAll;

class SetupEndPassTool : public braxcfg::test::ToolFolder {
protected:
    void SetUp() override {
        ToolFolder::SetUp();
        std::filesystem::create_directories(dir_ + "/intfcfg");
        write("intfcfg/intfcfg.ini", "[Cfg232]\r\nVISAAutoConfig=True\r\n");
    }
};

TEST_F(SetupEndPassTool, EveryInterfaceTypeGoesThroughSetUpAndEndOfPass) {
    const std::string productKey = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion";
    std::ofstream(dir_ + "/base.reg") << "REGEDIT4\n\n[" << productKey << "]\n\"BaseDir\"=\"" << dir_ << "\"\n";
    std::string output;
    ASSERT_EQ(run({"import", kFixtures + "/setup_every_type.reg"}, &output), 0) << output;
    ASSERT_EQ(run({"import", dir_ + "/base.reg"}, &output), 0) << output;
    for (const char* intf : {"INTF0", "INTF1", "INTF2", "INTF3", "INTF4", "INTF5", "INTF6", "INTF7", "INTF8",
                             "INTF9", "INTF12"})
        ASSERT_EQ(run({"setup", intf}, &output), 0) << intf << ": " << output;
    ASSERT_EQ(run({"end-pass"}, &output), 0) << output;
    ASSERT_EQ(run({"export", "--utf8", dir_ + "/out.reg"}, &output), 0) << output;

    std::string exported = readFile(dir_ + "/out.reg");
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

TEST_F(SetupEndPassTool, DevicesAndAliasesEditTheStore) {
    std::string output;
    ASSERT_EQ(run({"import", kFixtures + "/setup_every_type.reg"}, &output), 0) << output;
    EXPECT_EQ(run({"devices", "INTF1", "add", "VXI0::3"}, &output), 2);
    EXPECT_NE(output.find("no device list yet"), std::string::npos) << output;
    ASSERT_EQ(run({"setup", "INTF5"}, &output), 0) << output;
    ASSERT_EQ(run({"devices", "INTF5", "add", "TCPIP0::host::5025::SOCKET", "--class", "SOCKET"}, &output), 0);
    ASSERT_EQ(run({"devices", "INTF5"}, &output), 0);
    EXPECT_EQ(output,
              "TCPIP0::host::5025::SOCKET\n"
              "  TCPIP0::host::5025::SOCKET::SOCKET\n"
              "    Driver = \"INSTR\"\n"
              "    Prefix = \"SOCKET\"\n");
    ASSERT_EQ(run({"devices", "INTF5", "clear"}, &output), 0);
    ASSERT_EQ(run({"devices", "INTF5"}, &output), 0);
    EXPECT_EQ(output, "No device entries on INTF5 (TCPIP0).\n");
    EXPECT_EQ(run({"devices", "INTF9"}, &output), 2);

    ASSERT_EQ(run({"aliases", "set", "Scope1", "--resource", "TCPIP0::scope::INSTR", "--korl-address", "gpib0,3"}),
              0);
    ASSERT_EQ(run({"aliases", "set", "Dmm", "--resource", "TCPIP0::dmm::INSTR"}), 0);
    ASSERT_EQ(run({"aliases", "set", "SCOPE1", "--resource", "TCPIP0::scope2::INSTR"}), 0);
    ASSERT_EQ(run({"aliases", "remove", "dmm"}), 0);
    EXPECT_EQ(run({"aliases", "remove", "dmm"}, &output), 2);
    ASSERT_EQ(run({"aliases"}, &output), 0);
    EXPECT_NE(output.find("SCOPE1               TCPIP0::scope2::INSTR                    gpib0,3\n"),
              std::string::npos)
        << output;
    EXPECT_EQ(output.find("Dmm"), std::string::npos) << output;
}

// Rows run in order on one store, each seeing what the rows above left.
// Without a display, so that no command can open a dialog.
TEST_F(SetupEndPassTool, InterfaceKeysAreAddedRemovedAndCheckedByEveryCommand) {
    const struct {
        std::vector<std::string> args;
        int exitCode;
        const char* output;  // stdout and stderr
        bool locked = false;
    } rows[] = {
        {{"setup", "INTF99"}, 1, "braxcfg: there is no interface INTF99 in @STORE@ (braxcfg interfaces lists them)\n"},
        {{"valid", "INTF99"}, 1, "braxcfg: there is no interface INTF99 in @STORE@ (braxcfg interfaces lists them)\n"},
        {{"start", "intf0"}, 1, "braxcfg: there is no interface intf0 in @STORE@ (braxcfg interfaces lists them)\n"},
        {{"edit", "INTF99"}, 1, "braxcfg: there is no interface INTF99 in @STORE@ (braxcfg interfaces lists them)\n"},
        {{"configure", "INTF0"}, 1, "braxcfg: there is no interface INTF0 in @STORE@ (braxcfg interfaces lists them)\n"},
        {{"devices", "INTF7"}, 1, "braxcfg: there is no interface INTF7 in @STORE@ (braxcfg interfaces lists them)\n"},
        {{"interfaces", "remove", "INTF0"}, 1,
         "braxcfg: there is no interface INTF0 in @STORE@ (braxcfg interfaces lists them)\n"},
        {{"interfaces", "remove", "VISAInfo"}, 2, "braxcfg: 'VISAInfo' is not an interface key name (INTF0, INTF1, ...)\n"},
        {{"setup", "INTF0\\VISADev"}, 2,
         "braxcfg: 'INTF0\\VISADev' is not an interface key name (INTF0, INTF1, ...)\n"},
        {{"interfaces", "add", "GPIB"}, 0, "INTF0\n"},
        {{"interfaces", "add", "gpib", "--board", "3"}, 0, "INTF1\n"},
        {{"interfaces", "add", "GPIB", "--board", "3"}, 2, "braxcfg: another interface is already called GPIB3; nothing was added\n"},
        {{"interfaces", "add", "Gpib"}, 0, "INTF2\n"},  // GPIB1, the lowest free board
        {{"interfaces", "add", "GPIB", "--socket"}, 2, "braxcfg: only TCPIP interfaces have SOCKET resources\n"},
        {{"interfaces", "add", "TCPIP", "--socket"}, 0, "INTF3\n"},
        {{"interfaces", "add", "ASRL"}, 0, "INTF4\n"},  // serial ports count from 1
        {{"interfaces", "add", "LAN"}, 2,
         "braxcfg: unknown interface type 'LAN' (GPIB, VXI, GPIB-VXI, ASRL, PXI, TCPIP, USB or RSIB)\n"},
        {{"interfaces", "add", "VXI", "--board", "65536"}, 2, "braxcfg: the board number must be from 0 to 65535\n"},
        {{"interfaces", "add", "VXI", "--board", "2x"}, 2, "braxcfg: --board takes a number from 0 to 65535, not '2x'\n"},
        {{"interfaces", "add"}, 2, "braxcfg: usage: braxcfg interfaces add TYPE [--board N] [--socket]\n"},
        {{"interfaces", "remove", "INTF1"}, 0, ""},
        {{"interfaces", "add", "VXI"}, 0, "INTF1\n"},  // the lowest free key
        {{"interfaces", "add", "USB"}, 2, "braxcfg: the store @STORE@ is busy (another program is changing it), try again; nothing was changed\n", true},
        {{"interfaces", "remove", "INTF0"}, 2, "braxcfg: the store @STORE@ is busy (another program is changing it), try again; nothing was changed\n",
         true},
        {{"configure", "INTF3"}, 1,
         "braxcfg: INTF3 is not a GPIB, VXI or GPIB-VXI interface; 'braxcfg edit INTF3' edits its devices\n"},
        {{"edit", "INTF4"}, 1,
         "braxcfg: INTF4 has no device list to edit (editable are valid GPIB, VXI, GPIB-VXI and TCPIP interfaces, "
         "while the product's VISA is present)\n"},
        {{"edit", "INTF0"}, 2, "braxcfg: edit opens a dialog: no display (set DISPLAY)\n"},
        {{"interfaces"}, 0,
         "KEY      VISANAME     TYPE      SETUP      AUTOCONFIG DEVICES\n"
         "INTF0    GPIB0        GPIB      set-up     1          0\n"
         "INTF1    VXI0         VXI       set-up     1          0\n"
         "INTF2    GPIB1        GPIB      set-up     1          0\n"
         "INTF3    TCPIP0       TCPIP     set-up     0          0\n"
         "INTF4    ASRL1        ASRL      set-up     0          0\n"},
    };
    const std::string store = dir_ + "/store.db";
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) unsetenv(name);
    for (const auto& row : rows) {
        std::string joined;
        for (const std::string& arg : row.args) joined += arg + " ";
        SCOPED_TRACE(joined);
        std::string output;
        int exitCode = 0;
        if (row.locked) {
            const braxcfg::test::StoreWriteLock lock(store);
            ASSERT_TRUE(lock.held());
            exitCode = run(row.args, &output);
        } else {
            exitCode = run(row.args, &output);
        }
        std::string expected = row.output;
        replaceAll(expected, "@STORE@", store);
        EXPECT_EQ(exitCode, row.exitCode);
        EXPECT_EQ(output, expected);
    }
}

}  // namespace
