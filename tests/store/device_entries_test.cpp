// Device entries: which resource entries a new device gets, clearing,
// listing, and the run-time identification flag.
#include <gtest/gtest.h>

#include <vector>

#include "platform/reg_types.h"
#include "platform/registry.h"
#include "store/config_store.h"
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

class DeviceEntries : public ::testing::Test {
protected:
    void SetUp() override {
        // The real template table, plus a class someone added for GPIB and
        // serial interfaces.
        resetVisaInfoWrittenFlag();
        store_.WriteVisaInfoDefaults();
        const std::string extra = underProduct("VISAInfo\\DefaultRsrcs\\EXTRA");
        putString(extra, "DrvrName", "XDRV");
        putString(extra, "PrefixName", "XPFX");
        putBool(extra, "GPIB", true);
        putBool(extra, "ASRL", true);
    }

    void putInterfaceWithDevices(const std::string& intf, const std::string& visaName, const std::string& type) {
        putInterface(intf, visaName, type);
        putKey(underProduct(intf + "\\VISADev"));
    }

    std::vector<std::string> deviceNames(const std::string& intf) const {
        std::vector<std::string> names;
        for (std::string name; !(name = store_.GetDeviceName(intf, names.size())).empty();) names.push_back(name);
        return names;
    }

    std::vector<std::string> resourceNames(const std::string& intf, const std::string& device) const {
        std::vector<std::string> names;
        for (std::string name; !(name = store_.GetDeviceRsrcName(intf, device, names.size())).empty();)
            names.push_back(name);
        return names;
    }

    test::TempStore temp_;
    ConfigStore store_;
};

TEST_F(DeviceEntries, AddCreatesTheClassesMarkedForTheInterfaceType) {
    struct Case {
        const char* type;
        const char* visaName;
        const char* filter;
        std::vector<std::string> resources;
        bool autoIdentify;
    };
    const Case cases[] = {
        {"GPIB", "GPIB0", "", {"GPIB0::1::EXTRA", "GPIB0::1::INSTR"}, false},
        {"ASRL", "ASRL1", "", {"ASRL1::1::EXTRA", "ASRL1::1::INSTR"}, true},
        {"TCPIP", "TCPIP0", "", {"TCPIP0::1::INSTR", "TCPIP0::1::SOCKET"}, false},
        {"TCPIP", "TCPIP0", "INSTR", {"TCPIP0::1::INSTR"}, false},
        {"TCPIP", "TCPIP0", "SOCKET", {"TCPIP0::1::SOCKET"}, false},
        {"TCPIP", "TCPIP0", "socket", {}, false},
        {"GPIB", "GPIB0", "SOCKET", {}, false},
        // Value names ignore case, the serial test does not.
        {"asrl", "ASRL2", "", {"ASRL2::1::EXTRA", "ASRL2::1::INSTR"}, false},
        {"", "X0", "", {}, false},
        {"USB", "USB0", "", {"USB0::1::INSTR"}, false},
    };
    int n = 0;
    for (const Case& c : cases) {
        const std::string intf = "INTF" + std::to_string(n++);
        SCOPED_TRACE(std::string(c.type) + " filter '" + c.filter + "'");
        putInterfaceWithDevices(intf, c.visaName, c.type);
        const std::string device = std::string(c.visaName) + "::1";
        store_.AddDeviceEntry(intf, device, c.filter, "ignored");
        EXPECT_EQ(deviceNames(intf), std::vector<std::string>{device});
        EXPECT_EQ(resourceNames(intf, device), c.resources);
        for (const std::string& resource : c.resources) {
            const platform::Registry entry(intf + "\\VISADev\\" + device + "\\" + resource,
                                           platform::kRegOpenExisting);
            EXPECT_EQ(entry.valueExists("AutoIdentify"), c.autoIdentify) << resource;
            EXPECT_EQ(entry.getString("AutoIdentify"), c.autoIdentify ? "0" : "") << resource;
        }
    }
    const platform::Registry extra("INTF0\\VISADev\\GPIB0::1\\GPIB0::1::EXTRA", platform::kRegOpenExisting);
    EXPECT_EQ(extra.getString("Driver"), "XDRV");
    EXPECT_EQ(extra.getString("Prefix"), "XPFX");
}

