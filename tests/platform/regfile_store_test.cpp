// .reg import and export against a real store file: merging, recursive
// [-key], and all-or-nothing rejection. The text of each value form is the
// writer's test; the byte-exact round trip of the fixture files is the
// tool's import and export test.
#include <gtest/gtest.h>

#include <string>

#include "platform/regfile/reg_export.h"
#include "platform/regfile/reg_import.h"
#include "platform/regfile/reg_parser.h"
#include "platform/store.h"
#include "file_bytes.h"
#include "temp_store.h"

namespace braxcfg::platform::regfile {
namespace {

std::string exportText(std::string_view key = "", RegTextEncoding encoding = RegTextEncoding::Utf8) {
    const RegExportResult result = exportRegFile(currentStore(), key, encoding);
    EXPECT_FALSE(result.error) << *result.error;
    return result.bytes;
}

void importOrFail(const std::string& bytes) {
    const auto error = importRegFile(currentStore(), bytes);
    ASSERT_FALSE(error) << describe(*error);
}

std::string fixture(const std::string& name) { return test::readFile(BRAXCFG_TEST_FIXTURES "/" + name); }

TEST(RegFileStore, ImportMergesAndExportStartsAtTheKeyAsSpelled) {
    test::TempStore store;
    importOrFail("REGEDIT4\n[HKEY_LOCAL_MACHINE\\T]\n\"a\"=\"1\"\n\"b\"=\"2\"\n\"c\"=\"3\"\n"
                 "[HKEY_LOCAL_MACHINE\\T\\Gone]\n\"v\"=\"x\"\n[HKEY_LOCAL_MACHINE\\T\\Gone\\Deeper\\Deepest]\n"
                 "\"v\"=dword:1\n[HKEY_LOCAL_MACHINE\\T\\Kept]\n");
    importOrFail("REGEDIT4\n[HKEY_LOCAL_MACHINE\\T]\n\"b\"=\"two\"\n\"a\"=-\n\"d\"=dword:4\n\"missing\"=-\n"
                 "[-HKEY_LOCAL_MACHINE\\T\\Gone]\n[-HKEY_LOCAL_MACHINE\\T\\NeverWas]\n"
                 "[HKEY_LOCAL_MACHINE\\T\\New\\Child]\n");
    EXPECT_EQ(exportText("hkey_local_machine\\t\\\\"),
              "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\t]\n\"b\"=\"two\"\n\"c\"=\"3\"\n"
              "\"d\"=dword:00000004\n\n[HKEY_LOCAL_MACHINE\\t\\Kept]\n\n[HKEY_LOCAL_MACHINE\\t\\New]\n\n"
              "[HKEY_LOCAL_MACHINE\\t\\New\\Child]\n\n");
    // The root rules are the parser's, which shares them; one of them stands
    // here. A missing key is the tool's export test.
    const RegExportResult refused = exportRegFile(currentStore(), "HKEY_CURRENT_USER\\T", RegTextEncoding::Utf8);
    EXPECT_NE(refused.error.value_or("").find("only HKEY_LOCAL_MACHINE"), std::string::npos);
    EXPECT_TRUE(refused.bytes.empty());
}

TEST(RegFileStore, RejectedImportLeavesTheStoreAsItWas) {
    // Valid changes first, then on line 10 a value to refuse.
    const std::string file =
        "REGEDIT4\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion\\INTF0]\n"
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase]\n\"MfgName\"=\"Other\"\n\"KeyName\"=-\n"
        "[HKEY_LOCAL_MACHINE\\New]\n\"a\"=\"b\"\n\"h\"=hex:01,\\\n  02\n\"refused\"=\"x\"\n";
    test::TempStore store;
    importOrFail(fixture("regfile_roundtrip.utf8.reg"));
    const std::string before = exportText();
    // The store refuses a name too long for it, which the parser would have
    // rejected; everything done before is rolled back. A file the parser
    // refuses is the tool's import test.
    RegParseResult parsed = parseRegFile(file);
    ASSERT_FALSE(parsed.error);
    parsed.ops.back().name = std::string(kMaxValueNameLength + 1, 'n');
    const auto error = applyRegOps(currentStore(), parsed.ops);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->line, 10) << "the line a value starts on, continued lines counted";
    EXPECT_NE(error->message.find("refused"), std::string::npos) << error->message;
    EXPECT_EQ(exportText(), before);
}

}  // namespace
}  // namespace braxcfg::platform::regfile
