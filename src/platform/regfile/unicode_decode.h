#pragma once
// Reading UTF-16LE and UTF-8 bytes strictly: a malformed sequence is
// reported, never replaced.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace braxcfg::platform::regfile {

enum class UnicodeForm { Utf16Le, Utf8 };

// The code point starting at bytes[pos], advancing pos past it; nothing
// (pos unchanged) for a truncated or malformed sequence, an unpaired
// surrogate, an overlong UTF-8 form or a value above U+10FFFF.
std::optional<char32_t> nextCodePoint(std::string_view bytes, std::size_t& pos, UnicodeForm form);

// Converts Unicode bytes to the store's narrow code page, appending to
// `out`. Stops at the first malformed sequence or character the code page
// lacks and returns what is wrong; `out` then holds the text before it.
std::optional<std::string> appendNarrow(std::string_view bytes, UnicodeForm form, std::string& out);

}  // namespace braxcfg::platform::regfile
