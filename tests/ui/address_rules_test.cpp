#include "dialogs/address_rules.h"

#include <gtest/gtest.h>

namespace braxcfg::dialogs {
namespace {

constexpr const char* kAccepted = "";

TEST(AddressRules, FirstFailingRuleDecides) {
    struct Case {
        const char* address;
        const char* message;  // kAccepted: no message
    };
    const Case cases[] = {
        {"24", kAccepted},
        {"0", kAccepted},
        {"30", kAccepted},
        {"24::8", kAccepted},
        {"10::0", kAccepted},     // nothing follows the 0
        {"::24", kAccepted},      // no number needed before a pair
        {"24::8::3", kAccepted},  // any number of pairs
        {"1::2::3::4", kAccepted},

        {"24 5", "Only the digits 0-9 and a colon (:) may be specified."},
        {"24a", "Only the digits 0-9 and a colon (:) may be specified."},
        {"-1", "Only the digits 0-9 and a colon (:) may be specified."},
        {" 24", "Only the digits 0-9 and a colon (:) may be specified."},
        {"24\xc3\xa9", "Only the digits 0-9 and a colon (:) may be specified."},
        {"0a", "Only the digits 0-9 and a colon (:) may be specified."},  // rule 1 before rule 3

        {"", "Device name must not be empty."},

        {"024", "Leading zeros (0) are not allowed in numbers."},
        {"00", "Leading zeros (0) are not allowed in numbers."},
        {"24::08", "Leading zeros (0) are not allowed in numbers."},
        {"24::0:", "Leading zeros (0) are not allowed in numbers."},  // before the last-character rule
        {"0::5", kAccepted},                                          // "0" then a colon is no leading zero
        {":05", "Leading zeros (0) are not allowed in numbers."},
        {"24::0::5", "Leading zeros (0) are not allowed in numbers."},  // a 0 secondary must come last
        {"1::2::05", "Leading zeros (0) are not allowed in numbers."},

        {"0:", "Device name must end with a number."},  // not the leading-zero rule
        {"24::", "Device name must end with a number."},
        {":", "Device name must end with a number."},

        {"24:5", "Use :: instead of :"},
        {":5", "Use :: instead of :"},
        {"24::5:6", "Use :: instead of :"},
        {"24:::5", "Use :: instead of :::"},
        {"24::::5", "Use :: instead of :::"},
        // The character after a pair is skipped by the walk; it is never a
        // colon, since the pair check has just looked at it.
        {"1::2:3", "Use :: instead of :"},
    };
    for (const Case& c : cases) {
        const auto result = checkDeviceAddress(c.address);
        if (*c.message == '\0')
            EXPECT_FALSE(result.has_value()) << "\"" << c.address << "\" refused: " << result.value_or("");
        else
            EXPECT_EQ(result.value_or("<accepted>"), c.message) << "\"" << c.address << "\"";
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
