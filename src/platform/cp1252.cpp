#include "platform/cp1252.h"

#include <cstdio>

namespace braxcfg::platform {
namespace {

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

bool isHighSurrogate(char32_t u) { return u >= 0xD800 && u < 0xDC00; }
bool isLowSurrogate(char32_t u) { return u >= 0xDC00 && u < 0xE000; }

std::optional<char32_t> utf16Unit(std::string_view bytes, std::size_t pos) {
    if (pos + 2 > bytes.size()) return std::nullopt;
    return static_cast<char32_t>(static_cast<unsigned char>(bytes[pos]) |
                                 (static_cast<unsigned char>(bytes[pos + 1]) << 8));
}

std::optional<char32_t> nextUtf16(std::string_view bytes, std::size_t& pos) {
    const auto first = utf16Unit(bytes, pos);
    if (!first || isLowSurrogate(*first)) return std::nullopt;
    if (!isHighSurrogate(*first)) {
        pos += 2;
        return first;
    }
    const auto second = utf16Unit(bytes, pos + 2);
    if (!second || !isLowSurrogate(*second)) return std::nullopt;
    pos += 4;
    return 0x10000 + ((*first - 0xD800) << 10) + (*second - 0xDC00);
}

std::optional<char32_t> nextUtf8(std::string_view bytes, std::size_t& pos) {
    const auto lead = static_cast<unsigned char>(bytes[pos]);
    std::size_t length = 0;
    char32_t cp = 0;
    char32_t smallest = 0;
    if (lead < 0x80) {
        ++pos;
        return lead;
    } else if ((lead & 0xE0) == 0xC0) {
        length = 2, cp = lead & 0x1F, smallest = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, cp = lead & 0x0F, smallest = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, cp = lead & 0x07, smallest = 0x10000;
    } else {
        return std::nullopt;
    }
    if (pos + length > bytes.size()) return std::nullopt;
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(bytes[pos + i]);
        if ((next & 0xC0) != 0x80) return std::nullopt;
        cp = (cp << 6) | (next & 0x3F);
    }
    if (cp < smallest || cp > 0x10FFFF || isHighSurrogate(cp) || isLowSurrogate(cp)) return std::nullopt;
    pos += length;
    return cp;
}

}  // namespace

std::optional<unsigned char> unicodeToCp1252(char32_t codePoint) {
    if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF))
        return static_cast<unsigned char>(codePoint);
    for (std::size_t i = 0; i < cp1252_detail::kHigh.size(); ++i)
        if (cp1252_detail::kHigh[i] == codePoint) return static_cast<unsigned char>(0x80 + i);
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

std::optional<char32_t> nextCodePoint(std::string_view bytes, std::size_t& pos, UnicodeForm form) {
    if (pos >= bytes.size()) return std::nullopt;
    return form == UnicodeForm::Utf16Le ? nextUtf16(bytes, pos) : nextUtf8(bytes, pos);
}

std::optional<std::string> appendNarrow(std::string_view bytes, UnicodeForm form, std::string& out) {
    for (std::size_t pos = 0; pos < bytes.size();) {
        const auto cp = nextCodePoint(bytes, pos, form);
        if (!cp) return form == UnicodeForm::Utf16Le ? "the text is not valid UTF-16LE" : "the text is not valid UTF-8";
        const auto byte = unicodeToCp1252(*cp);
        if (!byte) {
            char name[16];
            std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(*cp));
            return std::string("character ") + name + " is not in the Windows-1252 code page of the store";
        }
        out += static_cast<char>(*byte);
    }
    return std::nullopt;
}

}  // namespace braxcfg::platform
