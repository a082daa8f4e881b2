#pragma once
// The identification texts and numbers of the VISA information block.
#include <cstdint>
#include <ctime>
#include <string>

namespace braxcfg::store {

// A version in the VISA encoding: major in the top twelve bits, minor in
// the next twelve, sub-minor in the low eight.
std::uint32_t visaVersionNumber(std::uint32_t major, std::uint32_t minor, std::uint32_t subMinor);

// "Copyright", the copyright sign (cp1252), the company and the years.
std::string copyrightLine();

// `when` in local time as the 24 characters "Tue Mar 04 09:15:27 2008"
// (day of the month with two digits), without a line end.
std::string ctimeText(std::time_t when);

}  // namespace braxcfg::store
