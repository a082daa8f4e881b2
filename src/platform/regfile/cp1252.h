#pragma once
// The narrow code page of the store. Every key name, value name and string
// the store holds is Windows-1252 text; .reg files in Unicode are converted
// to it on import and from it on export.
//
// The five bytes the code page leaves undefined (81, 8D, 8F, 90, 9D) map to
// the C1 controls of the same number, as the Windows conversion does, so
// every byte string survives a trip through Unicode unchanged.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace braxcfg::platform::regfile {

char32_t cp1252ToUnicode(unsigned char byte);
// The byte for a code point, or nothing when the code page lacks it.
std::optional<unsigned char> unicodeToCp1252(char32_t codePoint);

// Narrow text to UTF-16LE (no BOM) and to UTF-8; both are lossless.
std::string cp1252ToUtf16Le(std::string_view narrow);
std::string cp1252ToUtf8(std::string_view narrow);

}  // namespace braxcfg::platform::regfile
