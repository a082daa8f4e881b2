// What callers read back from a record: names copied into their buffers,
// the PXI chassis writing, and the printed dump.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "rsrc/allocation.h"
#include "rsrc/io_parms.h"
#include "rsrc_test_support.h"

namespace braxcfg::rsrc {
namespace {

std::string dumpText(IoParms& parms) {
    std::FILE* file = std::tmpfile();
    parms.dump(file);
    std::string text(static_cast<std::size_t>(std::ftell(file)), '\0');
    std::rewind(file);
    const std::size_t read = std::fread(text.data(), 1, text.size(), file);
    std::fclose(file);
    text.resize(read);
    return text;
}

std::string addressLine(const IoParms& parms) {
    char line[64];
    std::snprintf(line, sizeof line, "\nIoParms instance: 0x%lx\n", reinterpret_cast<unsigned long>(&parms));
    return line;
}

TEST(IoParmsCopyOut, BufferRulesOfTheCanonicalAndAlternateNames) {
    const test::TempStore store;
    std::vector<char> input = test::writable("TCPIP0::myhost::INSTR");
    IoParms parms;
    ASSERT_EQ(parms.parse(input.data(), false), visa::VI_SUCCESS);
    const char* own = parms.getCanonicalName(nullptr, 0);
    ASSERT_STREQ(own, "TCPIP0::myhost::inst0::INSTR");
    const struct {
        int size;
        bool intoBuffer;
        const char* expected;  // buffer content afterwards
    } cases[] = {{64, true, "TCPIP0::myhost::inst0::INSTR"},
                 {7, true, "TCPIP0"},
                 {1, true, ""},
                 {0, false, "untouched"},
                 {-5, false, "untouched"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        char buffer[64] = "untouched";
        EXPECT_EQ(parms.getCanonicalName(buffer, c.size), c.intoBuffer ? buffer : own);
        EXPECT_STREQ(buffer, c.expected);
    }
    EXPECT_EQ(parms.getCanonicalName(nullptr, 64), own);
    {
        // An alternate name that cannot be allocated still empties the buffer.
        const ScopedAllocationFault fault(1);
        char alternate[16] = "untouched";
        EXPECT_EQ(parms.getAltName(alternate, sizeof alternate), alternate);
        EXPECT_STREQ(alternate, "");
    }
    char alternate[16] = "untouched";
    EXPECT_EQ(parms.getAltName(alternate, sizeof alternate), alternate);
    EXPECT_STREQ(alternate, "");
}

// The chassis-and-slot writing lands in the canonical name, bounded by the
// size given, whichever buffer the builder was asked to fill.
TEST(IoParmsPxi, ChassisWritingAlwaysGoesIntoTheCanonicalName) {
    const test::TempStore store;
    std::vector<char> input = test::writable("PXI0::chassis1::slot5::INSTR");
    IoParms parms;
    ASSERT_EQ(parms.parse(input.data(), false), visa::VI_SUCCESS);
    char target[32] = "untouched";
    parms.buildPxiBdfName(target, 10);
    EXPECT_STREQ(target, "untouched");
    EXPECT_STREQ(parms.getCanonicalName(nullptr, 0), "PXI0::CHA");
    parms.buildPxiLegacyName(target, 1024);
    EXPECT_STREQ(target, "untouched");
    EXPECT_STREQ(parms.getCanonicalName(nullptr, 0), "PXI0::CHASSIS1::SLOT5::FUNC0::INSTR");
}

TEST(IoParmsDump, PrintsEveryFieldInItsFixedFormat) {
    const test::TempStore store;
    test::putInterface("INTF0", "USB0", "USB");
    test::putString(test::underProduct("INTF0"), "VISAKorlIntfName", "KUSB0");
    test::putDword(test::underProduct("INTF0"), "VISAExportEnabled", 1);
    std::vector<char> input = test::writable(" USB0::0x1234::0x5678::SN42::INSTR");
    IoParms parms;
    ASSERT_EQ(parms.parse(input.data(), false), visa::VI_SUCCESS);
    EXPECT_EQ(dumpText(parms), addressLine(parms) +
                                   "   rsrcString    = 'USB0::0x1234::0x5678::SN42::INSTR'\n"
                                   "   canonicalName = 'USB0::0x1234::0x5678::SN42::0::INSTR'\n"
                                   "   count         = 5\n"
                                   "   lastError     = 0\n"
                                   "   intfTypeStr   = 'USB'\n"
                                   "   intfType      = 7\n"
                                   "   rsrcClassStr  = 'INSTR'\n"
                                   "   intfName      = 'USB0'\n"
                                   "   board#        = 0\n"
                                   "   korlIntfName  = 'KUSB0'\n"
                                   "   exportEnabled = 1\n"
                                   "   pCount        = 3\n"
                                   "        0:           0, 'USB0'\n"
                                   "        1:        4660, '0x1234'\n"
                                   "        2:       22136, '0x5678'\n"
                                   "        3:          -1, 'SN42'\n"
                                   "        4:          -1, 'INSTR'\n"
                                   "\n");
}

TEST(IoParmsDump, UnparsedRecordPrintsNullFieldsAndNoElements) {
    const test::TempStore store;
    IoParms parms;
    const std::string text = dumpText(parms);
    for (const char* line :
         {"\n   rsrcString    = NULL\n", "\n   lastError     = -1073807342\n", "\n   intfTypeStr   = NULL\n",
          "\n   rsrcClassStr  = NULL\n", "\n   board#        = -1\n", "\n   pCount        = -2\n\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line;
}

}  // namespace
}  // namespace braxcfg::rsrc
