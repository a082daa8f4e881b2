// Interface entries, device entries, the VISA information block, and the
// silent set-up and end of pass built on them (the highest interface number
// is the VISA configuration class's test). The block's full content, in
// order, and a pass over every interface type are compared with the
// end-to-end fixture of the tool's tests.
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <fstream>

#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store/interface_setup.h"
#include "store/visa_info.h"
#include "visacore/interface_types.h"
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::store {
namespace {

using test::putTree;
using test::treeText;

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
    return n;
}

// An interface key as .reg text for putTree.
std::string intfTree(const std::string& intf, const std::string& visaName, const std::string& type) {
    return "[" + intf + "]\n\"VISAName\"=\"" + visaName + "\"\n\"VISAIntfType\"=\"" + type + "\"\n";
}

TEST(GetIntfType, TypeWordsAreCaseSensitiveAndResourceTypeIsNormalised) {
    using namespace visa;
    // typeWord null: no interface; rsrcType null: absent. Each type word's
    // code is read by the set-up of the tool's every-type fixture.
    const struct { const char *typeWord, *rsrcType; std::uint16_t code; const char* normalised; } cases[] = {
        {"TCPIP", "SOCKET", VI_INTF_TCPIP, "SOCKET"}, {"USB", "socket", VI_INTF_USB, "INSTR"},
        {"gpib", nullptr, kIntfUnknown, "INSTR"},     {nullptr, nullptr, kIntfUnknown, "INSTR"},
    };
    test::TempStore store;
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typeWord ? c.typeWord : "no interface");
        const std::string intf = "INTF" + std::to_string(n++);
        if (c.typeWord) putTree("[" + intf + "]\n\"VISAIntfType\"=\"" + c.typeWord + "\"\n");
        if (c.rsrcType) putTree("[" + intf + "]\n\"VISARsrcType\"=\"" + c.rsrcType + "\"\n");
        std::string rsrcType = "unchanged";
        EXPECT_EQ(ConfigStore().GetIntfType(intf, rsrcType), c.code);
        EXPECT_EQ(rsrcType, c.normalised);
    }
}

TEST(SetupIntfEntries, CreatesTheClassesMarkedForTheTypeWord) {
    test::TempStore store;
    // A class with texts, one without, and one that says no (as one silent about GPIB does).
    putTree("[VISAInfo\\DefaultIntfRsrcs\\INTFC]\n\"DrvrName\"=\"INSTR\"\n\"PrefixName\"=\"INTFC\"\n\"GPIB\"=hex:01\n"
            "[VISAInfo\\DefaultIntfRsrcs\\BARE]\n\"GPIB\"=hex:01\n"
            "[VISAInfo\\DefaultIntfRsrcs\\REFUSED]\n\"GPIB\"=hex:00\n" + intfTree("INTF0", "X0", "GPIB"));
    ConfigStore().SetupIntfEntries("INTF0", 1);
    EXPECT_EQ(treeText("INTF0"), "[]\n\"VISAName\"=\"X0\"\n\"VISAIntfType\"=\"GPIB\"\n"
                                 "\"VISAAutoConfigDriver\"=\"AUTOCF\"\n\"VISAAutoConfig\"=hex:01\n[VISADev]\n"
                                 "[VISAIntfRsrc]\n[VISAIntfRsrc\\X0::BARE]\n\"Driver\"=\"\"\n\"Prefix\"=\"\"\n"
                                 "[VISAIntfRsrc\\X0::INTFC]\n\"Driver\"=\"INSTR\"\n\"Prefix\"=\"INTFC\"\n");
    ConfigStore().SetupIntfEntries("INTF9", 1);
    EXPECT_EQ(treeText("INTF9"), "<missing>");
}

