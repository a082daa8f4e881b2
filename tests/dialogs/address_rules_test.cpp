#include "dialogs/address_rules.h"

#include <gtest/gtest.h>

namespace braxcfg::dialogs {
namespace {

TEST(AddressRules, FirstFailingRuleDecides) {
    const std::string chars = "Only the digits 0-9 and a colon (:) may be specified.";
    const std::string zero = "Leading zeros (0) are not allowed in numbers.";
    const std::string end = "Device name must end with a number.";
    const std::pair<const char*, std::string> cases[] = {  // "": accepted
        {"24", ""}, {"0", ""}, {"24::8", ""}, {"24::8::3", ""}, {"::24", ""},
        {"10::0", ""}, {"0::5", ""},  // a 0 with nothing or a colon after it is no leading zero
        {"24 5", chars}, {"-1", chars}, {"24\xc3\xa9", chars}, {"0a", chars},  // the character rule comes first
        {"", "Device name must not be empty."},
        {"024", zero}, {"24::08", zero}, {"24::0::5", zero},
        {":05", zero}, {"24::0:", zero},  // before the colon and final-number rules
        {"0:", end}, {"24::", end}, {":", end},  // ":" before the colon walk
        {"24:5", "Use :: instead of :"}, {"24::5:6", "Use :: instead of :"}, {"24:::5", "Use :: instead of :::"},
    };
    for (const auto& [address, message] : cases)
        EXPECT_EQ(checkDeviceAddress(address).value_or(""), message) << '"' << address << '"';
}

}  // namespace
}  // namespace braxcfg::dialogs
