// .reg writing: the exact text of each value form, the 77-column hex wrap,
// and that whatever is written reads back as the same value.
#include <gtest/gtest.h>

#include <algorithm>
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

// The round-trip fixture pins the common forms; these are the rest. line:
// the form written with CR LF line ends, where a row pins it.
TEST(RegWriter, EachValueFormIsWrittenAsShownAndReadsBackUnchanged) {
    std::string everyByte = bytesUpTo(256).substr(1);
    const struct { std::string name; RegType type; std::string bytes, line; } values[] = {
        {"n", kRegSz, "a\0b\0"s, "\"n\"=hex(1):61,00,00,00,62,00,00,00"},
        {"u", kRegSz, "unterminated",
         "\"u\"=hex(1):75,00,6e,00,74,00,65,00,72,00,6d,00,69,00,6e,00,61,00,74,00,65,00,\\\r\n  64,00"},
        {"", kRegSz, "", "@=hex(1):"},
        {"q\"\\", kRegSz, "C:\\x \"y\"\r\n\0"s, "\"q\\\"\\\\\"=\"C:\\\\x \\\"y\\\"\\r\\n\""},
        {"w", kRegDword, "\x1f\xbe\xad\x0e"s, "\"w\"=dword:0eadbe1f"},
        {"t", 0xABCD, "\x0a\xff"s, "\"t\"=hex(abcd):0a,ff"},
        {"x", kRegExpandSz, "A\x80\0"s, "\"x\"=hex(2):41,00,ac,20,00,00"},
        {"all \"bytes\" \\ \r\n", kRegSz, everyByte + '\0', ""},
        {"wide", kRegDword, bytesUpTo(8), ""},
        {"b", kRegBinary, bytesUpTo(256), ""},
        {"e", kRegBinary, "", ""},
        {"x", kRegExpandSz, everyByte + '\0', ""},
        {"m", kRegMultiSz, "a\0\x81\x9d\xff\0\0"s, ""},
        {"x unterminated", kRegExpandSz, "%P%", ""},
    };
    for (const auto& v : values)
        EXPECT_EQ(v.line.empty() ? "" : formatRegValue(v.name, v.type, v.bytes, "\r\n"), v.line);
    for (const RegTextEncoding encoding : {RegTextEncoding::Utf16, RegTextEncoding::Utf8}) {
        RegWriter writer(encoding);
        writer.key("K");
        for (const auto& v : values) writer.value(v.name, v.type, v.bytes);
        const RegParseResult parsed = parseRegFile(writer.finish());
        ASSERT_FALSE(parsed.error) << describe(*parsed.error);
        ASSERT_EQ(parsed.ops.size(), std::size(values) + 1);
        for (std::size_t i = 0; i < std::size(values); ++i) {
            EXPECT_EQ(parsed.ops[i + 1].name, values[i].name);
            EXPECT_EQ(parsed.ops[i + 1].type, values[i].type) << values[i].name;
            EXPECT_EQ(parsed.ops[i + 1].data, values[i].bytes) << values[i].name;
        }
    }
}

TEST(RegWriter, WrapsHexOnceALineReaches77Characters) {
    // name: sets where the first line's count starts.
    const struct { std::string name; int bytes; std::vector<std::size_t> perLine; } cases[] = {
        {"Long", 80, {22, 25, 25, 8}},  // "Long"=hex: is 11 characters: 11 + 22 * 3 = 77 wraps at once
        {"Lon", 49, {23, 25, 1}},       // 10: 22 bytes reach 76, the 23rd reaches 79
        {"", 24, {24}},                 // @=hex: is 6: the 24th byte is the last, so no comma and no wrap
        {"", 25, {24, 1}},
    };
    for (const auto& c : cases) {
        const std::string text = formatRegValue(c.name, kRegBinary, bytesUpTo(c.bytes), "\r\n");
        std::vector<std::size_t> perLine;
        for (std::size_t start = text.find(':') + 1;;) {
            const std::size_t end = text.find("\\\r\n  ", start);
            perLine.push_back((std::min(end, text.size()) - start + 1) / 3);
            if (end == std::string::npos) break;
            start = end + 5;
        }
        EXPECT_EQ(perLine, c.perLine) << text;
    }
}

}  // namespace
}  // namespace braxcfg::platform::regfile
