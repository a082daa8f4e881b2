#pragma once
// Reading .reg text into the list of store operations it asks for, in
// file order: the parser's output and the importer's input.
//
// The reader is strict where a lenient one would lose data silently: the
// first line that breaks a rule below stops the parse with its line number
// and no operation is returned, so an import either applies the whole file
// or nothing.
//
// Accepted:
// - line 1 (after blanks, trailing blanks allowed): "REGEDIT4" or
//   "Windows Registry Editor Version 5.00";
// - LF, CRLF and CR line ends; blank lines; lines starting (after blanks)
//   with ";" or "#" are comments;
// - [HKEY_LOCAL_MACHINE\path] and [-HKEY_LOCAL_MACHINE\path]; the root word
//   in any case; the name runs to the LAST "]" of the line, so "]" may be
//   part of a key name; key names take no escapes; runs of "\" count as one;
// - "name"=data, @=data and ""=data (both the default value), "name"=-;
//   blanks around "="; names and strings take the escapes \\ \" \n \r;
// - data "text" (one line), dword: with 1 to 8 hex digits, hex: and hex(N):
//   (N 1 to 8 hex digits) with bytes of 1 or 2 hex digits, blanks around
//   commas, a trailing comma, an empty list; a "\" after a comma (or right
//   after the colon) continues the list on the next line that is neither
//   blank nor a ";" comment;
// - after data, a key line or "=-": only blanks or a ";" comment.
//
// Errors (each reported at the line where it stands):
// - a missing, unknown or Windows 3.1 ("REGEDIT") header;
// - a NUL character anywhere, or text the encoding rules of reg_decode.h
//   reject;
// - any other line that is not blank, a comment, a key line or a value
//   line ("#" or other junk after data included);
// - a key line without "]", with an unknown root, with a root other than
//   HKEY_LOCAL_MACHINE (the only one stored), with a key name longer than
//   255 characters, or deleting the root itself;
// - a value line before any key line, or after a [-key] line with no key
//   line between them;
// - a name or string without its closing quote, an unknown escape or \0,
//   a value name longer than 16383 characters, no "=" after the name;
// - an unknown data type ("DWORD:", "0x10", "str:"), dword: with no digits
//   or more than 8, "0x" in a number, hex(N) without a number or ")";
// - a hex byte of 3 or more digits, a non-hex character, two bytes without
//   a comma, a "\" not preceded by a comma, a continuation line that does
//   not start with a hex digit, the file ending where a continuation should
//   be (reported at the line with the "\");
// - hex(1), hex(2) or hex(7) after the version 5.00 header whose bytes are
//   not UTF-16LE text of the store's code page (odd length included).
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/reg_types.h"
#include "platform/regfile/reg_format.h"

namespace braxcfg::platform::regfile {

// The header line decides how hex(1), hex(2) and hex(7) bytes are read:
// narrow text after REGEDIT4, UTF-16LE after the version 5.00 header,
// whatever encoding the file itself is in.
enum class RegVersion { Regedit4, Version5 };

enum class RegOpKind {
    CreateKey,    // [path]: the key and its missing parents
    DeleteKey,    // [-path]: the key with its whole subtree; a missing key is fine
    SetValue,     // "name"=data or @=data, below the last [path]
    DeleteValue,  // "name"=-, below the last [path]; a missing value is fine
};

struct RegOp {
    RegOpKind kind = RegOpKind::CreateKey;
    int line = 0;         // line of the file the operation starts on, from 1
    std::string keyPath;  // below HKEY_LOCAL_MACHINE, one "\" between names; empty is the root
    std::string name;     // value name; empty is the default value
    RegType type = kRegNone;
    std::string data;     // value bytes as the store keeps them (REG_SZ with its NUL)
};

struct RegParseResult {
    RegVersion version = RegVersion::Version5;
    std::vector<RegOp> ops;         // empty when error is set
    std::optional<RegError> error;
};

// Parses text already in the store's narrow code page.
RegParseResult parseRegText(std::string_view narrowText);

// Decodes the bytes of a file (see reg_decode.h) and parses them.
RegParseResult parseRegFile(std::string_view bytes);

}  // namespace braxcfg::platform::regfile
