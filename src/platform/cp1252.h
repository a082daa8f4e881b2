#pragma once
// The narrow code page of the system. Every key name, value name and
// string the store holds, and every narrow string inside the system, is
// Windows-1252 text; this module is the one place that converts it, at the
// edges: .reg files, the tool's arguments and output, Qt strings.
//
// The five bytes the code page leaves undefined (81, 8D, 8F, 90, 9D) map to
// the C1 controls of the same number, as the Windows conversion does, so
// every byte string survives a trip through Unicode unchanged. Conversions
// to the code page never replace a character: one it lacks is an error.
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace braxcfg::platform {

namespace cp1252_detail {
// Bytes 80..9F; the undefined ones map to themselves.
inline constexpr std::array<char16_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
}  // namespace cp1252_detail

constexpr char32_t cp1252ToUnicode(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? cp1252_detail::kHigh[byte - 0x80] : byte;
}
// The byte for a code point, or nothing when the code page lacks it.
std::optional<unsigned char> unicodeToCp1252(char32_t codePoint);

// Narrow text to UTF-16LE bytes (no BOM) and to UTF-8; both are lossless.
std::string cp1252ToUtf16Le(std::string_view narrow);
std::string cp1252ToUtf8(std::string_view narrow);

enum class UnicodeForm { Utf16Le, Utf8 };

// The code point starting at bytes[pos], advancing pos past it; nothing
// (pos unchanged) for a truncated or malformed sequence, an unpaired
// surrogate, an overlong UTF-8 form or a value above U+10FFFF.
std::optional<char32_t> nextCodePoint(std::string_view bytes, std::size_t& pos, UnicodeForm form);

// Converts Unicode bytes to narrow text, appending to `out`. Stops at the
// first malformed sequence or character the code page lacks and returns
// what is wrong ("character U+4E2D is not in the Windows-1252 code page of
// the store"); `out` then holds the text before it.
std::optional<std::string> appendNarrow(std::string_view bytes, UnicodeForm form, std::string& out);

}  // namespace braxcfg::platform
