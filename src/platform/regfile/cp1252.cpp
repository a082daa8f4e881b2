#include "platform/regfile/cp1252.h"

#include <array>

namespace braxcfg::platform::regfile {
namespace {

// Bytes 80..9F; the undefined ones map to themselves.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

void appendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        // Every cp1252 character lies in the BMP.
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

}  // namespace

char32_t cp1252ToUnicode(unsigned char byte) {
    if (byte >= 0x80 && byte < 0xA0) return kHighControls[byte - 0x80];
    return byte;
}

std::optional<unsigned char> unicodeToCp1252(char32_t codePoint) {
    if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF))
        return static_cast<unsigned char>(codePoint);
    for (std::size_t i = 0; i < kHighControls.size(); ++i)
        if (kHighControls[i] == codePoint) return static_cast<unsigned char>(0x80 + i);
    return std::nullopt;
}

std::string cp1252ToUtf16Le(std::string_view narrow) {
    std::string out;
    out.reserve(narrow.size() * 2);
    for (const char c : narrow) {
        const char32_t cp = cp1252ToUnicode(static_cast<unsigned char>(c));
        out += static_cast<char>(cp & 0xFF);
        out += static_cast<char>(cp >> 8);
    }
    return out;
}

std::string cp1252ToUtf8(std::string_view narrow) {
    std::string out;
    out.reserve(narrow.size());
    for (const char c : narrow) appendUtf8(out, cp1252ToUnicode(static_cast<unsigned char>(c)));
    return out;
}

}  // namespace braxcfg::platform::regfile
