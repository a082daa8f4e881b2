// Silent set-up of a new interface and the end of a configuration pass.
#include "store/interface_setup.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/registry.h"
#include "store_builder.h"
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::store {
namespace {

using test::putBool;
using test::putInterface;
using test::putKey;
using test::putString;
using test::treeText;
using test::underProduct;

class InterfaceSetup : public ::testing::Test {
protected:
    void SetUp() override {
        resetVisaInfoWrittenFlag();
        baseDir_ = test::testOutputDir("intfcfg-base");
        std::filesystem::remove_all(baseDir_ + "/intfcfg");
        putString(underProduct(), "BaseDir", baseDir_);
    }

    void writeProfile(const std::string& text) const {
        std::filesystem::create_directories(baseDir_ + "/intfcfg");
        std::ofstream(baseDir_ + "/intfcfg/intfcfg.ini", std::ios::binary) << text;
    }

    static std::string autoConfigOf(const std::string& intf) {
        const platform::Registry key(intf, platform::kRegOpenExisting);
        if (!key.valueExists("VISAAutoConfigDriver")) return "not set up";
        return std::to_string(key.getBool("VISAAutoConfig"));
    }

    test::TempStore temp_;
    std::string baseDir_;
    ConfigStore store_;
};

TEST_F(InterfaceSetup, SerialDefaultLowersOnlyTheFirstCharacter) {
    const struct {
        const char* profile;  // null: no file
        int expected;
    } cases[] = {
        {"[Cfg232]\nVISAAutoConfig=True\n", 1},   {"[Cfg232]\nVISAAutoConfig=TRUE\n", 0},
        {"[Cfg232]\nVISAAutoConfig=YES\n", 0},    {"[Cfg232]\nVISAAutoConfig=Yes\n", 1},
        {"[Cfg232]\nVISAAutoConfig=yes\n", 1},    {"[Cfg232]\nVISAAutoConfig=1\n", 1},
        {"[Cfg232]\nVISAAutoConfig=0\n", 0},      {"[Cfg232]\nVISAAutoConfig=\n", 0},
        {"[Cfg232]\nVISAAutoConfig=tRUE\n", 0},   {"[Cfg232]\nVISAAutoConfig=truely\n", 0},
        {"[cfg232]\nvisaautoconfig = \"True\"\n", 1},
        {"[Other]\nVISAAutoConfig=True\n", 0},    {nullptr, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.profile ? c.profile : "no file");
        std::filesystem::remove_all(baseDir_ + "/intfcfg");
        if (c.profile) writeProfile(c.profile);
        EXPECT_EQ(serialAutoConfigDefault(), c.expected);
    }
    EXPECT_EQ(interfaceProfilePath(), baseDir_ + "/intfcfg/intfcfg.ini");
}

TEST_F(InterfaceSetup, EachTypeGetsItsWayOfIdentifyingDevices) {
    const struct {
        const char* type;
        const char* expectedWithTrue;
        const char* expectedWithoutProfile;
    } cases[] = {
        {"GPIB", "1", "1"},  {"VXI", "1", "1"}, {"GPIB-VXI", "1", "1"}, {"PXI", "1", "1"},
        {"USB", "1", "1"},   {"RSIB", "1", "1"}, {"ASRL", "1", "0"},     {"TCPIP", "0", "0"},
        {"gpib", "not set up", "not set up"},    {"", "not set up", "not set up"},
    };
    int n = 0;
    for (const bool withProfile : {true, false}) {
        if (withProfile)
            writeProfile("[Cfg232]\nVISAAutoConfig=True\n");
        else
            std::filesystem::remove_all(baseDir_ + "/intfcfg");
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(c.type) + (withProfile ? " with profile" : " without profile"));
            const std::string intf = "INTF" + std::to_string(n++);
            putInterface(intf, "X" + std::to_string(n), c.type);
            setupVisaIntf(store_, intf);
            EXPECT_EQ(autoConfigOf(intf), withProfile ? c.expectedWithTrue : c.expectedWithoutProfile);
        }
    }
    putString(underProduct("INTF99"), "VISAIntfType", "GPIB");  // no VISA name
    setupVisaIntf(store_, "INTF99");
    EXPECT_EQ(autoConfigOf("INTF99"), "not set up");
    EXPECT_TRUE(test::keyExists(underProduct("VISAInfo\\DefaultRsrcs\\INSTR")));
}

TEST_F(InterfaceSetup, AnInterfaceIsSetUpOnceOnly) {
    putInterface("INTF0", "GPIB0", "GPIB");
    putString(underProduct("INTF0"), "VISAAutoConfigDriver", "");
    putBool(underProduct("INTF0"), "VISAAutoConfig", false);
    store_.WriteVisaInfoDefaults();
    const std::string before = treeText("INTF0");
    setupVisaIntf(store_, "INTF0");
    configureAtRunTime(store_, "INTF0");
    EXPECT_EQ(treeText("INTF0"), before);
}

TEST_F(InterfaceSetup, EndOfPassVisitsTheKeysUpToTheHighestNumber) {
    putInterface("INTF0", "GPIB0", "GPIB");
    putKey(underProduct("INTF0\\VISADev\\GPIB1::5"));
    putInterface("INTF3", "ASRL1", "ASRL");
    putInterface("intf2", "GPIB2", "GPIB");   // opened by its name whatever its case
    putInterface("INTF03", "GPIB3", "GPIB");  // counts as 3 but is not "INTF3"
    putInterface("intf5", "GPIB5", "GPIB");   // above the highest upper-case number
    putString(underProduct("INTF1"), "VISAIntfType", "GPIB");  // no VISA name
    writeProfile("[Cfg232]\nVISAAutoConfig=True\n");
    doVisaEndStuff(store_);
    EXPECT_EQ(autoConfigOf("INTF0"), "0");
    EXPECT_EQ(autoConfigOf("INTF3"), "0");
    EXPECT_EQ(autoConfigOf("intf2"), "0");
    EXPECT_EQ(autoConfigOf("INTF03"), "not set up");
    EXPECT_EQ(autoConfigOf("intf5"), "not set up");
    EXPECT_EQ(autoConfigOf("INTF1"), "not set up");
    EXPECT_EQ(store_.GetDeviceName("INTF0", 0), "GPIB0::5");
    EXPECT_TRUE(test::keyExists(underProduct("VISAInfo")));
}

TEST_F(InterfaceSetup, EndOfPassCopesWithTheLargestNumber) {
    putInterface("INTF2147483647", "GPIB9", "GPIB");
    putInterface("INTF1", "GPIB1", "GPIB");
    doVisaEndStuff(store_);
    EXPECT_EQ(autoConfigOf("INTF1"), "0");
    EXPECT_EQ(autoConfigOf("INTF2147483647"), "0");
}

}  // namespace
}  // namespace braxcfg::store
