// Interface entries: the highest interface number, type codes, and the
// once-only set-up with its interface resources.
#include <gtest/gtest.h>

#include <vector>

#include "platform/reg_types.h"
#include "platform/registry.h"
#include "store/config_store.h"
#include "store_builder.h"
#include "temp_store.h"

namespace braxcfg::store {
namespace {

using test::putBool;
using test::putInterface;
using test::putKey;
using test::putString;
using test::TempStore;
using test::underProduct;

TEST(GetMaxIntfNum, CountsOnlyUpperCaseInterfaceKeys) {
    struct Case {
        std::vector<std::string> keys;
        int expected;
    };
    const Case cases[] = {
        {{"INTF0", "INTF7", "INTF10", "INTFX", "INTF"}, 10},
        {{"intf3", "INTF2"}, 2},
        {{}, 0},
        {{"INTF12abc", "VISAInfo"}, 12},
        {{"INTF-5", "INTF1"}, 1},
        {{"Intf9", "INTF 4"}, 4},  // the number is read as atoi does: leading blanks skipped
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.keys));
        TempStore store;
        putKey(underProduct());
        for (const auto& key : c.keys) putKey(underProduct(key));
        EXPECT_EQ(ConfigStore().GetMaxIntfNum(), c.expected);
    }
}

TEST(GetIntfType, TypeWordsAreCaseSensitiveAndResourceTypeIsNormalised) {
    struct Case {
        const char* typeWord;
        const char* rsrcType;  // null: absent
        std::uint16_t code;
        const char* normalised;
    };
    const Case cases[] = {
        {"GPIB", nullptr, kIntfGpib, "INSTR"},        {"VXI", "INSTR", kIntfVxi, "INSTR"},
        {"GPIB-VXI", "MEMACC", kIntfGpibVxi, "INSTR"}, {"ASRL", "", kIntfAsrl, "INSTR"},
        {"PXI", nullptr, kIntfPxi, "INSTR"},          {"TCPIP", "SOCKET", kIntfTcpip, "SOCKET"},
        {"USB", "socket", kIntfUsb, "INSTR"},         {"RSIB", nullptr, kIntfRsib, "INSTR"},
        {"gpib", nullptr, kIntfUnknown, "INSTR"},     {"", nullptr, kIntfUnknown, "INSTR"},
        {"GPIB ", nullptr, kIntfUnknown, "INSTR"},
    };
    TempStore store;
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typeWord);
        const std::string intf = "INTF" + std::to_string(n++);
        putInterface(intf, "X0", c.typeWord);
        if (c.rsrcType) putString(underProduct(intf), "VISARsrcType", c.rsrcType);
        std::string rsrcType = "unchanged";
        EXPECT_EQ(ConfigStore().GetIntfType(intf, rsrcType), c.code);
        EXPECT_EQ(rsrcType, c.normalised);
        EXPECT_EQ(ConfigStore().GetIntfType(intf), c.code);
    }
    std::string rsrcType;
    EXPECT_EQ(ConfigStore().GetIntfType("INTF99", rsrcType), kIntfUnknown);
    EXPECT_EQ(rsrcType, "INSTR");
}

class SetupIntfEntries : public ::testing::Test {
protected:
    void SetUp() override {
        // A template table with a class for GPIB, one for VXI, one that says
        // nothing about GPIB and one that says no.
        const std::string templates = underProduct("VISAInfo\\DefaultIntfRsrcs");
        putString(templates + "\\INTFC", "DrvrName", "INSTR");
        putString(templates + "\\INTFC", "PrefixName", "INTFC");
        putBool(templates + "\\INTFC", "GPIB", true);
        putBool(templates + "\\MEMACC", "VXI", true);
        putString(templates + "\\SILENT", "PrefixName", "SILENT");
        putBool(templates + "\\SILENT", "VXI", true);
        putBool(templates + "\\REFUSED", "GPIB", false);
    }

    std::vector<std::string> subkeys(const std::string& path) {
        platform::Registry key(platform::kLocalMachine, underProduct(path), platform::kRegOpenExisting);
        std::vector<std::string> names;
        for (std::uint32_t i = 0; !key.enumKey(i).empty(); ++i) names.push_back(key.enumKey(i));
        return names;
    }

    platform::Registry intfKey(const std::string& intf) {
        return platform::Registry(platform::kLocalMachine, underProduct(intf), platform::kRegOpenExisting);
    }

    TempStore store_;
};

TEST_F(SetupIntfEntries, MarksSetUpAndCreatesTheTypesInterfaceResources) {
    putInterface("INTF0", "GPIB0", "GPIB");
    ConfigStore().SetupIntfEntries("INTF0", 1);
    auto key = intfKey("INTF0");
    EXPECT_EQ(key.getString("VISAAutoConfigDriver"), "AUTOCF");
    EXPECT_EQ(key.getBool("VISAAutoConfig"), 1);
    EXPECT_TRUE(test::keyExists(underProduct("INTF0\\VISADev")));
    EXPECT_EQ(subkeys("INTF0\\VISAIntfRsrc"), std::vector<std::string>{"GPIB0::INTFC"});
    platform::Registry entry(platform::kLocalMachine, underProduct("INTF0\\VISAIntfRsrc\\GPIB0::INTFC"),
                             platform::kRegOpenExisting);
    EXPECT_EQ(entry.getString("Driver"), "INSTR");
    EXPECT_EQ(entry.getString("Prefix"), "INTFC");
    EXPECT_EQ(ConfigStore().IsVisaIntfSetup("INTF0"), 1);
}

TEST_F(SetupIntfEntries, ClassWithoutTextsCreatesAnEntryWithEmptyTexts) {
    putInterface("INTF1", "VXI0", "VXI");
    ConfigStore().SetupIntfEntries("INTF1", 0);
    EXPECT_EQ(subkeys("INTF1\\VISAIntfRsrc"), (std::vector<std::string>{"VXI0::MEMACC", "VXI0::SILENT"}));
    platform::Registry entry(platform::kLocalMachine, underProduct("INTF1\\VISAIntfRsrc\\VXI0::MEMACC"),
                             platform::kRegOpenExisting);
    EXPECT_TRUE(entry.valueExists("Driver"));
    EXPECT_EQ(entry.getString("Driver"), "");
    EXPECT_EQ(intfKey("INTF1").getBool("VISAAutoConfig"), 0);
}

TEST_F(SetupIntfEntries, HappensOnceOnly) {
    putInterface("INTF2", "GPIB2", "GPIB");
    putString(underProduct("INTF2"), "VISAAutoConfigDriver", "");
    putBool(underProduct("INTF2"), "VISAAutoConfig", false);
    ConfigStore().SetupIntfEntries("INTF2", 1);
    EXPECT_EQ(intfKey("INTF2").getBool("VISAAutoConfig"), 0);
    EXPECT_EQ(intfKey("INTF2").getString("VISAAutoConfigDriver"), "");
    EXPECT_FALSE(test::keyExists(underProduct("INTF2\\VISAIntfRsrc")));
}

TEST_F(SetupIntfEntries, EmptyTypeWordMatchesNoClassAndMissingInterfaceIsSkipped) {
    putInterface("INTF3", "ODD0", "");
    ConfigStore().SetupIntfEntries("INTF3", 0);
    EXPECT_TRUE(subkeys("INTF3\\VISAIntfRsrc").empty());

    ConfigStore().SetupIntfEntries("INTF9", 1);
    EXPECT_FALSE(test::keyExists(underProduct("INTF9")));
}

}  // namespace
}  // namespace braxcfg::store