TEST(DeviceEntries, AddCreatesTheClassesMarkedForTheInterfaceType) {
    test::TempStore temp;
    resetVisaInfoWrittenFlag();
    ConfigStore().WriteVisaInfoDefaults();  // the real template table, and a class someone added
    putTree("[VISAInfo\\DefaultRsrcs\\EXTRA]\n\"GPIB\"=hex:01\n\"ASRL\"=hex:01\n");  // texts: the dialogs' tests
    // Flags ignore case, the "ASRL" of the serial auto-identification does not.
    const struct { const char *type, *filter, *classes; bool autoIdentify; } cases[] = {
        {"GPIB", "", "EXTRA INSTR ", false},   {"ASRL", "", "EXTRA INSTR ", true},
        {"TCPIP", "", "INSTR SOCKET ", false}, {"TCPIP", "socket", "", false},  {"GPIB", "SOCKET", "", false},
        {"asrl", "", "EXTRA INSTR ", false},   {"USB", "", "INSTR ", false},
    };
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.type) + " filter '" + c.filter + "'");
        const std::string intf = "INTF" + std::to_string(n), device = "D" + std::to_string(n++) + "::1";
        putTree("[" + intf + "]\n\"VISAIntfType\"=\"" + c.type + "\"\n[" + intf + "\\VISADev]\n");
        ConfigStore().AddDeviceEntry(intf, device, c.filter, "ignored");
        EXPECT_EQ(ConfigStore().GetDeviceName(intf, 0) + ConfigStore().GetDeviceName(intf, 1), device);
        std::string classes;
        for (std::uint32_t i = 0; !ConfigStore().GetDeviceRsrcName(intf, device, i).empty(); ++i)
            classes += ConfigStore().GetDeviceRsrcName(intf, device, i).substr(device.size() + 2) + " ";
        EXPECT_EQ(classes, c.classes);
        const std::size_t marked = c.autoIdentify ? count(classes, " ") : 0;
        EXPECT_EQ(count(treeText(intf), "AutoIdentify"), marked);
        EXPECT_EQ(count(treeText(intf), "\"AutoIdentify\"=\"0\"\n"), marked);
    }
}

// Clearing a list is the tool's device test; the tool refuses an interface
// without a list before it gets here, so that rule is pinned here.
TEST(DeviceEntries, AddWritesOverAnEntryAndNeedsTheListButNoTemplates) {
    test::TempStore temp;
    putTree("[INTF0]\n\"VISAIntfType\"=\"GPIB\"\n[INTF0\\VISADev\\D::5\\D::5::INSTR]\n\"Driver\"=\"old\"\n"
            "\"Kept\"=\"yes\"\n[INTF0\\VISADev\\D::5\\D::5::OTHER]\n[INTF1]\n\"VISAIntfType\"=\"GPIB\"\n"
            "[VISAInfo\\DefaultRsrcs\\INSTR]\n\"DrvrName\"=\"I\"\n\"GPIB\"=hex:01\n");
    ConfigStore().AddDeviceEntry("INTF0", "D::5", "INSTR", "");
    ConfigStore().AddDeviceEntry("INTF1", "D::5", "", "");
    EXPECT_EQ(treeText("INTF1\\VISADev"), "<missing>");
    EXPECT_EQ(treeText("INTF0\\VISADev"), "[]\n[D::5]\n[D::5\\D::5::INSTR]\n\"Driver\"=\"I\"\n\"Kept\"=\"yes\"\n"
                                          "\"Prefix\"=\"\"\n[D::5\\D::5::OTHER]\n");
    putTree("[-VISAInfo]\n");
    ConfigStore().AddDeviceEntry("INTF0", "D::6", "", "");
    EXPECT_EQ(1u, count(treeText("INTF0\\VISADev"), "[D::6]\n"));
    ConfigStore().ClearDevices("INTF5");
    EXPECT_EQ(treeText("INTF5"), "<missing>");
}

TEST(DeviceEntries, AutoConfigFlagIsStoredAsOneWhenMissing) {
    test::TempStore temp;
    putTree("[INTF0]\n\"VISAName\"=\"G\"\n[INTF1]\n\"VISAAutoConfig\"=hex:00\n");
    std::string flags;
    for (const char* intf : {"INTF0", "INTF1", "INTF9"}) flags += std::to_string(ConfigStore().IsAutoConfig(intf));
    EXPECT_EQ(flags, "100");
    EXPECT_EQ(treeText(""),
              "[]\n[INTF0]\n\"VISAName\"=\"G\"\n\"VISAAutoConfig\"=hex:01\n[INTF1]\n\"VISAAutoConfig\"=hex:00\n");
}

