#pragma once
// Case folding of key and value names. Names are narrow cp1252 text; two
// names are the same when every character, upper-cased, is the same UTF-16
// code unit, and names sort by those upper-cased code units (shorter first on
// a tie). The folded form is the upper-cased UTF-16 units written big-endian,
// so that comparing folded forms byte by byte (as SQLite compares BLOBs)
// gives exactly that order.
#include <string>
#include <string_view>

namespace braxcfg::platform {

std::string foldName(std::string_view name);

}  // namespace braxcfg::platform
