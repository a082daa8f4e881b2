// Profile (INI) lookups: section and key matching, quoting, comments, line
// ends and the caller's buffer. Reading the file is the serial default's test
// (tests/store); the listing of sections, which shares the quote rule (a
// quoted identification loses its quotes), is the lab file test's.
#include "platform/profile_reader.h"

#include <gtest/gtest.h>

namespace braxcfg::platform {
namespace {

TEST(ProfileReader, FindsValuesByTheProfileRules) {
    const struct { const char *what, *content, *section, *key, *expected; } cases[] = {
        {"names ignore case, value keeps it", "[cfg232]\nvisaautoconfig=Yes\n", "CFG232", "VisaAutoConfig", "Yes"},
        {"blanks around everything", "  [ S ]  \r\n\t k \t=\t v w \t\r\n", "S", "k", "v w"},
        {"single quotes removed", "[S]\nk='x'\n", "S", "k", "x"},
        {"unmatched quote kept", "[S]\nk=\"x\n", "S", "k", "\"x"},
        {"empty quotes give empty", "[S]\nk=\"\"\n", "S", "k", ""},
        {"empty value is not the default", "[S]\nk=\n", "S", "k", ""},
        {"key without = reads as missing", "[S]\nk\n", "S", "k", "dflt"},
        {"first key wins", "[S]\nk=1\nk=2\n", "S", "k", "1"},
        {"first section wins", "[S]\na=1\n[S]\nk=2\n", "S", "k", "dflt"},
        {"keys before any section", "k=1\n[S]\n", "S", "k", "dflt"},
        {"comment line", "[S]\n;k=1\nk=2\n", "S", "k", "2"},
        {"comment after value kept", "[S]\nk=1 ; note\n", "S", "k", "1 ; note"},
        {"second = belongs to the value", "[S]\nk=a=b\n", "S", "k", "a=b"},
        {"last ] closes the header", "[a]b]\nk=1\n", "a]b", "k", "1"},
        {"[ without ] does not end the section", "[S]\n[T\nk=1\n", "S", "k", "1"},
        {"section name is not a prefix", "[Cfg2320]\nk=1\n", "Cfg232", "k", "dflt"},
        {"old end-of-file mark, no line end", "[S]\nk=1\x1a", "S", "k", "1"},
        {"UTF-8 mark before the first header", "\xEF\xBB\xBF[S]\nk=1\n", "S", "k", "1"},
        {"carriage returns only", "[S]\rk=1\r", "S", "k", "1"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(lookupProfileString(c.content, c.section, c.key, "dflt"), c.expected) << c.what;
    EXPECT_EQ(lookupProfileString("", "S", "k", "  a b  "), "  a b") << "the default loses trailing blanks only";
    // Cut to the caller's buffer, which holds the NUL too: no room, cut, just fitting (that nothing
    // ever passes the buffer is the profile fuzz target's).
    for (const auto& [maxChars, expected] : {std::pair<std::size_t, const char*>{0, ""}, {3, "ab"}, {6, "abcde"}})
        EXPECT_EQ(lookupProfileString("[S]\nk=abcde\n", "S", "k", "", maxChars), expected) << maxChars;
    EXPECT_EQ(lookupProfileString("", "S", "k", "abcde", 3), "ab") << "the default is cut the same way";
}

}  // namespace
}  // namespace braxcfg::platform
