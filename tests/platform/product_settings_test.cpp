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

std::string stringValue(const std::string& key, const std::string& name) {
    std::uint32_t type = 0;
    std::string bytes;
    return test::readValue(key, name, type, bytes) && type == kRegSz ? bytes.c_str() : "<missing>";
}

TEST(ProductKey, WordsComeFromTheStoreOrTheInstallationKind) {
    // mfgName, keyName: null when absent; words: both as the store holds them afterwards.
    const struct { const char* label; bool legacyKey; const char *mfgName, *keyName, *expectedKey, *words; } cases[] = {
        {"fresh store", false, nullptr, nullptr, "SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion", "Tolvane|Linkbase"},
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
        EXPECT_EQ(stringValue(kWordsKey, "MfgName") + "|" + stringValue(kWordsKey, "KeyName"), c.words);
    }
}

TEST(ProductFlag, TextNumberAndByteForms) {
    // type kRegNone: the value is absent.
    const struct { const char* label; RegType type; std::string bytes; long expected; } cases[] = {
        {"absent", kRegNone, "", 1},
        {"text false", kRegSz, "false\0"s, 0},
        {"text TRUE", kRegSz, "TRUE\0"s, 1},
        {"text number", kRegSz, "7\0"s, 7},
        {"text negative", kRegSz, "-3\0"s, -3},
        {"text other", kRegSz, "yes\0"s, 0},
        {"dword", kRegDword, "\x05\0\0\0"s, 5},
        {"binary first byte", kRegBinary, "\x02\x09"s, 2},
        {"binary zero", kRegBinary, "\0"s, 0},
        {"other type", kRegMultiSz, "0\0\0"s, 1},
        {"too long to read", kRegSz, std::string(20, '0') + '\0', 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        TempStore store;
        test::putKey(underProduct());
        if (c.type != kRegNone) test::putBytes(underProduct(), "UseLegacyPxiInstrFormat", c.type, c.bytes);
        EXPECT_EQ(readProductFlag("UseLegacyPxiInstrFormat", 1), c.expected);
        EXPECT_EQ(useLegacyPxiInstrFormat(), c.expected);
    }
}

TEST(ProductSettings, CachedValuesAreReadOncePerStore) {
    TempStore store;
    EXPECT_EQ(baseDir(), ".");
    putString(underProduct(), "UseLegacyPxiInstrFormat", "False");
    EXPECT_EQ(useLegacyPxiInstrFormat(), 0);
    putString(underProduct(), "UseLegacyPxiInstrFormat", "True");
    putString(underProduct(), "BaseDir", "/opt/visa");
    EXPECT_EQ(useLegacyPxiInstrFormat(), 0) << "a running process keeps the form it started with";
    EXPECT_EQ(baseDir(), ".");
    store.reopen();
    EXPECT_EQ(useLegacyPxiInstrFormat(), 1);
    EXPECT_EQ(baseDir(), "/opt/visa");
}

TEST(VisaPresent, OlderNameMigratesOnFirstRead) {
    const struct {
        const char* label; std::optional<std::uint32_t> current, older; std::uint32_t expected; bool olderRemains;
    } cases[] = {
        {"neither", std::nullopt, std::nullopt, 1, false},
        {"older only", std::nullopt, 0u, 0, false},
        {"older only, on", std::nullopt, 4u, 4, false},
        {"current wins", 0u, 1u, 0, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        TempStore store;
        test::putKey(underProduct());
        if (c.current) test::putDword(underProduct(), "LinkbaseVisaPresent", *c.current);
        if (c.older) test::putDword(underProduct(), "KxVisaPresent", *c.older);
        EXPECT_EQ(visaPresent(), c.expected);
        std::uint32_t type = 0;
        std::string bytes;
        ASSERT_TRUE(test::readValue(underProduct(), "LinkbaseVisaPresent", type, bytes));
        EXPECT_EQ(type, kRegDword);
        EXPECT_EQ(test::readValue(underProduct(), "KxVisaPresent", type, bytes), c.olderRemains);
        EXPECT_EQ(visaPresent(), c.expected) << "a second read gives the migrated value";
    }
    TempStore noProductKey;
    EXPECT_EQ(visaPresent(), 0u);
}

TEST(DeviceLists, ChangeLookupAndEnumerate) {
    TempStore store;
    EXPECT_EQ(changeDeviceLists("scope1", "GPIB0::7"s, "TCPIP0::scope::INSTR"s), 3);
    EXPECT_EQ(changeDeviceLists("dmm", std::nullopt, "TCPIP0::dmm::INSTR"s), 2);
    EXPECT_EQ(lookupDeviceList(kVisaDevicesList, "SCOPE1"), "TCPIP0::scope::INSTR") << "names ignore case";
    EXPECT_EQ(lookupDeviceList(kDevicesList, "dmm"), "dmm") << "a missing alias address is the name itself";
    EXPECT_EQ(lookupDeviceList(kVisaDevicesList, "dmm2", "fallback"), "fallback");

    std::string name, text;
    ASSERT_TRUE(enumDeviceList(kVisaDevicesList, 0, name, text));
    EXPECT_EQ(name + "=" + text, "scope1=TCPIP0::scope::INSTR");
    ASSERT_TRUE(enumDeviceList(kVisaDevicesList, 1, name, text));
    EXPECT_EQ(name + "=" + text, "dmm=TCPIP0::dmm::INSTR");
    EXPECT_FALSE(enumDeviceList(kVisaDevicesList, 2, name, text));
    EXPECT_TRUE(name.empty() && text.empty());

    EXPECT_EQ(changeDeviceLists("scope1", ""s, ""s), 3) << "empty texts delete";
    EXPECT_FALSE(enumDeviceList(kDevicesList, 0, name, text));
    EXPECT_EQ(changeDeviceLists("scope1", ""s, std::nullopt), 0) << "nothing left to delete";
}

}  // namespace
}  // namespace braxcfg::platform