TEST(VisaInfo, IsWrittenOncePerProcessEvenWhenTheFirstWriteFails) {
    test::TempStore temp;
    resetVisaInfoWrittenFlag();
    ConfigStore().WriteVisaInfoDefaults();
    // The limits' defaults and their place, which the fixture (with one tuned) cannot show.
    EXPECT_EQ(1u, count(treeText("VISAInfo"), "\"Logging\"=\"OFF\"\n\"MaxSessNbr\"=dword:00000100\n\"MaxNbrOfProcs\""));
    putTree("[VISAInfo]\n\"LastMod\"=\"earlier\"\n");
    ConfigStore().WriteVisaInfoDefaults();
    EXPECT_EQ(1u, count(treeText("VISAInfo"), "\"LastMod\"=\"earlier\""));

    putTree("[-VISAInfo]\n");
    resetVisaInfoWrittenFlag();
    platform::closeStore();
    ConfigStore().WriteVisaInfoDefaults();
    temp.reopen();
    ConfigStore().WriteVisaInfoDefaults();
    EXPECT_EQ(treeText("VISAInfo"), "<missing>");
}

TEST(VisaInfo, KeepsTunedLimitsAndAddedClassesAndDropsObsoleteTables) {
    test::TempStore temp;
    // A tuned number and an obsolete trigger class with subkeys are the tool's every-type fixture.
    putTree("[VISAInfo]\n\"Logging\"=\"ON\"\n\"SleepMs\"=\"5\"\n\"Manufacturer\"=\"else\"\n"
            "[VISAInfo\\DefaultRsrcs\\INSTR]\n\"PrefixName\"=\"edited\"\n\"Kept\"=\"yes\"\n"
            "[VISAInfo\\DefaultRsrcs\\EXTRA]\n[VISAInfo\\DefaultRsrcsDrvrs\\INSTR\\Sub]\n"
            "[VISAInfo\\DefaultIntfRsrcs\\TTLTRIG0]\n[VISAInfo\\DefaultIntfRsrcs\\TTLTRIG7]\n"
            "[VISAInfo\\DefaultIntfRsrcs\\TTLTRIG8]\n[VISAInfo\\DefaultIntfRsrcs\\ttltrig5]\n");
    resetVisaInfoWrittenFlag();
    ConfigStore().WriteVisaInfoDefaults();
    const std::string text = treeText("VISAInfo");
    for (const char* line : {"\"Logging\"=\"ON\"\n", "\"SleepMs\"=\"5\"\n",
                             "\"Manufacturer\"=\"Tolvane Technologies\"\n", "[DefaultRsrcs\\EXTRA]\n",
                             "[DefaultRsrcs\\INSTR]\n\"PrefixName\"=\"INSTR\"\n\"Kept\"=\"yes\"\n",
                             "[DefaultIntfRsrcs\\TTLTRIG8]\n"})
        EXPECT_EQ(1u, count(text, line)) << line << text;
    for (const char* gone : {"DefaultRsrcsDrvrs", "TTLTRIG0", "TTLTRIG7", "ttltrig5"})
        EXPECT_EQ(0u, count(text, gone)) << gone;
}

// The form of the time stamp is the tool's every-type fixture; the day and
// month names and the zero padding are not.
TEST(VisaInfo, TimeTextHasTheTwentyFourCharacterForm) {
#ifdef _WIN32
    _putenv_s("TZ", "UTC");
    _tzset();
#else
    setenv("TZ", "UTC", 1);
    tzset();
#endif
    EXPECT_EQ(ctimeText(1204622127), "Tue Mar 04 09:15:27 2008");
}

class InterfaceSetup : public ::testing::Test {
protected:
    void SetUp() override {
        resetVisaInfoWrittenFlag();
        putTree("[]\n\"BaseDir\"=\"" + base_ + "\"\n");
    }
    void TearDown() override { writeProfile(nullptr); }

    // The serial default's profile; null: no file.
    void writeProfile(const char* text) const {
        std::filesystem::remove_all(base_ + "/intfcfg");
        std::filesystem::create_directories(base_ + "/intfcfg");
        if (text) std::ofstream(base_ + "/intfcfg/intfcfg.ini", std::ios::binary) << text;
    }

    // The VISAAutoConfig flag of each interface, "-" where it was not set up.
    static std::string autoConfigOf(std::initializer_list<std::string> intfs) {
        std::string flags;
        for (const std::string& intf : intfs) {
            const platform::Registry key(intf, platform::kRegOpenExisting);
            flags += key.valueExists("VISAAutoConfigDriver") ? std::to_string(key.getBool("VISAAutoConfig")) : "-";
        }
        return flags;
    }

