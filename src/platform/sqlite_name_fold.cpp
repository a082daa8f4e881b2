#include "platform/sqlite_name_fold.h"

#include <array>
#include <cstdint>

namespace braxcfg::platform {
namespace {

// cp1252 bytes 0x80-0x9F as UTF-16; the five unassigned bytes map to the C1
// control of the same number, as the system's code page conversion does.
constexpr std::array<std::uint16_t, 32> kCp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr std::uint16_t toUtf16(std::uint8_t byte) {
    return byte >= 0x80 && byte <= 0x9F ? kCp1252High[byte - 0x80] : byte;
}

// Simple one-to-one upper-casing of the characters cp1252 can hold; no
// locale rules and no multi-character folds (sharp s stays itself).
constexpr std::uint16_t upcase(std::uint16_t unit) {
    if (unit >= 'a' && unit <= 'z') return unit - 0x20;
    if (unit >= 0xE0 && unit <= 0xFE && unit != 0xF7) return unit - 0x20;
    switch (unit) {
        case 0x00B5: return 0x039C;  // micro sign
        case 0x00FF: return 0x0178;  // y diaeresis
        case 0x0153: return 0x0152;  // oe
        case 0x0161: return 0x0160;  // s caron
        case 0x017E: return 0x017D;  // z caron
        case 0x0192: return 0x0191;  // f hook
        default: return unit;
    }
}

constexpr std::array<std::uint16_t, 256> makeFoldTable() {
    std::array<std::uint16_t, 256> table{};
    for (int byte = 0; byte < 256; ++byte) table[byte] = upcase(toUtf16(static_cast<std::uint8_t>(byte)));
    return table;
}

constexpr std::array<std::uint16_t, 256> kFoldTable = makeFoldTable();

}  // namespace

std::string foldName(std::string_view name) {
    std::string folded;
    folded.reserve(name.size() * 2);
    for (const char c : name) {
        const std::uint16_t unit = kFoldTable[static_cast<std::uint8_t>(c)];
        folded.push_back(static_cast<char>(unit >> 8));
        folded.push_back(static_cast<char>(unit & 0xFF));
    }
    return folded;
}

}  // namespace braxcfg::platform
