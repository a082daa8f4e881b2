// Product settings: the product key words, flags in their three forms, the
// VISA-present migration, "BaseDir" and the alias lists.
#include "platform/product_settings.h"

#include <gtest/gtest.h>

#include "platform/reg_types.h"
#include "store_builder.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

using test::putBytes;
using test::putDword;
using test::putKey;
using test::putString;
using test::readValue;
using test::TempStore;

constexpr const char* kWordsKey = "SOFTWARE\\Tolvane\\Linkbase";

std::string stringValue(const std::string& key, const std::string& name) {
    std::uint32_t type = 0;
    std::string bytes;
    if (!readValue(key, name, type, bytes) || type != kRegSz) return "<missing>";
    return std::string(bytes.c_str());
}

struct ProductKeyCase {
    const char* label;
    bool legacyKey;
    const char* mfgName;  // null: not present
    const char* keyName;
    const char* expectedKey;
    const char* writtenMfg;  // null: words not rewritten
    const char* writtenKey;
};

TEST(ProductKey, WordsComeFromTheStoreOrTheInstallationKind) {
    const ProductKeyCase cases[] = {
        {"fresh store", false, nullptr, nullptr, "SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion", "Tolvane", "Linkbase"},
        {"older installation", true, nullptr, nullptr, "SOFTWARE\\KORL\\\\CurrentVersion", "KORL", ""},
        {"words stored", true, "Acme", "Bench", "SOFTWARE\\Acme\\Bench\\CurrentVersion", nullptr, nullptr},
        {"one word only", false, "Acme", "", "SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion", "Tolvane", "Linkbase"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        TempStore store;
        if (c.legacyKey) putKey("SOFTWARE\\Brask-Merrow\\KORL");
        if (c.mfgName) putString(kWordsKey, "MfgName", c.mfgName);
        if (c.keyName) putString(kWordsKey, "KeyName", c.keyName);
        EXPECT_EQ(productKey(), c.expectedKey);
        if (c.writtenMfg) {
            EXPECT_EQ(stringValue(kWordsKey, "MfgName"), c.writtenMfg);
            EXPECT_EQ(stringValue(kWordsKey, "KeyName"), c.writtenKey);
        } else {
            EXPECT_EQ(stringValue(kWordsKey, "MfgName"), c.mfgName);
        }
    }
}

struct FlagCase {
    const char* label;
    RegType type;
    std::string bytes;  // empty with type kRegNone: value absent
    long expected;
};

TEST(ProductFlag, TextNumberAndByteForms) {
    const FlagCase cases[] = {
        {"absent", kRegNone, "", 1},
        {"text false", kRegSz, std::string("false", 6), 0},
        {"text TRUE", kRegSz, std::string("TRUE", 5), 1},
        {"text number", kRegSz, std::string("7", 2), 7},
        {"text negative", kRegSz, std::string("-3", 3), -3},
        {"text other", kRegSz, std::string("yes", 4), 0},
        {"dword", kRegDword, std::string("\x05\x00\x00\x00", 4), 5},
        {"binary first byte", kRegBinary, std::string("\x02\x09", 2), 2},
        {"binary zero", kRegBinary, std::string("\x00", 1), 0},
        {"other type", kRegMultiSz, std::string("0\0\0", 3), 1},
        {"too long to read", kRegSz, std::string(20, '0') + '\0', 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        TempStore store;
        putKey(test::underProduct());
        if (c.type != kRegNone) putBytes(test::underProduct(), "UseLegacyPxiInstrFormat", c.type, c.bytes);
        EXPECT_EQ(readProductFlag("UseLegacyPxiInstrFormat", 1), c.expected);
        EXPECT_EQ(useLegacyPxiInstrFormat(), c.expected);
    }
}

TEST(ProductFlag, LegacyPxiSettingIsReadOncePerStore) {
    TempStore store;
    putString(test::underProduct(), "UseLegacyPxiInstrFormat", "False");
    EXPECT_EQ(useLegacyPxiInstrFormat(), 0);
    putString(test::underProduct(), "UseLegacyPxiInstrFormat", "True");
    EXPECT_EQ(useLegacyPxiInstrFormat(), 0) << "a running process keeps the form it started with";
    store.reopen();
    EXPECT_EQ(useLegacyPxiInstrFormat(), 1);
}

struct PresentCase {
    const char* label;
    std::optional<std::uint32_t> current;
    std::optional<std::uint32_t> older;
    std::uint32_t expected;
    bool olderRemains;
};

TEST(VisaPresent, OlderNameMigratesOnFirstRead) {
    const PresentCase cases[] = {
        {"neither", std::nullopt, std::nullopt, 1, false},
        {"older only", std::nullopt, 0u, 0, false},
        {"older only, on", std::nullopt, 4u, 4, false},
        {"current wins", 0u, 1u, 0, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        TempStore store;
        putKey(test::underProduct());
        if (c.current) putDword(test::underProduct(), "LinkbaseVisaPresent", *c.current);
        if (c.older) putDword(test::underProduct(), "KxVisaPresent", *c.older);
        EXPECT_EQ(visaPresent(), c.expected);
        std::uint32_t type = 0;
        std::string bytes;
        ASSERT_TRUE(readValue(test::underProduct(), "LinkbaseVisaPresent", type, bytes));
        EXPECT_EQ(type, kRegDword);
        EXPECT_EQ(readValue(test::underProduct(), "KxVisaPresent", type, bytes), c.olderRemains);
        EXPECT_EQ(visaPresent(), c.expected) << "a second read gives the migrated value";
    }
}

TEST(VisaPresent, MissingProductKeyReadsAsAbsent) {
    TempStore store;
    EXPECT_EQ(visaPresent(), 0u);
}

TEST(BaseDir, DefaultsToCurrentDirectoryAndIsCached) {
    TempStore store;
    EXPECT_EQ(baseDir(), ".");
    putString(test::underProduct(), "BaseDir", "/opt/visa");
    EXPECT_EQ(baseDir(), ".");
    store.reopen();
    EXPECT_EQ(baseDir(), "/opt/visa");
}

TEST(DeviceLists, ChangeLookupAndEnumerate) {
    TempStore store;
    EXPECT_EQ(changeDeviceLists("scope1", std::string("GPIB0::7"), std::string("TCPIP0::scope::INSTR")), 3);
    EXPECT_EQ(changeDeviceLists("dmm", std::nullopt, std::string("TCPIP0::dmm::INSTR")), 2);
    EXPECT_EQ(lookupDeviceList(kVisaDevicesList, "SCOPE1"), "TCPIP0::scope::INSTR") << "names ignore case";
    EXPECT_EQ(lookupDeviceList(kDevicesList, "dmm"), "dmm") << "a missing alias address is the name itself";
    EXPECT_EQ(lookupDeviceList(kVisaDevicesList, "dmm2", "fallback"), "fallback");

    std::string name, text;
    ASSERT_TRUE(enumDeviceList(kVisaDevicesList, 0, name, text));
    EXPECT_EQ(name, "scope1");
    EXPECT_EQ(text, "TCPIP0::scope::INSTR");
    ASSERT_TRUE(enumDeviceList(kVisaDevicesList, 1, name, text));
    EXPECT_EQ(name, "dmm");
    EXPECT_FALSE(enumDeviceList(kVisaDevicesList, 2, name, text));
    EXPECT_TRUE(name.empty() && text.empty());

    EXPECT_EQ(changeDeviceLists("scope1", std::string(""), std::string("")), 3) << "empty texts delete";
    EXPECT_FALSE(enumDeviceList(kDevicesList, 0, name, text));
    EXPECT_EQ(changeDeviceLists("scope1", std::string(""), std::nullopt), 0) << "nothing left to delete";
}

}  // namespace
}  // namespace braxcfg::platform
