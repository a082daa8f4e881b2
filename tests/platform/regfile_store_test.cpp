// .reg import and export against a real store file: byte-exact round trips,
// merging, recursive [-key], and all-or-nothing rejection.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/regfile/reg_export.h"
#include "platform/regfile/reg_import.h"
#include "platform/store.h"
#include "temp_store.h"

namespace braxcfg::platform::regfile {
namespace {

std::string readFixture(const std::string& name) {
    std::ifstream in(std::string(BRAXCFG_TEST_FIXTURES) + "/" + name, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

std::string exportText(std::string_view key = "", RegTextEncoding encoding = RegTextEncoding::Utf8) {
    const RegExportResult result = exportRegFile(currentStore(), key, encoding);
    EXPECT_FALSE(result.error) << *result.error;
    return result.bytes;
}

void importOrFail(const std::string& bytes) {
    const auto error = importRegFile(currentStore(), bytes);
    ASSERT_FALSE(error) << describe(*error);
}

TEST(RegFileStore, RoundTripsFixturesByteForByte) {
    const std::string utf16 = readFixture("regfile_roundtrip.utf16.reg");
    const std::string utf8 = readFixture("regfile_roundtrip.utf8.reg");
    ASSERT_FALSE(utf16.empty());
    ASSERT_FALSE(utf8.empty());
    for (const std::string* source : {&utf16, &utf8}) {
        test::TempStore store;
        importOrFail(*source);
        EXPECT_EQ(exportText("", RegTextEncoding::Utf16), utf16);
        EXPECT_EQ(exportText("", RegTextEncoding::Utf8), utf8);
    }
}

TEST(RegFileStore, ImportMergesIntoWhatTheStoreHolds) {
    test::TempStore store;
    importOrFail(
        "REGEDIT4\n[HKEY_LOCAL_MACHINE\\T]\n\"a\"=\"1\"\n\"b\"=\"2\"\n\"c\"=\"3\"\n"
        "[HKEY_LOCAL_MACHINE\\T\\Gone]\n\"v\"=\"x\"\n"
        "[HKEY_LOCAL_MACHINE\\T\\Gone\\Deeper\\Deepest]\n\"v\"=dword:1\n"
        "[HKEY_LOCAL_MACHINE\\T\\Kept]\n");
    importOrFail(
        "REGEDIT4\n[HKEY_LOCAL_MACHINE\\T]\n\"b\"=\"two\"\n\"a\"=-\n\"d\"=dword:4\n\"missing\"=-\n"
        "[-HKEY_LOCAL_MACHINE\\T\\Gone]\n[-HKEY_LOCAL_MACHINE\\T\\NeverWas]\n"
        "[HKEY_LOCAL_MACHINE\\T\\New\\Child]\n");
    EXPECT_EQ(exportText("HKEY_LOCAL_MACHINE\\T"),
              "Windows Registry Editor Version 5.00\n\n"
              "[HKEY_LOCAL_MACHINE\\T]\n\"b\"=\"two\"\n\"c\"=\"3\"\n\"d\"=dword:00000004\n\n"
              "[HKEY_LOCAL_MACHINE\\T\\Kept]\n\n"
              "[HKEY_LOCAL_MACHINE\\T\\New]\n\n"
              "[HKEY_LOCAL_MACHINE\\T\\New\\Child]\n\n");
}

// The real store, except that it refuses to set a value named "refused",
// as a full disk or a read-only file would refuse part way through.
class RefusingStore : public StoreBackend {
public:
    explicit RefusingStore(StoreBackend& inner) : inner_(inner) {}
    RegResult openKey(HKey parent, const char* subKey, RegAccess access, HKey* result) override {
        return inner_.openKey(parent, subKey, access, result);
    }
    RegResult createKey(HKey parent, const char* subKey, RegAccess access, HKey* result, bool* created) override {
        return inner_.createKey(parent, subKey, access, result, created);
    }
    RegResult closeKey(HKey key) override { return inner_.closeKey(key); }
    RegResult queryValue(HKey key, const char* name, RegType* type, std::uint8_t* data,
                         std::uint32_t* cbData) override {
        return inner_.queryValue(key, name, type, data, cbData);
    }
    RegResult setValue(HKey key, const char* name, RegType type, const std::uint8_t* data,
                       std::uint32_t cbData) override {
        if (std::strcmp(name, "refused") == 0) return kErrorCantWrite;
        return inner_.setValue(key, name, type, data, cbData);
    }
    RegResult deleteValue(HKey key, const char* name) override { return inner_.deleteValue(key, name); }
    RegResult deleteKey(HKey parent, const char* subKey) override { return inner_.deleteKey(parent, subKey); }
    RegResult enumKey(HKey key, std::uint32_t index, char* name, std::uint32_t cchName) override {
        return inner_.enumKey(key, index, name, cchName);
    }
    RegResult enumValue(HKey key, std::uint32_t index, char* name, std::uint32_t* cchName, RegType* type,
                        std::uint8_t* data, std::uint32_t* cbData) override {
        return inner_.enumValue(key, index, name, cchName, type, data, cbData);
    }
    RegResult beginTransaction() override { return inner_.beginTransaction(); }
    RegResult commitTransaction() override { return inner_.commitTransaction(); }
    void rollbackTransaction() override { inner_.rollbackTransaction(); }

private:
    StoreBackend& inner_;
};

struct RejectedCase {
    const char* label;
    std::string file;
    int line;
    const char* reason;
};

TEST(RegFileStore, RejectedImportLeavesTheStoreAsItWas) {
    const std::string changesFirst =
        "REGEDIT4\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion\\INTF0]\n"
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase]\n\"MfgName\"=\"Other\"\n\"KeyName\"=-\n"
        "[HKEY_LOCAL_MACHINE\\New]\n\"a\"=\"b\"\n";
    const std::vector<RejectedCase> cases = {
        {"malformed line after valid changes", changesFirst + "\"c\"=hex:1,\\\njunk\n", 9, "continuing"},
        {"store refuses a value after valid changes", changesFirst + "\"refused\"=\"x\"\n\"d\"=\"e\"\n", 8,
         "refused"},
    };
    for (const RejectedCase& c : cases) {
        test::TempStore store;
        importOrFail(readFixture("regfile_roundtrip.utf8.reg"));
        const std::string before = exportText();
        RefusingStore refusing(currentStore());
        const auto error = importRegFile(refusing, c.file);
        ASSERT_TRUE(error) << c.label;
        EXPECT_EQ(error->line, c.line) << c.label;
        EXPECT_NE(error->message.find(c.reason), std::string::npos) << c.label << ": " << error->message;
        EXPECT_EQ(exportText(), before) << c.label;
    }
}

TEST(RegFileStore, ExportStartsAtTheKeyAsSpelled) {
    test::TempStore store;
    importOrFail("REGEDIT4\n[HKEY_LOCAL_MACHINE\\Top\\Mid\\Leaf]\n\"v\"=\"1\"\n[HKEY_LOCAL_MACHINE\\Top\\Other]\n");
    EXPECT_EQ(exportText("hkey_local_machine\\top\\\\MID\\"),
              "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\top\\MID]\n\n"
              "[HKEY_LOCAL_MACHINE\\top\\MID\\Leaf]\n\"v\"=\"1\"\n\n");

    struct Refusal {
        const char* key;
        const char* reason;
    };
    for (const Refusal& r : {Refusal{"HKEY_LOCAL_MACHINE\\Top\\Nowhere", "does not exist"},
                             Refusal{"HKEY_CURRENT_USER\\Top", "only HKEY_LOCAL_MACHINE"},
                             Refusal{"HKLM\\Top", "unknown root key"}}) {
        const RegExportResult result = exportRegFile(currentStore(), r.key, RegTextEncoding::Utf8);
        ASSERT_TRUE(result.error) << r.key;
        EXPECT_NE(result.error->find(r.reason), std::string::npos) << *result.error;
        EXPECT_TRUE(result.bytes.empty());
    }
}

}  // namespace
}  // namespace braxcfg::platform::regfile