TEST_F(DeviceEntries, AddWritesOverExistingValuesAndRemovesNothing) {
    putInterfaceWithDevices("INTF0", "GPIB0", "GPIB");
    const std::string entry = underProduct("INTF0\\VISADev\\GPIB0::5\\GPIB0::5::INSTR");
    putString(entry, "Driver", "old");
    putString(entry, "Kept", "yes");
    putKey(underProduct("INTF0\\VISADev\\GPIB0::5\\GPIB0::5::OTHER"));
    store_.AddDeviceEntry("INTF0", "GPIB0::5", "INSTR");
    const platform::Registry key("INTF0\\VISADev\\GPIB0::5\\GPIB0::5::INSTR", platform::kRegOpenExisting);
    EXPECT_EQ(key.getString("Driver"), "INSTR");
    EXPECT_EQ(key.getString("Kept"), "yes");
    EXPECT_EQ(resourceNames("INTF0", "GPIB0::5"), (std::vector<std::string>{"GPIB0::5::INSTR", "GPIB0::5::OTHER"}));
}

TEST_F(DeviceEntries, AddNeedsTheDeviceListButNotTheTemplates) {
    putInterface("INTF0", "GPIB0", "GPIB");  // no "VISADev"
    store_.AddDeviceEntry("INTF0", "GPIB0::5", "");
    EXPECT_EQ(treeText("INTF0\\VISADev"), "<missing>");

    platform::Registry(platform::kLocalMachine, underProduct(), platform::kRegOpenExisting).deleteTree("VISAInfo");
    putKey(underProduct("INTF0\\VISADev"));
    store_.AddDeviceEntry("INTF0", "GPIB0::5", "");
    EXPECT_EQ(deviceNames("INTF0"), std::vector<std::string>{"GPIB0::5"});
    EXPECT_TRUE(resourceNames("INTF0", "GPIB0::5").empty());
}

TEST_F(DeviceEntries, ClearLeavesAnEmptyDeviceList) {
    putInterfaceWithDevices("INTF0", "GPIB0", "GPIB");
    store_.AddDeviceEntry("INTF0", "GPIB0::1", "");
    store_.AddDeviceEntry("INTF0", "GPIB0::2", "");
    store_.ClearDevices("INTF0");
    EXPECT_EQ(treeText("INTF0\\VISADev"), "[]\n");

    store_.ClearDevices("INTF5");
    EXPECT_FALSE(test::keyExists(underProduct("INTF5")));
}

TEST_F(DeviceEntries, AutoConfigFlagIsStoredAsOneWhenMissing) {
    struct Case {
        const char* label;
        int stored;  // -1: absent
        int expected;
    };
    const Case cases[] = {{"absent", -1, 1}, {"zero", 0, 0}, {"one", 1, 1}};
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string intf = "INTF" + std::to_string(n++);
        putInterface(intf, "GPIB0", "GPIB");
        if (c.stored >= 0) putBool(underProduct(intf), "VISAAutoConfig", c.stored != 0);
        EXPECT_EQ(store_.IsAutoConfig(intf), c.expected);
        std::uint32_t type = 0;
        std::string bytes;
        ASSERT_TRUE(test::readValue(underProduct(intf), "VISAAutoConfig", type, bytes));
        EXPECT_EQ(type, platform::kRegBinary);
        EXPECT_EQ(bytes, std::string(1, static_cast<char>(c.expected)));
    }
    EXPECT_EQ(store_.IsAutoConfig("INTF9"), 0);
    EXPECT_FALSE(test::keyExists(underProduct("INTF9")));
}

}  // namespace
}  // namespace braxcfg::store
