// braxcfg autoconfig: the headless search over the simulated lab, its text
// and JSON reports, --dry-run, and its errors. What the search finds is
// the auto-configuration module's test's to decide.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "scoped_env.h"
#include "tool_folder.h"

namespace {

const std::string kProduct = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion";

using AutoconfigTool = braxcfg::test::ToolFolder;

TEST_F(AutoconfigTool, DryRunWritesNothingTheSearchWritesTheNewDevicesAndRefusalsSayWhy) {
    // The example lab, and no system VISA library; GPIB0 knows GPIB0::22, GPIB3 has no device list.
    const braxcfg::test::ScopedEnv lab("BRAXCFG_LAB", BRAXCFG_SOURCE_DIR "/examples/lab.ini");
    const braxcfg::test::ScopedEnv visa("BRAXCFG_VISA_LIBRARY", "builtin");
    const std::string start =
        "REGEDIT4\n\n" + kProduct + "\\INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n" + kProduct +
        "\\INTF0\\VISADev\\GPIB0::22]\n" + kProduct + "\\INTF3]\n\"VISAName\"=\"GPIB3\"\n\"VISAIntfType\"=\"GPIB\"\n" +
        kProduct + "\\VISAInfo\\DefaultRsrcs\\INSTR]\n\"DrvrName\"=\"INSTR\"\n\"PrefixName\"=\"INSTR\"\n"
        "\"GPIB\"=hex:01\n";
    ASSERT_EQ(tool({"import", write("start.reg", start)}).exitCode, 0);
    std::string output;
    ASSERT_EQ(run({"autoconfig", "INTF0", "--dry-run"}, &output), 0) << output;
    EXPECT_EQ(output, "Known devices on INTF0 (GPIB0):\n  GPIB0::22\nNew devices (not written, --dry-run):\n"
                      "  GPIB0::9\n  GPIB0::5::3\n");
    ASSERT_EQ(run({"devices", "INTF0"}, &output), 0);
    EXPECT_EQ(output, "GPIB0::22\n");

    ASSERT_EQ(run({"autoconfig", "INTF0", "--json"}, &output), 0) << output;
    EXPECT_EQ(nlohmann::json::parse(output),
              nlohmann::json::parse(R"({"interface": "INTF0", "visaName": "GPIB0", "known": ["GPIB0::22"],
                                        "new": ["GPIB0::9", "GPIB0::5::3"], "written": true, "errors": []})"));
    ASSERT_EQ(run({"autoconfig", "INTF0"}, &output), 0) << output;  // what the first found is known now
    EXPECT_NE(output.find("New devices:\n  none\n"), std::string::npos) << output;

    EXPECT_EQ(run({"autoconfig", "INTF7"}, &output), 1);
    EXPECT_NE(output.find("there is no interface INTF7"), std::string::npos) << output;
    // Not set up: what the search found would have nowhere to go, nor would a device added by hand.
    EXPECT_EQ(run({"autoconfig", "INTF3"}, &output), 2);
    EXPECT_NE(output.find("INTF3 has no device list yet; set it up first"), std::string::npos) << output;
    EXPECT_EQ(run({"devices", "INTF3", "add", "GPIB3::1"}, &output), 2) << output;
    const braxcfg::test::ScopedEnv missingLab("BRAXCFG_LAB", "/nonexistent.ini");
    EXPECT_EQ(run({"autoconfig", "INTF0"}, &output), 2);
    EXPECT_NE(output.find("braxcfg: VISA Error (0xbfff003a) occurred. "), std::string::npos) << output;
}

}  // namespace
