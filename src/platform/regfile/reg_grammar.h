#pragma once
// Words of the .reg text format that the reader and the writer share.
#include <string_view>

#include "platform/reg_types.h"

namespace braxcfg::platform::regfile {

inline constexpr std::string_view kRegedit4Header = "REGEDIT4";
inline constexpr std::string_view kVersion5Header = "Windows Registry Editor Version 5.00";

constexpr bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

constexpr unsigned hexDigitValue(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
    return static_cast<unsigned>(c - 'A' + 10);
}

}  // namespace braxcfg::platform::regfile
