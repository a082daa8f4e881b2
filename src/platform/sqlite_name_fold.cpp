#include "platform/sqlite_name_fold.h"

#include <array>
#include <cstdint>

#include "platform/cp1252.h"

namespace braxcfg::platform {
namespace {

// Simple one-to-one upper-casing of the characters cp1252 can hold, as the
// Windows upper-case table has it: no locale rules, no multi-character
// folds (sharp s stays itself), and no mapping for the micro sign, which
// therefore stays itself too.
constexpr std::uint16_t upcase(std::uint16_t unit) {
    if (unit >= 'a' && unit <= 'z') return unit - 0x20;
    if (unit >= 0xE0 && unit <= 0xFE && unit != 0xF7) return unit - 0x20;
    switch (unit) {
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
    for (int byte = 0; byte < 256; ++byte) table[byte] = upcase(static_cast<std::uint16_t>(cp1252ToUnicode(static_cast<unsigned char>(byte))));
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
