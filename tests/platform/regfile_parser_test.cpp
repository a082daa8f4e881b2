// .reg reading: which bytes become which narrow (cp1252) text, what each
// accepted line asks of the store, and the line number and reason for each
// rejected one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/regfile/reg_parser.h"

namespace braxcfg::platform::regfile {
namespace {

const std::string kR4 = "REGEDIT4\r\n";
const std::string kV5 = "Windows Registry Editor Version 5.00\r\n";
const std::string kKeyA = "[HKEY_LOCAL_MACHINE\\A]\r\n";

std::string utf16File(std::u16string_view text) {
    std::string bytes = "\xFF\xFE";
    for (const char16_t unit : text) bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    return bytes;
}

// The operations as lines: "key A", "-key A", "-value A|n", "value A|n|type|hex bytes".
std::vector<std::string> summaries(const RegParseResult& result) {
    static const char* const kKinds[] = {"key ", "-key ", "value ", "-value "};  // in RegOpKind order
    std::vector<std::string> out;
    for (const RegOp& op : result.ops) {
        std::string line = kKinds[static_cast<int>(op.kind)] + op.keyPath;
        if (op.kind == RegOpKind::DeleteValue) line += "|" + op.name;
        if (op.kind == RegOpKind::SetValue) line += "|" + op.name + "|" + std::to_string(op.type) + "|";
        for (const unsigned char c : op.data) line += {"0123456789abcdef"[c >> 4], "0123456789abcdef"[c & 15]};
        out.push_back(line);
    }
    return out;
}

// The forms the writer produces (escapes, hex(1), UTF-16LE and BOM-less
// UTF-8 files) are read back by the writer's test, which pins their text;
// the bare root and version 5.00 text hex are the tool's round trip of the
// fixture files, deletions the import test's.
TEST(RegParser, AcceptedFilesGiveTheirOperations) {
    const struct { const char* label; std::string text; std::vector<std::string> ops; } cases[] = {
        {"root in any case, runs of backslashes collapse", kR4 + "[hkey_local_machine\\\\A\\\\B\\]\r\n", {"key A\\B"}},
        {"key name runs to the last ]; quotes are literal", kR4 + "[HKEY_LOCAL_MACHINE\\a]b\"c] ;note\r\n",
         {"key a]b\"c"}},
        {"blanks before ] belong to the name", kR4 + "[HKEY_LOCAL_MACHINE\\a ]\r\n", {"key a "}},
        {"empty quoted name is the default value", kR4 + kKeyA + "\"\"=\"d\"\r\n", {"key A", "value A||1|6400"}},
        {"blanks around = and before a comment", kR4 + kKeyA + "  \"n\"  =  \"v\"  ; c\r\n@ = dword: 1 \r\n",
         {"key A", "value A|n|1|7600", "value A||4|01000000"}},
        {"comments, # lines and blank lines", kR4 + "; c\r\n# c\r\n\r\n \t\r\n" + kKeyA, {"key A"}},
        {"dword upper case digits, comment right after", kR4 + kKeyA + "\"w\"=dword:FFFFFFFE;c\r\n",
         {"key A", "value A|w|4|feffffff"}},
        {"empty hex lists, any type number", kR4 + kKeyA + "\"e\"=hex:\r\n\"n\"=hex(0):\r\n\"t\"=hex(ffffffff):1\r\n",
         {"key A", "value A|e|3|", "value A|n|0|", "value A|t|4294967295|01"}},
        {"one-digit bytes, blanks around commas", kR4 + kKeyA + "\"b\"=hex: 1 , a ,ff,\r\n",
         {"key A", "value A|b|3|010aff"}},
        {"continuation over blank and ; lines, after the colon",
         kR4 + kKeyA + "\"b\"=hex:\\\r\n  01,02,\\ ;more\r\n\r\n; note\r\n  03\r\n\"c\"=hex:04\r\n",
         {"key A", "value A|b|3|010203", "value A|c|3|04"}},
        {"text hex is taken as listed, no NUL added", kR4 + kKeyA + "\"x\"=hex(2):41,42\r\n\"m\"=hex(7):41,00,00\r\n",
         {"key A", "value A|x|2|4142", "value A|m|7|410000"}},
        {"header with blanks around it; LF line ends", "  REGEDIT4 \t\n[HKEY_LOCAL_MACHINE\\A]\n", {"key A"}},
        {"CR line ends", "REGEDIT4\r[HKEY_LOCAL_MACHINE\\A]\r\"n\"=\"v\"\r", {"key A", "value A|n|1|7600"}},
        {"key names of 255 characters", kR4 + "[HKEY_LOCAL_MACHINE\\" + std::string(255, 'k') + "]\r\n",
         {"key " + std::string(255, 'k')}},
        // Encodings: UTF-16LE and UTF-8 with BOM, ANSI bytes under REGEDIT4.
        {"a code point cp1252 leaves undefined keeps its byte", utf16File(u"REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\\u0081]"),
         {"key \x81"}},
        {"UTF-8 with BOM", "\xEF\xBB\xBFREGEDIT4\n[HKEY_LOCAL_MACHINE\\\xC3\xA9]\n", {"key \xE9"}},
        {"REGEDIT4 without BOM keeps ANSI bytes", kR4 + "[HKEY_LOCAL_MACHINE\\\xC3\xA9]\n", {"key \xC3\xA9"}},
    };
    for (const auto& c : cases) {
        const RegParseResult result = parseRegFile(c.text);
        ASSERT_FALSE(result.error) << c.label << ": " << describe(*result.error);
        EXPECT_EQ(summaries(result), c.ops) << c.label;
    }
}

// One row per refusal: the regfile fuzz target's corpus replays malformed
// files of every kind.
TEST(RegParser, RejectsTheFirstMalformedLine) {
    // reason: a piece of the message.
    const struct { std::string text; int line; const char* reason; } cases[] = {
        {"regedit4\r\n", 1, "unknown header"},
        {"REGEDIT\r\n", 1, "3.1"},
        {kR4 + "\"a\"=\"b\"\r\n", 2, "before any [key]"},
        {kR4 + kKeyA + "[-HKEY_LOCAL_MACHINE\\B]\r\n\"a\"=\"b\"\r\n", 4, "after a [-key]"},
        {kR4 + "[HKEY_CURRENT_USER\\x]\r\n", 2, "only HKEY_LOCAL_MACHINE"},
        {kR4 + "[HKLM\\x]\r\n", 2, "unknown root key \"HKLM\""},
        {kR4 + "[HKEY_LOCAL_MACHINE\\x\r\n", 2, "no closing ]"},
        {kR4 + "[HKEY_LOCAL_MACHINE\\x] junk\r\n", 2, "after the key line"},
        {kR4 + "[-HKEY_LOCAL_MACHINE\\]\r\n", 2, "root key cannot be deleted"},
        {kR4 + "[HKEY_LOCAL_MACHINE\\" + std::string(256, 'k') + "]\r\n", 2, "longer than 255"},
        {kR4 + kKeyA + "junk\r\n", 3, "unexpected text"},
        {kR4 + kKeyA + "\"a\"=\"b\r\n", 3, "string has no closing quote"},
        {kR4 + kKeyA + "\"a\"=\"b\"#x\r\n", 3, "after the string"},
        {kR4 + kKeyA + "\"a\"=\"b\\0\"\r\n", 3, "\\0"},
        {kR4 + kKeyA + "\"a\"=\"C:\\Temp\"\r\n", 3, "unknown escape \\T"},
        {kR4 + kKeyA + "\"a=\"b\"\r\n", 3, "expected ="},
        {kR4 + kKeyA + "\"a\\\r\n", 3, "value name has no closing quote"},
        {kR4 + kKeyA + "\"" + std::string(16384, 'n') + "\"=\"v\"\r\n", 3, "longer than 16383"},
        {kR4 + kKeyA + "\"a\"=str:x\r\n", 3, "unknown data"},
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
        {kR4 + kKeyA + "\"a\"=hex:01,\\\r\n  02,\\\r\n\r\n; end\r\n", 4, "file ends"},
        {kR4 + kKeyA + "\"a\"=hex():01\r\n", 3, "type number"},
        {kR4 + kKeyA + "\"a\"=hex(7)01\r\n", 3, "expected ):"},
        {kV5 + kKeyA + "\"a\"=hex(2):41\r\n", 3, "even number of bytes"},
        {kV5 + kKeyA + "\"a\"=hex(1):00,01\r\n", 3, "U+0100"},
        {kR4 + kKeyA + std::string("\"a\"=\"b\0c\"\r\n", 11), 3, "NUL character"},
        {"REGEDIT4\n\r\n\rjunk\n", 4, "unexpected text"},
        // Text the store cannot hold, or bytes not in the file's encoding.
        {utf16File(u"REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\\u0100]\r\n"), 3, "U+0100"},
        {utf16File(u"REGEDIT4\r\n\r\n") + "A", 3, "not valid UTF-16LE"},
        {kV5 + "\r\n\r\n[HKEY_LOCAL_MACHINE\\\xE9]\r\n", 4, "not valid UTF-8"},
        {"\xEF\xBB\xBFREGEDIT4\n[HKEY_LOCAL_MACHINE\\\xC0\xAF]\n", 2, "not valid UTF-8"},
    };
    for (const auto& c : cases) {
        const RegParseResult result = parseRegFile(c.text);
        ASSERT_TRUE(result.error) << "accepted: " << c.text.substr(0, 120);
        EXPECT_EQ(result.error->line, c.line) << c.reason << " / " << describe(*result.error);
        EXPECT_NE(result.error->message.find(c.reason), std::string::npos)
            << "wanted \"" << c.reason << "\" in: " << result.error->message;
        EXPECT_TRUE(result.ops.empty()) << c.reason;
    }
}

}  // namespace
}  // namespace braxcfg::platform::regfile
