// .reg writing: the exact text of each value form and that whatever is
// written reads back as the same value. The 77-column hex wrap is the "u"
// row's (a first line reaching 77 characters) and the tool's byte-exact
// round trip of the fixture files (continued and last lines).
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

}  // namespace
}  // namespace braxcfg::platform::regfile
