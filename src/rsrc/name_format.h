#pragma once
// Bounded formatted printing for the resource names, as snprintf would do
// it, for the few conversions the names use: %s, %d, %u and %04X. Names are
// built for every string parsed, and the general printf machinery costs
// more than all the rest of a parse.
#include <cstdint>

namespace braxcfg::rsrc {

// Writes at most size - 1 characters and a terminator (nothing when size
// is 0). Any other conversion is copied as text.
void formatName(char* target, std::uint32_t size, const char* format, ...) __attribute__((format(printf, 3, 4)));

}  // namespace braxcfg::rsrc