    test::TempStore temp_;
    // Its own folder per test, as tests of one program may run at once.
    std::string base_ = test::testOutputDir(std::string("base-") +
                                            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    ConfigStore store_;
};

TEST_F(InterfaceSetup, SerialDefaultLowersOnlyTheFirstCharacter) {
    // The value of VISAAutoConfig in [Cfg232], names written in any case.
    const std::pair<const char*, int> cases[] = {
        {"True", 1}, {"TRUE", 0}, {"YES", 0}, {"Yes", 1}, {"1", 1}, {"", 0}, {"tRUE", 0}, {"truely", 0}};
    for (const auto& [value, expected] : cases) {
        writeProfile(("[cfg232]\nvisaautoconfig = " + std::string(value) + "\n").c_str());
        EXPECT_EQ(serialAutoConfigDefault(), expected) << value;
    }
    writeProfile(nullptr);
    EXPECT_EQ(serialAutoConfigDefault(), 0);
    std::filesystem::create_directories(interfaceProfilePath());
    EXPECT_EQ(serialAutoConfigDefault(), 0) << "a folder where the profile should be";
    // Where the profile lies, with the platform's separators (the Windows run has only this check).
    EXPECT_EQ(interfaceProfilePath(), (std::filesystem::path(base_) / "intfcfg" / "intfcfg.ini").string());
}

// Each type with the serial profile saying True is the tool's end-to-end
// fixture; here the ways that differ without a profile, keys without a VISA
// name (set up as their type says: validity is not asked), and that no later
// set-up changes an interface once set up, even with an empty driver name.
TEST_F(InterfaceSetup, EachTypeGetsItsWayOfIdentifyingDevicesOnce) {
    // visaName "": a key without one; flags: VISAAutoConfig, "-" where not set up.
    const struct { const char *type, *visaName, *flag; } cases[] = {
        {"ASRL", "X", "0"}, {"gpib", "X", "-"}, {"TCPIP", "", "0"},
    };
    putTree("[INTF99]\n\"VISAName\"=\"G\"\n\"VISAIntfType\"=\"GPIB\"\n\"VISAAutoConfigDriver\"=\"\"\n"
            "\"VISAAutoConfig\"=hex:00\n");
    int n = 0;
    for (const auto& c : cases) {
        const std::string intf = "INTF" + std::to_string(n++);
        putTree(intfTree(intf, c.visaName, c.type));
        setupVisaIntf(store_, intf);
        EXPECT_EQ(autoConfigOf({intf}), c.flag) << c.type << "/" << c.visaName;
    }
    writeProfile("[Cfg232]\nVISAAutoConfig=True\n");
    const std::string before = treeText("");
    for (int i = 0; i < n; ++i) setupVisaIntf(store_, "INTF" + std::to_string(i));
    setupVisaIntf(store_, "INTF99");
    configureAtRunTime(store_, "INTF99");
    EXPECT_EQ(treeText(""), before);
}

// The pass visits INTF0 and then the upper-case numbers up to the highest;
// a subkey name of 80 characters or more, sorted before the interfaces, ends
// the enumeration that finds the highest number, so only INTF0 is visited.
TEST_F(InterfaceSetup, EndOfPassVisitsTheKeysUpToTheHighestNumber) {
    const struct { const char* label; std::string tree; std::initializer_list<std::string> intfs; const char* flags; }
        cases[] = {
            {"case and number forms",
             intfTree("INTF0", "GPIB0", "GPIB") + intfTree("INTF3", "ASRL1", "ASRL") +
                 intfTree("intf2", "GPIB2", "GPIB") + intfTree("INTF03", "GPIB3", "GPIB") +
                 intfTree("intf5", "GPIB5", "GPIB") + "[INTF1]\n\"VISAIntfType\"=\"GPIB\"\n",
             {"INTF0", "INTF3", "intf2", "INTF03", "intf5", "INTF1"}, "000---"},
            {"highest number cut short", "[" + std::string(80, 'A') + "]\n" + intfTree("INTF0", "GPIB0", "GPIB") +
                 intfTree("INTF1", "GPIB1", "GPIB"), {"INTF0", "INTF1"}, "0-"},
            {"the largest number", intfTree("INTF2147483647", "GPIB9", "GPIB") + intfTree("INTF1", "GPIB1", "GPIB"),
             {"INTF1", "INTF2147483647"}, "00"},
        };
    writeProfile("[Cfg232]\nVISAAutoConfig=True\n");
    for (const auto& c : cases) {
        test::TempStore fresh;
        SetUp();
        putTree(c.tree);
        doVisaEndStuff(store_);
        EXPECT_EQ(autoConfigOf(c.intfs), c.flags) << c.label;
    }
}

}  // namespace
}  // namespace braxcfg::store
