// braxcfg autoconfig: the headless search over the simulated lab, its text
// and JSON reports, --dry-run, and its errors.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "scoped_env.h"
#include "tool_folder.h"

namespace {

const std::string kProduct = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion";

class AutoconfigTool : public braxcfg::test::ToolFolder {
protected:
    void SetUp() override {
        ToolFolder::SetUp();
        // GPIB0 knows GPIB0::22; the "GPIB\xe9" interface has a name cp1252 holds and UTF-8 spells otherwise.
        std::ofstream(dir_ + "/start.reg", std::ios::binary)
            << "REGEDIT4\n\n[" << kProduct << "\\INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n\n["
            << kProduct << "\\INTF0\\VISADev\\GPIB0::22]\n\n[" << kProduct
            << "\\INTF3]\n\"VISAName\"=\"GPIB\xe9\"\n\"VISAIntfType\"=\"GPIB\"\n\n[" << kProduct
            << "\\VISAInfo\\DefaultRsrcs\\INSTR]\n\"DrvrName\"=\"INSTR\"\n\"PrefixName\"=\"INSTR\"\n\"GPIB\"=hex:01\n";
        std::string output;
        ASSERT_EQ(run({"import", dir_ + "/start.reg"}, &output), 0) << output;
    }
    // The tool inherits these: the example lab, and no system VISA library.
    braxcfg::test::ScopedEnv lab_{"BRAXCFG_LAB", BRAXCFG_SOURCE_DIR "/examples/lab.ini"};
    braxcfg::test::ScopedEnv visa_{"BRAXCFG_VISA_LIBRARY", "builtin"};
};

TEST_F(AutoconfigTool, DryRunWritesNothingThenTheSearchWritesTheNewDevices) {
    std::string output;
    ASSERT_EQ(run({"autoconfig", "INTF0", "--dry-run"}, &output), 0) << output;
    EXPECT_EQ(output, "Known devices on INTF0 (GPIB0):\n  GPIB0::22\nNew devices (not written, --dry-run):\n"
                      "  GPIB0::9\n  GPIB0::5::3\n");
    ASSERT_EQ(run({"devices", "INTF0"}, &output), 0);
    EXPECT_EQ(output, "GPIB0::22\n");

    ASSERT_EQ(run({"autoconfig", "INTF0", "--json"}, &output), 0) << output;
    const auto json = nlohmann::json::parse(output);
    EXPECT_EQ(json["new"], nlohmann::json::array({"GPIB0::9", "GPIB0::5::3"}));
    EXPECT_EQ(json["known"], nlohmann::json::array({"GPIB0::22"}));
    EXPECT_EQ(json["written"], true);
    ASSERT_EQ(run({"devices", "INTF0"}, &output), 0);
    EXPECT_NE(output.find("GPIB0::5::3\n  GPIB0::5::3::INSTR\n"), std::string::npos) << output;
    EXPECT_NE(output.find("GPIB0::9\n"), std::string::npos) << output;

    // A second search finds nothing new.
    ASSERT_EQ(run({"autoconfig", "INTF0"}, &output), 0) << output;
    EXPECT_NE(output.find("New devices:\n  none\n"), std::string::npos) << output;
}

TEST_F(AutoconfigTool, JsonIsUtf8AndRefusalsSayWhy) {
    std::string output;
    ASSERT_EQ(run({"autoconfig", "INTF3", "--json", "--dry-run"}, &output), 0) << output;
    EXPECT_EQ(nlohmann::json::parse(output)["visaName"], "GPIB\xc3\xa9");
    EXPECT_EQ(run({"autoconfig", "INTF7"}, &output), 1);
    EXPECT_NE(output.find("there is no interface INTF7"), std::string::npos) << output;
    // Not set up: what the search found would have nowhere to go.
    EXPECT_EQ(run({"autoconfig", "INTF3"}, &output), 2);
    EXPECT_NE(output.find("INTF3 has no device list yet; set it up first"), std::string::npos) << output;
    const braxcfg::test::ScopedEnv missingLab("BRAXCFG_LAB", "/nonexistent.ini");
    EXPECT_EQ(run({"autoconfig", "INTF0"}, &output), 2);
    EXPECT_NE(output.find("braxcfg: VISA Error (0xbfff003a) occurred. "), std::string::npos) << output;
}

}  // namespace
