// .reg reading: what each accepted line asks of the store, and the line
// number and reason for each rejected one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/regfile/reg_parser.h"

namespace braxcfg::platform::regfile {
namespace {

const std::string kR4 = "REGEDIT4\r\n";
const std::string kV5 = "Windows Registry Editor Version 5.00\r\n";
const std::string kKeyA = "[HKEY_LOCAL_MACHINE\\A]\r\n";

std::string hex(const std::string& bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out;
    for (const unsigned char c : bytes) {
        out += kDigits[c >> 4];
        out += kDigits[c & 0x0F];
    }
    return out;
}

// One operation as a line: "key A", "-key A", "-value A|n", "value A|n|type|bytes".
std::string summary(const RegOp& op) {
    switch (op.kind) {
        case RegOpKind::CreateKey:
            return "key " + op.keyPath;
        case RegOpKind::DeleteKey:
            return "-key " + op.keyPath;
        case RegOpKind::DeleteValue:
            return "-value " + op.keyPath + "|" + op.name;
        case RegOpKind::SetValue:
            return "value " + op.keyPath + "|" + op.name + "|" + std::to_string(op.type) + "|" + hex(op.data);
    }
    return "?";
}

std::vector<std::string> summaries(const RegParseResult& result) {
    std::vector<std::string> out;
    for (const RegOp& op : result.ops) out.push_back(summary(op));
    return out;
}

struct GoodCase {
    const char* label;
    std::string text;
    std::vector<std::string> ops;
};

TEST(RegParser, AcceptedFilesGiveTheirOperations) {
    const std::vector<GoodCase> cases = {
        {"basic types", kR4 + kKeyA + "\"s\"=\"abc\"\r\n@=\"d\"\r\n\"w\"=dword:0000001f\r\n\"b\"=hex:01,ff\r\n",
         {"key A", "value A|s|1|61626300", "value A||1|6400", "value A|w|4|1f000000", "value A|b|3|01ff"}},
        {"root in any case, runs of backslashes collapse", kR4 + "[hkey_local_machine\\\\A\\\\B\\]\r\n",
         {"key A\\B"}},
        {"the bare root", kR4 + "[HKEY_LOCAL_MACHINE]\r\n", {"key "}},
        {"key name runs to the last ]; quotes are literal", kR4 + "[HKEY_LOCAL_MACHINE\\a]b\"c] ;note\r\n",
         {"key a]b\"c"}},
        {"a ] inside a trailing comment becomes part of the name", kR4 + "[HKEY_LOCAL_MACHINE\\a] ;x]\r\n",
         {"key a] ;x"}},
        {"blanks before ] belong to the name", kR4 + "[HKEY_LOCAL_MACHINE\\a ]\r\n", {"key a "}},
        {"key and value deletion", kR4 + kKeyA + "\"x\"=- ;gone\r\n[-HKEY_LOCAL_MACHINE\\A\\B]\r\n",
         {"key A", "-value A|x", "-key A\\B"}},
        {"escapes in names and strings", kR4 + kKeyA + "\"a\\\\b\\\"c\"=\"l1\\nl2\\r\"\r\n",
         {"key A", "value A|a\\b\"c|1|6c310a6c320d00"}},
        {"empty quoted name is the default value", kR4 + kKeyA + "\"\"=\"d\"\r\n", {"key A", "value A||1|6400"}},
        {"blanks around = and before a comment", kR4 + kKeyA + "  \"n\"  =  \"v\"  ; c\r\n@ = dword: 1 \r\n",
         {"key A", "value A|n|1|7600", "value A||4|01000000"}},
        {"comments, # lines and blank lines", kR4 + "; c\r\n# c\r\n\r\n \t\r\n" + kKeyA, {"key A"}},
        {"dword upper case digits, comment right after", kR4 + kKeyA + "\"w\"=dword:FFFFFFFE;c\r\n",
         {"key A", "value A|w|4|feffffff"}},
        {"empty hex lists and any type number", kR4 + kKeyA + "\"e\"=hex:\r\n\"n\"=hex(0):\r\n\"t\"=hex(ffffffff):1\r\n",
         {"key A", "value A|e|3|", "value A|n|0|", "value A|t|4294967295|01"}},
        {"one-digit bytes and blanks around commas", kR4 + kKeyA + "\"b\"=hex: 1 , a ,ff,\r\n",
         {"key A", "value A|b|3|010aff"}},
        {"continuation over blank and ; lines, after the colon",
         kR4 + kKeyA + "\"b\"=hex:\\\r\n  01,02,\\ ;more\r\n\r\n; note\r\n  03\r\n\"c\"=hex:04\r\n",
         {"key A", "value A|b|3|010203", "value A|c|3|04"}},
        {"REGEDIT4 text hex gains one NUL", kR4 + kKeyA + "\"x\"=hex(2):41,42\r\n\"m\"=hex(7):41,00,00\r\n",
         {"key A", "value A|x|2|414200", "value A|m|7|410000"}},
        {"version 5 text hex is UTF-16LE", kV5 + kKeyA + "\"x\"=hex(2):41,00,e9,00,ac,20\r\n\"e\"=hex(7):\r\n",
         {"key A", "value A|x|2|41e98000", "value A|e|7|"}},
        {"hex(1) is a string", kV5 + kKeyA + "\"x\"=hex(1):41,00,00,00\r\n", {"key A", "value A|x|1|4100"}},
        {"header with blanks around it; LF line ends", "  REGEDIT4 \t\n[HKEY_LOCAL_MACHINE\\A]\n", {"key A"}},
        {"CR line ends", "REGEDIT4\r[HKEY_LOCAL_MACHINE\\A]\r\"n\"=\"v\"\r", {"key A", "value A|n|1|7600"}},
        {"key names of 255 characters", kR4 + "[HKEY_LOCAL_MACHINE\\" + std::string(255, 'k') + "]\r\n",
         {"key " + std::string(255, 'k')}},
    };
    for (const GoodCase& c : cases) {
        const RegParseResult result = parseRegText(c.text);
        ASSERT_FALSE(result.error) << c.label << ": " << describe(*result.error);
        EXPECT_EQ(summaries(result), c.ops) << c.label;
    }
}

TEST(RegParser, OperationsCarryTheLineTheyStartOn) {
    const RegParseResult result =
        parseRegText(kR4 + "\r\n" + kKeyA + "\"b\"=hex:01,\\\r\n  02\r\n\"c\"=\"x\"\r\n");
    ASSERT_FALSE(result.error);
    ASSERT_EQ(result.ops.size(), 3u);
    EXPECT_EQ(result.ops[0].line, 3);
    EXPECT_EQ(result.ops[1].line, 4);
    EXPECT_EQ(result.ops[2].line, 6);
    EXPECT_EQ(result.version, RegVersion::Regedit4);
}

struct BadCase {
    std::string text;
    int line;
    const char* reason;  // a piece of the message
};

TEST(RegParser, RejectsTheFirstMalformedLine) {
    const std::string longName(16384, 'n');
    const std::vector<BadCase> cases = {
        {"", 1, "unknown header"},
        {"regedit4\r\n", 1, "unknown header"},
        {"\r\nREGEDIT4\r\n", 1, "unknown header"},
        {"REGEDIT\r\n", 1, "3.1"},
        {kR4 + "\"a\"=\"b\"\r\n", 2, "before any [key]"},
        {kR4 + kKeyA + "[-HKEY_LOCAL_MACHINE\\B]\r\n\"a\"=\"b\"\r\n", 4, "after a [-key]"},
        {kR4 + "[HKEY_CURRENT_USER\\x]\r\n", 2, "only HKEY_LOCAL_MACHINE"},
        {kR4 + "[HKLM\\x]\r\n", 2, "unknown root key \"HKLM\""},
        {kR4 + "[ HKEY_LOCAL_MACHINE\\x]\r\n", 2, "unknown root key"},
        {kR4 + "[HKEY_LOCAL_MACHINE\\x\r\n", 2, "no closing ]"},
        {kR4 + "[HKEY_LOCAL_MACHINE\\x] junk\r\n", 2, "after the key line"},
        {kR4 + "[-HKEY_LOCAL_MACHINE\\]\r\n", 2, "root key cannot be deleted"},
        {kR4 + "[HKEY_LOCAL_MACHINE\\" + std::string(256, 'k') + "]\r\n", 2, "longer than 255"},
        {kR4 + kKeyA + "junk\r\n", 3, "unexpected text"},
        {kR4 + kKeyA + "\"a\"=\"b\r\n", 3, "string has no closing quote"},
        {kR4 + kKeyA + "\"a\"=\"b\" x\r\n", 3, "after the string"},
        {kR4 + kKeyA + "\"a\"=\"b\"#x\r\n", 3, "after the string"},
        {kR4 + kKeyA + "\"a\"=\"b\\0\"\r\n", 3, "\\0"},
        {kR4 + kKeyA + "\"a\"=\"C:\\Temp\"\r\n", 3, "unknown escape \\T"},
        {kR4 + kKeyA + "\"a=\"b\"\r\n", 3, "expected ="},
        {kR4 + kKeyA + "\"a\r\n", 3, "value name has no closing quote"},
        {kR4 + kKeyA + "@\"b\"\r\n", 3, "expected ="},
        {kR4 + kKeyA + "\"" + longName + "\"=\"v\"\r\n", 3, "longer than 16383"},
        {kR4 + kKeyA + "\"a\"=str:x\r\n", 3, "unknown data"},
        {kR4 + kKeyA + "\"a\"=\r\n", 3, "unknown data"},
        {kR4 + kKeyA + "\"a\"=-x\r\n", 3, "after =-"},
        {kR4 + kKeyA + "\"a\"=dword:\r\n", 3, "1 to 8 hex digits"},
        {kR4 + kKeyA + "\"a\"=dword:123456789\r\n", 3, "more than 8"},
        {kR4 + kKeyA + "\"a\"=dword:0x10\r\n", 3, "without 0x"},
        {kR4 + kKeyA + "\"a\"=dword:1 #x\r\n", 3, "after the dword"},
        {kR4 + kKeyA + "\"a\"=hex:100\r\n", 3, "more than two digits"},
        {kR4 + kKeyA + "\"a\"=hex:01 02\r\n", 3, "expected a comma"},
        {kR4 + kKeyA + "\"a\"=hex:,01\r\n", 3, "expected a hex byte"},
        {kR4 + kKeyA + "\"a\"=hex:01\\\r\n02\r\n", 3, "only after a comma"},
        {kR4 + kKeyA + "\"a\"=hex:01,\\ x\r\n02\r\n", 3, "after the \\"},
        {kR4 + kKeyA + "\"a\"=hex:01,\\\r\n" + kKeyA, 4, "continuing the hex list of line 3"},
        {kR4 + kKeyA + "\"a\"=hex:01,\\\r\n\r\n# c\r\n02\r\n", 5, "continuing the hex list of line 3"},
        {kR4 + kKeyA + "\"a\"=hex:01,\\\r\n  02,\\\r\n\r\n; end\r\n", 4, "file ends"},
        {kR4 + kKeyA + "\"a\"=hex:01,\\\r\n  02 03\r\n", 4, "expected a comma"},
        {kR4 + kKeyA + "\"a\"=hex():01\r\n", 3, "type number"},
        {kR4 + kKeyA + "\"a\"=hex(123456789):01\r\n", 3, "type number"},
        {kR4 + kKeyA + "\"a\"=hex(7)01\r\n", 3, "expected ):"},
        {kV5 + kKeyA + "\"a\"=hex(2):41\r\n", 3, "even number of bytes"},
        {kV5 + kKeyA + "\"a\"=hex(7):00,d8,00,00\r\n", 3, "not valid UTF-16LE"},
        {kV5 + kKeyA + "\"a\"=hex(1):00,01\r\n", 3, "U+0100"},
        {kR4 + kKeyA + std::string("\"a\"=\"b\0c\"\r\n", 11), 3, "NUL character"},
        {"REGEDIT4\r\r[HKEY_LOCAL_MACHINE\\A]\rjunk\r", 4, "unexpected text"},
        {"REGEDIT4\n\r\n\rjunk\n", 4, "unexpected text"},
    };
    for (const BadCase& c : cases) {
        const RegParseResult result = parseRegText(c.text);
        ASSERT_TRUE(result.error) << "accepted: " << c.text.substr(0, 120);
        EXPECT_EQ(result.error->line, c.line) << c.reason << " / " << describe(*result.error);
        EXPECT_NE(result.error->message.find(c.reason), std::string::npos)
            << "wanted \"" << c.reason << "\" in: " << result.error->message;
        EXPECT_TRUE(result.ops.empty()) << c.reason;
    }
}

}  // namespace
}  // namespace braxcfg::platform::regfile
