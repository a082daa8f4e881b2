#pragma once
// The tool's text edge. Inside the system every string is cp1252, as the
// store keeps it; the user's side (arguments, terminal, pipes, JSON) is
// UTF-8, the locale encoding of this system. Store text is converted on
// the way out, and arguments that become store text on the way in.
#include <string>
#include <string_view>

namespace braxcfg::tool {

// An argument as system text: UTF-8 converted to cp1252. False, with a
// message naming the argument and the character, when the argument is not
// UTF-8 or holds a character cp1252 cannot ("U+4E2D").
bool toSystemText(const std::string& argument, std::string& out, std::string& error);

// System text as UTF-8 with every control character (C0, DEL and the C1
// range) except those in `keep` written as \xHH, HH being its cp1252 byte.
std::string escapedUtf8(std::string_view text, std::string_view keep = {});

// System text for standard output or standard error: UTF-8, and escaped as
// above when the stream is a terminal (a name cannot move the cursor or
// change the colours there); exactly the stored characters otherwise.
std::string forStdout(std::string_view text, std::string_view keep = {});
std::string forStderr(std::string_view text, std::string_view keep = {});

// `utf8` padded with blanks to `width` characters (not bytes), for columns.
std::string padded(std::string utf8, std::size_t width);


}  // namespace braxcfg::tool
