// The VISA information block: its content, once per process, and what it
// keeps of an existing block.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <regex>

#include "braxcfg_version.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store/visa_info.h"
#include "store_builder.h"
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::store {
namespace {

using test::putBool;
using test::putDword;
using test::putKey;
using test::putString;
using test::treeText;
using test::underProduct;

std::string lastMod() { return platform::Registry("VISAInfo", platform::kRegOpenExisting).getString("LastMod"); }

std::string dwordText(std::uint32_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "dword 0x%08x", number);
    return text;
}

void writeFirstTime() {
    resetVisaInfoWrittenFlag();
    ConfigStore().WriteVisaInfoDefaults();
}

TEST(VisaInfo, FreshStoreGetsTheWholeBlockInOrder) {
    test::TempStore temp;
    writeFirstTime();
    std::string text = treeText("VISAInfo");
    const std::regex lastModLine("\"LastMod\" sz \"[A-Z][a-z]{2} [A-Z][a-z]{2} \\d{2} \\d{2}:\\d{2}:\\d{2} \\d{4}\"");
    EXPECT_TRUE(std::regex_search(text, lastModLine)) << text;
    text = std::regex_replace(text, lastModLine, "\"LastMod\" sz \"<now>\"");
    const std::string instrClass = "  \"DrvrName\" sz \"INSTR\"\n";
    const auto flags = [](const char* bits) {
        static const char* const kTypes[] = {"GPIB", "VXI", "GPIB-VXI", "ASRL", "TCPIP", "USB", "RSIB", "PXI"};
        std::string out;
        for (int i = 0; i < 8; ++i) out += "  \"" + std::string(kTypes[i]) + "\" binary 0" + bits[i] + "\n";
        return out;
    };
    EXPECT_EQ(text,
              "[]\n"
              "  \"\" sz \"Comment: General Information on Tolvane's VISA Implementation\"\n"
              "  \"Spec Version\" dword 0x00400000\n"
              "  \"Manufacturer\" sz \"Tolvane Technologies\"\n"
              "  \"Copyright\" sz \"Copyright \xA9 Tolvane Technologies " BRAXCFG_COPYRIGHT_YEARS "\"\n"
              "  \"ManfVersion\" sz \"" BRAXCFG_VERSION_TEXT "\"\n"
              "  \"LastMod\" sz \"<now>\"\n"
              "  \"ModTool\" sz \"Tolvane VISA Configuration Tool\"\n"
              "  \"ManfVersionNbr\" " + dwordText(visaVersionNumber(BRAXCFG_VERSION_MAJOR, BRAXCFG_VERSION_MINOR,
                                                                      BRAXCFG_VERSION_PATCH)) + "\n"
              "  \"ManfID\" " + dwordText(BRAXCFG_MANUFACTURER_ID) + "\n"
              "  \"Logging\" sz \"OFF\"\n"
              "  \"MaxSessNbr\" dword 0x00000100\n"
              "  \"MaxNbrOfProcs\" dword 0x00000040\n"
              "  \"DefaultQSize\" dword 0x00000032\n"
              "  \"SleepMs\" dword 0x00000000\n"
              "  \"DefaultLockWait\" dword 0x00000000\n"
              "  \"DefaultAllowLocalSpaceFifo\" dword 0x00000000\n"
              "[DefaultIntfRsrcs]\n"
              "  \"\" sz \"Interface Resources to load during configuration ADD functions\"\n"
              "[DefaultIntfRsrcs\\BACKPLANE]\n" + instrClass + "  \"PrefixName\" sz \"BACKPLANE\"\n" + flags("01100000") +
              "[DefaultIntfRsrcs\\INTFC]\n" + instrClass + "  \"PrefixName\" sz \"INTFC\"\n" + flags("10000000") +
              "[DefaultIntfRsrcs\\MEMACC]\n" + instrClass + "  \"PrefixName\" sz \"MEMACC\"\n" + flags("01100001") +
              "[DefaultRsrcs]\n"
              "  \"\" sz \"Resources to load during auto-connect and configuration ADD functions\"\n"
              "[DefaultRsrcs\\INSTR]\n" + instrClass + "  \"PrefixName\" sz \"INSTR\"\n" + flags("11111111") +
              "[DefaultRsrcs\\SOCKET]\n" + instrClass + "  \"PrefixName\" sz \"SOCKET\"\n" + flags("00001000"));
}

TEST(VisaInfo, IsWrittenOncePerProcess) {
    test::TempStore temp;
    writeFirstTime();
    putString(underProduct("VISAInfo"), "LastMod", "earlier");
    ConfigStore().WriteVisaInfoDefaults();
    EXPECT_EQ(lastMod(), "earlier");
    writeFirstTime();
    EXPECT_NE(lastMod(), "earlier");
}

TEST(VisaInfo, AFailedFirstWriteIsNotRetried) {
    test::TempStore temp;
    resetVisaInfoWrittenFlag();
    platform::closeStore();
    ConfigStore().WriteVisaInfoDefaults();
    temp.reopen();
    ConfigStore().WriteVisaInfoDefaults();
    EXPECT_FALSE(test::keyExists(underProduct("VISAInfo")));
}

TEST(VisaInfo, KeepsTunedLimitsAndAddedClassesAndDropsObsoleteTables) {
    test::TempStore temp;
    const std::string info = underProduct("VISAInfo");
    putDword(info, "MaxSessNbr", 1000);
    putString(info, "Logging", "ON");
    putString(info, "SleepMs", "5");  // kept whatever its type
    putString(info, "Manufacturer", "someone else");
    putString(info + "\\DefaultRsrcs\\INSTR", "PrefixName", "edited");
    putString(info + "\\DefaultRsrcs\\INSTR", "Kept", "yes");
    putBool(info + "\\DefaultRsrcs\\EXTRA", "GPIB", true);
    putKey(info + "\\DefaultRsrcsDrvrs\\INSTR\\Sub");
    putKey(info + "\\DefaultRsrcsDrvrs\\OTHER");
    putKey(info + "\\DefaultIntfRsrcs\\TTLTRIG3\\Sub\\Deeper");
    putKey(info + "\\DefaultIntfRsrcs\\TTLTRIG0");
    putKey(info + "\\DefaultIntfRsrcs\\TTLTRIG7");
    putKey(info + "\\DefaultIntfRsrcs\\TTLTRIG8");
    putKey(info + "\\DefaultIntfRsrcs\\ttltrig5");
    writeFirstTime();
    const platform::Registry key("VISAInfo", platform::kRegOpenExisting);
    std::uint32_t sessions = 0;
    key.getDword("MaxSessNbr", &sessions);
    EXPECT_EQ(sessions, 1000u);
    EXPECT_EQ(key.getString("Logging"), "ON");
    EXPECT_EQ(key.getString("SleepMs"), "5");
    EXPECT_EQ(key.getString("Manufacturer"), "Tolvane Technologies");
    const platform::Registry instr("VISAInfo\\DefaultRsrcs\\INSTR", platform::kRegOpenExisting);
    EXPECT_EQ(instr.getString("PrefixName"), "INSTR");
    EXPECT_EQ(instr.getString("Kept"), "yes");
    EXPECT_TRUE(test::keyExists(info + "\\DefaultRsrcs\\EXTRA"));
    EXPECT_FALSE(test::keyExists(info + "\\DefaultRsrcsDrvrs"));
    for (const char* gone : {"TTLTRIG0", "TTLTRIG3", "TTLTRIG7", "ttltrig5"})
        EXPECT_FALSE(test::keyExists(info + "\\DefaultIntfRsrcs\\" + gone)) << gone;
    EXPECT_TRUE(test::keyExists(info + "\\DefaultIntfRsrcs\\TTLTRIG8"));
}

TEST(VisaInfo, TimeTextHasTheTwentyFourCharacterForm) {
    const char* previous = std::getenv("TZ");
    const std::string saved = previous ? previous : "";
    setenv("TZ", "UTC", 1);
    tzset();
    const struct {
        std::time_t when;
        const char* text;
    } cases[] = {{1204622127, "Tue Mar 04 09:15:27 2008"},
                 {1735167909, "Wed Dec 25 23:05:09 2024"},
                 {946684799, "Fri Dec 31 23:59:59 1999"},
                 {0, "Thu Jan 01 00:00:00 1970"}};
    for (const auto& c : cases) {
        EXPECT_EQ(ctimeText(c.when), c.text);
        EXPECT_EQ(ctimeText(c.when).size(), 24u);
    }
    if (previous)
        setenv("TZ", saved.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}

TEST(VisaInfo, VersionNumbersUseTheVisaEncoding) {
    EXPECT_EQ(visaVersionNumber(4, 0, 0), 0x00400000u);
    EXPECT_EQ(visaVersionNumber(5, 7, 2), 0x00500702u);
    EXPECT_EQ(visaVersionNumber(0xFFF, 0xFFF, 0xFF), 0xFFFFFFFFu);
    EXPECT_EQ(visaVersionNumber(1, 0x123, 0x45), 0x00112345u);
}

}  // namespace
}  // namespace braxcfg::store
