#pragma once
// Writing .reg text in the version 5.00 layout a Windows export has:
// the header, then for every key a blank line, "[HKEY_LOCAL_MACHINE\path]"
// and one line per value, and one more line end at the very end.
//
// Values: "@=" for the default value; REG_SZ ending in its one NUL as
// "text", never wrapped (any other REG_SZ data, empty, unterminated or
// with a NUL inside, as hex(1) so that it reads back byte for byte); a
// 4-byte REG_DWORD as dword:%08x; everything else
// as hex: (REG_BINARY) or hex(t): with t in lower-case hex, the text types
// dumped as UTF-16LE. Hex bytes are lower case, comma separated, and once
// a line holds 77 characters or more after a comma it goes on after "\",
// a line end and two spaces (25 bytes per continuation line).
#include <string>
#include <string_view>

#include "platform/reg_types.h"

namespace braxcfg::platform::regfile {

enum class RegTextEncoding {
    Utf16,  // UTF-16LE with BOM and CRLF, as Windows writes and reads it
    Utf8,   // UTF-8 without BOM and LF, for a person to read, diff or edit
};

// "\\", "\"", CR and LF escaped, so any name or string reads back as it was.
std::string escapeRegString(std::string_view text);

// One value as .reg text, without the final line end; `lineEnd` goes
// inside wrapped hex data.
std::string formatRegValue(std::string_view name, RegType type, std::string_view bytes, std::string_view lineEnd);

class RegWriter {
public:
    explicit RegWriter(RegTextEncoding encoding);

    // Starts a key; relativePath is below HKEY_LOCAL_MACHINE (empty: the root).
    void key(std::string_view relativePath);
    void value(std::string_view name, RegType type, std::string_view bytes);
    // The whole file, encoded; the writer is spent afterwards.
    std::string finish();

private:
    RegTextEncoding encoding_;
    std::string_view lineEnd_;
    std::string text_;  // narrow until finish()
};

}  // namespace braxcfg::platform::regfile
