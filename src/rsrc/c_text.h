#pragma once
// Character and number rules of the C locale, written out so the results
// never depend on the process locale or on the width of `long`. Resource
// strings are narrow text: bytes outside ASCII are never letters, digits
// or white space here.
#include <cstddef>
#include <cstdint>

namespace braxcfg::rsrc::ctext {

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr char toUpper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

// Case-insensitive equality of two terminated texts (ASCII letters only).
bool equalsIgnoreCase(const char* a, const char* b);

// strtoul for bases 10 and 16 as on a platform whose unsigned long has 32
// bits: leading white space and a sign are accepted ("-1" is 0xFFFFFFFF),
// base 16 takes an optional "0x"/"0X", and a magnitude above 0xFFFFFFFF
// gives 0xFFFFFFFF. *end receives the first character not converted, or
// `text` itself when no digit was found.
std::uint32_t toUnsigned32(const char* text, const char** end, int base);

// Reads a bus-device.function triple the way scanf reads "%d-%d.%d": each
// number may have leading white space and a sign, the '-' and '.' must
// follow directly. Returns how many numbers were read (0 to 3); a number
// beyond the int range is clamped to it.
int scanBusDeviceFunction(const char* text, int& bus, int& device, int& function);

// Removes blanks (' ' only) from both ends, in place.
void trimBlanks(char* text);

// Length of `text[0..length)` once every "%%" has become "%", and the copy
// itself (`to` must hold that length + 1). Any other '%' stays as it is.
std::size_t percentCollapsedLength(const char* text, std::size_t length);
void copyPercentCollapsed(const char* text, std::size_t length, char* to);

// Copies at most `limit` characters of `from` and terminates `to`
// (`to` holds limit + 1).
void copyBounded(char* to, const char* from, std::size_t limit);

}  // namespace braxcfg::rsrc::ctext
