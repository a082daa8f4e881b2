// Numbers inside resource strings: getNumParam's rules.
#include <gtest/gtest.h>

#include "rsrc/io_parms.h"
#include "rsrc_test_support.h"

namespace braxcfg::rsrc {
namespace {

constexpr std::uint32_t kNaN = IoParms::kNotANumber;

TEST(IoParmsNumParam, DecimalOrHexWholeElementWithin32Bits) {
    const test::TempStore store;
    const struct {
        const char* input;
        int index;
        std::uint32_t expected;
    } cases[] = {
        {"GPIB0::0x1F::INSTR", 1, 31},
        {"GPIB0::010::INSTR", 1, 10},  // a leading 0 is not octal
        {"GPIB0::12abc::INSTR", 1, kNaN},
        {"GPIB0::0x1e::INSTR", 1, 30},
        {"GPIB0::0x::INSTR", 1, 0},  // nothing after the prefix is nothing left over
        {"GPIB0::0xg::INSTR", 1, kNaN},
        {"GPIB0::0x0x5::INSTR", 1, 5},
        {"GPIB0::4294967294::INSTR", 1, 0xFFFFFFFE},
        {"GPIB0::4294967296::INSTR", 1, kNaN},  // beyond 32 bits
        {"GPIB0::0x100000000::INSTR", 1, kNaN},
        {"GPIB0::-2::INSTR", 1, 0xFFFFFFFE},
        {"GPIB0::+5::INSTR", 1, 5},
        {"GPIB0:: 7::INSTR", 1, 7},
        {"GPIB0::7 ::INSTR", 1, kNaN},
        // The interface element: its digits, whatever follows them.
        {"GPIB0::7::INSTR", 0, 0},
        {"GPIB-VXI2::7::INSTR", 0, 2},
        {"GPIB12abc::INTFC", 0, 12},
        {"GPIB4294967296::INTFC", 0, kNaN},
        // The class and anything beyond it, and negative indexes.
        {"GPIB0::7::INSTR", 2, kNaN},
        {"GPIB0::7::INSTR", -1, kNaN},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.input) + " #" + std::to_string(c.index));
        std::vector<char> buffer = test::writable(c.input);
        IoParms parms;
        parms.parse(buffer.data(), false);
        EXPECT_EQ(parms.getNumParam(c.index), c.expected);
    }
    EXPECT_EQ(IoParms().getNumParam(0), kNaN);
}

}  // namespace
}  // namespace braxcfg::rsrc
