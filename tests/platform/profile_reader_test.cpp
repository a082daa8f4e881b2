#include "platform/profile_reader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace braxcfg::platform {
namespace {

struct LookupCase {
    const char* what;
    const char* content;
    const char* section;
    const char* key;
    const char* expected;
};

void PrintTo(const LookupCase& c, std::ostream* out) { *out << c.what; }

class ProfileLookup : public ::testing::TestWithParam<LookupCase> {};

TEST_P(ProfileLookup, FindsValueByTheProfileRules) {
    const LookupCase& c = GetParam();
    EXPECT_EQ(lookupProfileString(c.content, c.section, c.key, "dflt"), c.expected) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ProfileLookup,
    ::testing::Values(
        LookupCase{"plain", "[Cfg232]\nVISAAutoConfig=true\n", "Cfg232", "VISAAutoConfig", "true"},
        LookupCase{"names ignore case", "[cfg232]\nvisaautoconfig=Yes\n", "CFG232", "VisaAutoConfig", "Yes"},
        LookupCase{"value keeps its case", "[S]\nk=TrUe\n", "s", "K", "TrUe"},
        LookupCase{"blanks around everything", "  [ S ]  \r\n\t k \t=\t v w \t\r\n", "S", "k", "v w"},
        LookupCase{"double quotes removed", "[S]\nk=\" padded \"\n", "S", "k", " padded "},
        LookupCase{"single quotes removed", "[S]\nk='x'\n", "S", "k", "x"},
        LookupCase{"unmatched quote kept", "[S]\nk=\"x\n", "S", "k", "\"x"},
        LookupCase{"mixed quotes kept", "[S]\nk=\"x'\n", "S", "k", "\"x'"},
        LookupCase{"lone quote kept", "[S]\nk=\"\n", "S", "k", "\""},
        LookupCase{"empty quotes give empty", "[S]\nk=\"\"\n", "S", "k", ""},
        LookupCase{"empty value is not the default", "[S]\nk=\n", "S", "k", ""},
        LookupCase{"key without = reads as missing", "[S]\nk\n", "S", "k", "dflt"},
        LookupCase{"first key wins", "[S]\nk=1\nk=2\n", "S", "k", "1"},
        LookupCase{"first section wins", "[S]\na=1\n[S]\nk=2\n", "S", "k", "dflt"},
        LookupCase{"key of another section", "[T]\nk=1\n[S]\nj=2\n", "S", "k", "dflt"},
        LookupCase{"keys before any section", "k=1\n[S]\n", "S", "k", "dflt"},
        LookupCase{"comment line", "[S]\n;k=1\nk=2\n", "S", "k", "2"},
        LookupCase{"comment after value kept", "[S]\nk=1 ; note\n", "S", "k", "1 ; note"},
        LookupCase{"second = belongs to the value", "[S]\nk=a=b\n", "S", "k", "a=b"},
        LookupCase{"last ] closes the header", "[a]b]\nk=1\n", "a]b", "k", "1"},
        LookupCase{"[ without ] does not end the section", "[S]\n[T\nk=1\n", "S", "k", "1"},
        LookupCase{"section name is not a prefix", "[Cfg2320]\nk=1\n", "Cfg232", "k", "dflt"},
        LookupCase{"old end-of-file mark", "[S]\nk=1\x1a", "S", "k", "1"},
        LookupCase{"UTF-8 mark before the first header", "\xEF\xBB\xBF[S]\nk=1\n", "S", "k", "1"},
        LookupCase{"carriage returns only", "[S]\rk=1\r", "S", "k", "1"},
        LookupCase{"no line end at the end", "[S]\nk=1", "S", "k", "1"},
        LookupCase{"empty text", "", "S", "k", "dflt"}));

TEST(ProfileDefault, LosesTrailingBlanksOnly) {
    EXPECT_EQ(lookupProfileString("", "S", "k", "  a b  "), "  a b");
}

TEST(ProfileResult, IsCutToTheCallersBuffer) {
    const struct {
        std::size_t maxChars;
        const char* expected;
    } cases[] = {{0, ""}, {1, ""}, {3, "ab"}, {6, "abcde"}, {7, "abcde"}};
    for (const auto& c : cases) {
        EXPECT_EQ(lookupProfileString("[S]\nk=abcde\n", "S", "k", "", c.maxChars), c.expected) << c.maxChars;
        EXPECT_EQ(lookupProfileString("", "S", "k", "abcde", c.maxChars), c.expected) << c.maxChars;
    }
}

TEST(ProfileFile, ReadsTheFileAndFallsBackWhenItCannot) {
    const std::string dir = BRAXCFG_TEST_OUTPUT "/profile";
    std::filesystem::create_directories(dir);
    const std::string path = dir + "/intfcfg.ini";
    {
        std::ofstream out(path, std::ios::binary);
        out << "[Cfg232]\r\nVISAAutoConfig = True\r\n";
    }
    EXPECT_EQ(readProfileString(path, "cfg232", "visaautoconfig", ""), "True");
    EXPECT_EQ(readProfileString(dir + "/missing.ini", "Cfg232", "VISAAutoConfig", "no"), "no");
    EXPECT_EQ(readProfileString(dir, "Cfg232", "VISAAutoConfig", "folder"), "folder");
    std::filesystem::remove(path);
}

}  // namespace
}  // namespace braxcfg::platform
