// Product settings: the product key words, flags in their three forms, the
// VISA-present migration, "BaseDir" and the alias lists.
#include "platform/product_settings.h"

#include <gtest/gtest.h>

#include "platform/reg_types.h"
#include "store_builder.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

using namespace std::string_literals;
using test::putString;
using test::TempStore;
using test::underProduct;

constexpr const char* kWordsKey = "SOFTWARE\\Tolvane\\Linkbase";

// The value's text, or what readValue says of its type when it is not REG_SZ.
std::string valueText(const std::string& key, const std::string& name) {
    std::uint32_t type = 0;
    std::string bytes;
    if (!test::readValue(key, name, type, bytes)) return "<missing>";
    return type == kRegSz ? bytes.c_str() : "<type " + std::to_string(type) + ">";
}

TEST(ProductKey, WordsComeFromTheStoreOrTheInstallationKind) {
    // mfgName, keyName: null when absent; words: both as the store holds them afterwards.
    const struct { const char* label; bool legacyKey; const char *mfgName, *keyName, *expectedKey, *words; } cases[] = {
        {"older installation", true, nullptr, nullptr, "SOFTWARE\\KORL\\\\CurrentVersion", "KORL|"},
        {"words stored", true, "Acme", "Bench", "SOFTWARE\\Acme\\Bench\\CurrentVersion", "Acme|Bench"},
        {"one word only", false, "Acme", "", "SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion", "Tolvane|Linkbase"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        TempStore store;
        if (c.legacyKey) test::putKey("SOFTWARE\\Brask-Merrow\\KORL");
        if (c.mfgName) putString(kWordsKey, "MfgName", c.mfgName);
        if (c.keyName) putString(kWordsKey, "KeyName", c.keyName);
        EXPECT_EQ(productKey(), c.expectedKey);
        EXPECT_EQ(valueText(kWordsKey, "MfgName") + "|" + valueText(kWordsKey, "KeyName"), c.words);
    }
}

TEST(ProductFlag, TextNumberAndByteForms) {
    // type kRegNone: the value is absent.
    const struct { RegType type; std::string bytes; long expected; } cases[] = {
        {kRegNone, "", 1}, {kRegSz, "false\0"s, 0}, {kRegSz, "TRUE\0"s, 1}, {kRegSz, "-3\0"s, -3},
        {kRegSz, "yes\0"s, 0}, {kRegDword, "\x05\0\0\0"s, 5}, {kRegBinary, "\x02\x09"s, 2},
        {kRegMultiSz, "0\0\0"s, 1}, {kRegSz, std::string(20, '0') + '\0', 1},  // too long to read
    };
    for (const auto& c : cases) {
        TempStore store;
        test::putKey(underProduct());
        if (c.type != kRegNone) test::putBytes(underProduct(), "UseLegacyPxiInstrFormat", c.type, c.bytes);
        EXPECT_EQ(readProductFlag("UseLegacyPxiInstrFormat", 1), c.expected) << c.type << " " << c.bytes.c_str();
    }
}

TEST(ProductSettings, CachedValuesAreReadOncePerStore) {
    TempStore store;
    EXPECT_EQ(baseDir(), ".");  // a new "BaseDir" after reopening is the VISA configuration test's
    putString(underProduct(), "UseLegacyPxiInstrFormat", "False");
    EXPECT_EQ(useLegacyPxiInstrFormat(), 0);
    putString(underProduct(), "UseLegacyPxiInstrFormat", "True");
    EXPECT_EQ(useLegacyPxiInstrFormat(), 0) << "a running process keeps the form it started with";
    store.reopen();
    EXPECT_EQ(useLegacyPxiInstrFormat(), 1);
}

TEST(VisaPresent, OlderNameMigratesOnFirstRead) {
    // current, older: the values before; after: both values once read (twice).
    const struct { std::optional<std::uint32_t> current, older; std::uint32_t expected; const char* after; } cases[] = {
        {std::nullopt, std::nullopt, 1, "<type 4>|<missing>"}, {std::nullopt, 0u, 0, "<type 4>|<missing>"},
        {std::nullopt, 4u, 4, "<type 4>|<missing>"},           {0u, 1u, 0, "<type 4>|<type 4>"},
    };
    for (const auto& c : cases) {
        TempStore store;
        test::putKey(underProduct());
        if (c.current) test::putDword(underProduct(), "LinkbaseVisaPresent", *c.current);
        if (c.older) test::putDword(underProduct(), "KxVisaPresent", *c.older);
        EXPECT_EQ(visaPresent(), c.expected);
        EXPECT_EQ(visaPresent(), c.expected) << "a second read gives the migrated value";
        EXPECT_EQ(valueText(underProduct(), "LinkbaseVisaPresent") + "|" + valueText(underProduct(), "KxVisaPresent"),
                  c.after);
    }
    TempStore noProductKey;
    EXPECT_EQ(visaPresent(), 0u);
}

// Loading, changing and deleting aliases through the lists is the alias
// list's and the tool's aliases commands'; here what they do not reach.
TEST(DeviceLists, ChangeReportsWhatItWroteAndLookupFallsBack) {
    TempStore store;
    EXPECT_EQ(changeDeviceLists("scope1", "GPIB0::7"s, "TCPIP0::scope::INSTR"s), 3);
    EXPECT_EQ(changeDeviceLists("dmm", std::nullopt, "TCPIP0::dmm::INSTR"s), 2);
    EXPECT_EQ(lookupDeviceList(kDevicesList, "dmm"), "dmm") << "a missing alias address is the name itself";
    EXPECT_EQ(lookupDeviceList(kVisaDevicesList, "dmm2", "fallback"), "fallback");
}

}  // namespace
}  // namespace braxcfg::platform
