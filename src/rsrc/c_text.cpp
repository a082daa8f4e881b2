#include "rsrc/c_text.h"

#include <climits>
#include <cstring>

namespace braxcfg::rsrc::ctext {
namespace {

// Value of c as a digit of bases up to 36, or 36 when it is none.
int digitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'z') return c - 'a' + 10;
    if (c >= 'A' && c <= 'Z') return c - 'A' + 10;
    return 36;
}

// One "%d" conversion: white space, sign, at least one decimal digit.
bool scanInt(const char*& cursor, int& value) {
    const char* p = cursor;
    while (isSpace(*p)) ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') negative = *p++ == '-';
    if (!isDigit(*p)) return false;
    std::int64_t magnitude = 0;
    for (; isDigit(*p); ++p) {
        if (magnitude <= INT_MAX) magnitude = magnitude * 10 + (*p - '0');
    }
    const std::int64_t signedValue = negative ? -magnitude : magnitude;
    value = static_cast<int>(signedValue < INT_MIN ? INT_MIN : (signedValue > INT_MAX ? INT_MAX : signedValue));
    cursor = p;
    return true;
}

}  // namespace

bool equalsIgnoreCase(const char* a, const char* b) {
    for (; *a != '\0' && *b != '\0'; ++a, ++b)
        if (toUpper(*a) != toUpper(*b)) return false;
    return *a == *b;
}

std::uint32_t toUnsigned32(const char* text, const char** end, int base) {
    const char* p = text;
    while (isSpace(*p)) ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') negative = *p++ == '-';
    if (base == 16 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X') && digitValue(p[2]) < 16) p += 2;
    const char* digits = p;
    std::uint64_t magnitude = 0;
    bool overflow = false;
    for (int digit; (digit = digitValue(*p)) < base; ++p) {
        magnitude = magnitude * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        if (magnitude > UINT32_MAX) {
            overflow = true;
            magnitude = UINT32_MAX;
        }
    }
    if (p == digits) {
        if (end != nullptr) *end = text;
        return 0;
    }
    if (end != nullptr) *end = p;
    if (overflow) return UINT32_MAX;
    const auto value = static_cast<std::uint32_t>(magnitude);
    return negative ? 0u - value : value;
}

int scanBusDeviceFunction(const char* text, int& bus, int& device, int& function) {
    const char* p = text;
    if (!scanInt(p, bus)) return 0;
    if (*p != '-') return 1;
    ++p;
    if (!scanInt(p, device)) return 1;
    if (*p != '.') return 2;
    ++p;
    return scanInt(p, function) ? 3 : 2;
}

void trimBlanks(char* text) {
    const std::size_t length = std::strlen(text);
    std::size_t first = 0;
    while (first < length && text[first] == ' ') ++first;
    std::size_t last = length;
    while (last > first && text[last - 1] == ' ') --last;
    if (first > 0) std::memmove(text, text + first, last - first);
    text[last - first] = '\0';
}

std::size_t percentCollapsedLength(const char* text, std::size_t length) {
    std::size_t collapsed = 0;
    for (std::size_t i = 0; i < length; ++i, ++collapsed)
        if (text[i] == '%' && i + 1 < length && text[i + 1] == '%') ++i;
    return collapsed;
}

void copyPercentCollapsed(const char* text, std::size_t length, char* to) {
    for (std::size_t i = 0; i < length; ++i) {
        *to++ = text[i];
        if (text[i] == '%' && i + 1 < length && text[i + 1] == '%') ++i;
    }
    *to = '\0';
}

void copyBounded(char* to, const char* from, std::size_t limit) {
    const std::size_t n = strnlen(from, limit);
    std::memcpy(to, from, n);
    to[n] = '\0';
}

}  // namespace braxcfg::rsrc::ctext
