// .reg writing: the exact text of each value form, the 77-column hex wrap,
// and that whatever is written reads back as the same value.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/regfile/reg_parser.h"
#include "platform/regfile/reg_writer.h"

namespace braxcfg::platform::regfile {
namespace {

using namespace std::string_literals;

std::string bytesUpTo(int count) {
    std::string bytes;
    for (int i = 0; i < count; ++i) bytes += static_cast<char>(i);
    return bytes;
}

struct ValueCase {
    std::string name;
    RegType type;
    std::string bytes;
    std::string line;
};

TEST(RegWriter, FormatsEachValueForm) {
    const std::vector<ValueCase> cases = {
        {"n", kRegSz, "abc\0"s, "\"n\"=\"abc\""},
        {"n", kRegSz, "a\0b\0"s, "\"n\"=\"a\""},
        {"n", kRegSz, "", "\"n\"=\"\""},
        {"n", kRegSz, "unterminated", "\"n\"=\"unterminated\""},
        {"q\"\\", kRegSz, "C:\\x \"y\"\r\n\0"s, "\"q\\\"\\\\\"=\"C:\\\\x \\\"y\\\"\\r\\n\""},
        {"", kRegSz, "d\0"s, "@=\"d\""},
        {"w", kRegDword, "\x1f\0\0\0"s, "\"w\"=dword:0000001f"},
        {"w", kRegDword, "\xef\xbe\xad\xde"s, "\"w\"=dword:deadbeef"},
        {"w", kRegDword, "\x01\0\0\0\0\0\0\0"s, "\"w\"=hex(4):01,00,00,00,00,00,00,00"},
        {"w", kRegDword, "", "\"w\"=hex(4):"},
        {"b", kRegBinary, "", "\"b\"=hex:"},
        {"b", kRegBinary, "\x0a\xff"s, "\"b\"=hex:0a,ff"},
        {"t", kRegNone, "\x01"s, "\"t\"=hex(0):01"},
        {"t", kRegQword, "", "\"t\"=hex(b):"},
        {"t", 0x100, "", "\"t\"=hex(100):"},
        {"t", 0xABCD, "", "\"t\"=hex(abcd):"},
        {"x", kRegExpandSz, "A\x80\0"s, "\"x\"=hex(2):41,00,ac,20,00,00"},
        {"m", kRegMultiSz, "a\0\0"s, "\"m\"=hex(7):61,00,00,00,00,00"},
    };
    for (const ValueCase& c : cases)
        EXPECT_EQ(formatRegValue(c.name, c.type, c.bytes, "\r\n"), c.line) << c.line;
}

// Splits a wrapped hex value into its lines and counts the bytes on each.
std::vector<std::size_t> bytesPerLine(const std::string& text, const std::string& lineEnd) {
    std::vector<std::size_t> counts;
    const std::string breakText = "\\" + lineEnd + "  ";
    std::size_t start = text.find(':') + 1;
    for (;;) {
        const std::size_t end = text.find(breakText, start);
        const std::string piece = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
        counts.push_back((piece.size() + 1) / 3);
        if (end == std::string::npos) return counts;
        start = end + breakText.size();
    }
}

struct WrapCase {
    std::string name;  // sets where the first line's count starts
    int bytes;
    std::vector<std::size_t> perLine;
};

TEST(RegWriter, WrapsHexOnceALineReaches77Characters) {
    const std::vector<WrapCase> cases = {
        // "Long"=hex: is 11 characters: 11 + 22 * 3 = 77 wraps at once.
        {"Long", 80, {22, 25, 25, 8}},
        // 10 characters: 22 bytes reach 76, the 23rd reaches 79.
        {"Lon", 49, {23, 25, 1}},
        // @=hex: is 6 characters: the 24th byte is the last one, so no comma
        // and no wrap; one more byte wraps after 24.
        {"", 24, {24}},
        {"", 25, {24, 1}},
    };
    for (const WrapCase& c : cases) {
        const std::string text = formatRegValue(c.name, kRegBinary, bytesUpTo(c.bytes), "\r\n");
        EXPECT_EQ(bytesPerLine(text, "\r\n"), c.perLine) << text;
    }
}

TEST(RegWriter, WrapsTextTypesAsWindowsExportsThem) {
    const std::string text = formatRegValue("ProgramFilesPath", kRegExpandSz, "%ProgramFiles%\0"s, "\r\n");
    EXPECT_EQ(text,
              "\"ProgramFilesPath\"=hex(2):25,00,50,00,72,00,6f,00,67,00,72,00,61,00,6d,00,46,\\\r\n"
              "  00,69,00,6c,00,65,00,73,00,25,00,00,00");
}

TEST(RegWriter, WhatIsWrittenReadsBackUnchanged) {
    std::string everyByte;
    for (int b = 1; b < 256; ++b) everyByte += static_cast<char>(b);
    const std::vector<ValueCase> values = {
        {"", kRegSz, "default\0"s, ""},
        {"all \"bytes\" \\ \r\n", kRegSz, everyByte + '\0', ""},
        {"w", kRegDword, "\x78\x56\x34\x12"s, ""},
        {"wide", kRegDword, bytesUpTo(8), ""},
        {"b", kRegBinary, bytesUpTo(256), ""},
        {"e", kRegBinary, "", ""},
        {"x", kRegExpandSz, everyByte + '\0', ""},
        {"m", kRegMultiSz, "a\0\x81\x9d\xff\0\0"s, ""},
        {"q", kRegQword, bytesUpTo(8), ""},
        {"odd", 0x12345678, "\x01"s, ""},
    };
    for (const RegTextEncoding encoding : {RegTextEncoding::Utf16, RegTextEncoding::Utf8}) {
        RegWriter writer(encoding);
        writer.key("K");
        for (const ValueCase& v : values) writer.value(v.name, v.type, v.bytes);
        const RegParseResult parsed = parseRegFile(writer.finish());
        ASSERT_FALSE(parsed.error) << describe(*parsed.error);
        ASSERT_EQ(parsed.ops.size(), values.size() + 1);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const RegOp& op = parsed.ops[i + 1];
            EXPECT_EQ(op.name, values[i].name);
            EXPECT_EQ(op.type, values[i].type) << values[i].name;
            EXPECT_EQ(op.data, values[i].bytes) << values[i].name;
        }
    }
}

}  // namespace
}  // namespace braxcfg::platform::regfile
