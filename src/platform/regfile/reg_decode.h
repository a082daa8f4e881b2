#pragma once
// From the bytes of a .reg file to the store's narrow (Windows-1252) text.
//
// The encoding is decided once, from the start of the file:
// - FF FE: UTF-16LE, as a version 5.00 export is written;
// - EF BB BF: UTF-8;
// - otherwise a first line "Windows Registry Editor Version 5.00" means
//   UTF-8 (plain ASCII included), and anything else means narrow bytes
//   taken as they are (REGEDIT4 text is already in the store's code page).
// A malformed sequence, or a character the code page lacks, is an error on
// the line where it stands; nothing is replaced or dropped.
#include <optional>
#include <string>
#include <string_view>

#include "platform/regfile/reg_format.h"

namespace braxcfg::platform::regfile {

struct NarrowRegText {
    std::string text;
    std::optional<RegError> error;
};

NarrowRegText decodeRegFile(std::string_view bytes);

}  // namespace braxcfg::platform::regfile
