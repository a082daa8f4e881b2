// .reg file encodings: which bytes become which narrow (cp1252) names, and
// where text the store cannot hold is reported.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/regfile/reg_parser.h"

namespace braxcfg::platform::regfile {
namespace {

std::string utf16File(std::u16string_view text) {
    std::string bytes = "\xFF\xFE";
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

struct EncodingCase {
    const char* label;
    std::string bytes;
    std::string keyPath;  // of the one key line, when accepted
    int errorLine = 0;    // otherwise
    const char* reason = "";
};

TEST(RegDecode, FileBytesBecomeStoreText) {
    const std::vector<EncodingCase> cases = {
        {"UTF-16LE with BOM", utf16File(u"Windows Registry Editor Version 5.00\r\n[HKEY_LOCAL_MACHINE\\Caf\u00e9\u20ac]\r\n"),
         "Caf\xE9\x80"},
        {"UTF-16LE with the REGEDIT4 header", utf16File(u"REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\A]\r\n"), "A"},
        {"a code point the code page leaves undefined keeps its byte",
         utf16File(u"REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\\u0081]\r\n"), "\x81"},
        {"UTF-8 with BOM", "\xEF\xBB\xBFREGEDIT4\n[HKEY_LOCAL_MACHINE\\\xC3\xA9]\n", "\xE9"},
        {"version 5 header without BOM reads UTF-8",
         "Windows Registry Editor Version 5.00\n[HKEY_LOCAL_MACHINE\\\xE2\x82\xAC]\n", "\x80"},
        {"REGEDIT4 without BOM keeps ANSI bytes", "REGEDIT4\n[HKEY_LOCAL_MACHINE\\\xE9]\n", "\xE9"},
        {"REGEDIT4 without BOM does not decode UTF-8", "REGEDIT4\n[HKEY_LOCAL_MACHINE\\\xC3\xA9]\n", "\xC3\xA9"},
        {"character outside the code page",
         utf16File(u"REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\\u0100]\r\n"), "", 3, "U+0100"},
        {"character outside the BMP", utf16File(u"REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\\U0001F600]\r\n"), "", 2,
         "U+1F600"},
        {"odd number of UTF-16 bytes", utf16File(u"REGEDIT4\r\n\r\n") + "A", "", 3, "not valid UTF-16LE"},
        {"unpaired low surrogate", utf16File(u"REGEDIT4\r\n\xDC00"), "", 2, "not valid UTF-16LE"},
        {"ANSI bytes under the version 5 header",
         "Windows Registry Editor Version 5.00\r\n\r\n\r\n[HKEY_LOCAL_MACHINE\\\xE9]\r\n", "", 4,
         "not valid UTF-8"},
        {"overlong UTF-8", "\xEF\xBB\xBFREGEDIT4\n[HKEY_LOCAL_MACHINE\\\xC0\xAF]\n", "", 2, "not valid UTF-8"},
        {"UTF-8 surrogate", "\xEF\xBB\xBFREGEDIT4\n[HKEY_LOCAL_MACHINE\\\xED\xA0\x80]\n", "", 2, "not valid UTF-8"},
    };
    for (const EncodingCase& c : cases) {
        const RegParseResult result = parseRegFile(c.bytes);
        if (c.errorLine == 0) {
            ASSERT_FALSE(result.error) << c.label << ": " << describe(*result.error);
            ASSERT_EQ(result.ops.size(), 1u) << c.label;
            EXPECT_EQ(result.ops[0].keyPath, c.keyPath) << c.label;
        } else {
            ASSERT_TRUE(result.error) << c.label;
            EXPECT_EQ(result.error->line, c.errorLine) << c.label;
            EXPECT_NE(result.error->message.find(c.reason), std::string::npos) << c.label << ": " << result.error->message;
        }
    }
}

}  // namespace
}  // namespace braxcfg::platform::regfile
