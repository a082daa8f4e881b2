// The device list as a person uses it, under a real X server: the tool
// opens it, keystrokes go through the X server to the windows (xdotool),
// and the store is read back afterwards.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tool_folder.h"
#include "x_session.h"

namespace {

using namespace std::chrono_literals;
std::string shellQuoted(const std::string& word) {
    std::string out = "'";
    for (char c : word) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

const std::string kProduct = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion";

using ShowDevicesUnderX = braxcfg::test::ToolFolder;

TEST_F(ShowDevicesUnderX, AddAutoAddAndOkReachTheStore) {
    const braxcfg::test::XSession x;
    if (!x.unavailable().empty()) GTEST_SKIP() << x.unavailable();
    const std::string& dir = dir_;
    std::ofstream(dir + "/start.reg") << "REGEDIT4\n\n[" << kProduct
                                      << "\\INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n"
                                         "\"VISAAutoConfig\"=hex:01\n\n["
                                      << kProduct << "\\INTF0\\VISADev]\n\n[" << kProduct
                                      << "\\VISAInfo\\DefaultRsrcs\\INSTR]\n\"DrvrName\"=\"INSTR\"\n"
                                         "\"PrefixName\"=\"INSTR\"\n\"GPIB\"=hex:01\n";
    std::string output;
    ASSERT_EQ(run({"import", dir + "/start.reg"}, &output), 0) << output;

    const std::string env = "DISPLAY=" + x.display() + " QT_QPA_PLATFORM=xcb BRAXCFG_VISA_LIBRARY=builtin "
                            "BRAXCFG_LAB=" BRAXCFG_SOURCE_DIR "/examples/lab.ini "
                            "LSAN_OPTIONS=suppressions=" BRAXCFG_SOURCE_DIR "/tests/tool/lsan_x11.supp ";
    // The dialog runs in the background; the person's keys follow it.
    const std::string tool = env + shellQuoted(BRAXCFG_TOOL_PATH) + " --store " + shellQuoted(store()) +
                             " dialog devices INTF0 > " + shellQuoted(dir + "/tool.out") + " 2>&1; echo $? > " +
                             shellQuoted(dir + "/tool.rc");
    ASSERT_EQ(std::system(("(" + tool + ") &").c_str()), 0);
    // Add device (Alt+A), address 24, OK by Enter.
    ASSERT_TRUE(x.typeInto("Show Devices", "alt+a"));
    ASSERT_TRUE(x.typeInto("New Device", "2 4 Return"));
    // Auto Add (Alt+U), Continue, then OK in the result.
    ASSERT_TRUE(x.typeInto("Show Devices", "alt+u"));
    ASSERT_TRUE(x.typeInto("Auto Configuration", "Return"));
    ASSERT_TRUE(x.typeInto("Auto Configuration Complete!", "Return"));
    // Clear "Identify devices at run-time" (Alt+I), wait for the tick to
    // go, Tab to OK, Enter.
    ASSERT_TRUE(x.typeInto("Show Devices", "alt+i"));
    braxcfg::test::XSession::waitForAnimatedClick();
    ASSERT_TRUE(x.typeInto("Show Devices", "Tab Return"));
    for (int i = 0; i < 200 && !std::filesystem::exists(dir + "/tool.rc"); ++i) std::this_thread::sleep_for(50ms);
    std::ifstream rc(dir + "/tool.rc");
    int code = -1;
    rc >> code;
    const std::string toolText = braxcfg::test::readFile(dir + "/tool.out");
    ASSERT_EQ(code, 0) << toolText;

    ASSERT_EQ(run({"interfaces"}, &output), 0);
    ASSERT_EQ(run({"devices", "INTF0"}, &output), 0);
    EXPECT_EQ(output,
              "GPIB0::22\n  GPIB0::22::INSTR\n    Driver = \"INSTR\"\n    Prefix = \"INSTR\"\n"
              "GPIB0::24\n  GPIB0::24::INSTR\n    Driver = \"INSTR\"\n    Prefix = \"INSTR\"\n"
              "GPIB0::5::3\n  GPIB0::5::3::INSTR\n    Driver = \"INSTR\"\n    Prefix = \"INSTR\"\n"
              "GPIB0::9\n  GPIB0::9::INSTR\n    Driver = \"INSTR\"\n    Prefix = \"INSTR\"\n");
    ASSERT_EQ(run({"export", "--utf8", "--key", kProduct + "\\INTF0", dir + "/intf.reg"}), 0);
    const std::string reg = braxcfg::test::readFile(dir + "/intf.reg");
    EXPECT_NE(reg.find("\"VISAAutoConfig\"=hex:00"), std::string::npos) << reg;
}

}  // namespace
