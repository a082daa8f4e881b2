// What callers read back from a record: names copied into their buffers,
// the PXI chassis writing, and the printed dump.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "rsrc/allocation.h"
#include "rsrc/io_parms.h"
#include "visacore/config/base_visa_config.h"
#include "store_builder.h"
#include "temp_store.h"

namespace braxcfg::rsrc {
namespace {

std::string dumpText(IoParms& parms) {
    char* data = nullptr;
    std::size_t size = 0;
    std::FILE* file = open_memstream(&data, &size);
    parms.dump(file);
    std::fclose(file);
    std::string text(data, size);
    std::free(data);
    return text;
}

TEST(IoParmsCopyOut, BufferRulesOfTheCanonicalAndAlternateNames) {
    const test::TempStore store;
    std::string input("TCPIP0::myhost::INSTR");
    IoParms parms;
    ASSERT_EQ(parms.parse(input.data(), false), visa::VI_SUCCESS);
    const char* own = parms.getCanonicalName(nullptr, 0);
    ASSERT_STREQ(own, "TCPIP0::myhost::inst0::INSTR");
    // size, and the buffer content afterwards; below 1 the record's own text is returned.
    for (const auto& [size, expected] : std::vector<std::pair<int, const char*>>{
             {64, "TCPIP0::myhost::inst0::INSTR"}, {7, "TCPIP0"}, {1, ""}, {0, "untouched"}, {-5, "untouched"}}) {
        SCOPED_TRACE(size);
        char buffer[64] = "untouched";
        EXPECT_EQ(parms.getCanonicalName(buffer, size), size >= 1 ? buffer : own);
        EXPECT_STREQ(buffer, expected);
    }
    EXPECT_EQ(parms.getCanonicalName(nullptr, 64), own);
    for (const bool allocationFails : {true, false}) {
        // No alternate name, even one that cannot be allocated, still empties the buffer.
        const ScopedAllocationFault fault(allocationFails ? 1 : 0);
        char alternate[16] = "untouched";
        EXPECT_EQ(parms.getAltName(alternate, sizeof alternate), alternate);
        EXPECT_STREQ(alternate, "");
    }
}

// The chassis-and-slot writing lands in the canonical name, bounded by the
// size given, whichever buffer the builder was asked to fill.
TEST(IoParmsPxi, ChassisWritingAlwaysGoesIntoTheCanonicalName) {
    const test::TempStore store;
    std::string input("PXI0::chassis1::slot5::INSTR");
    IoParms parms;
    ASSERT_EQ(parms.parse(input.data(), false), visa::VI_SUCCESS);
    char target[32] = "untouched";
    parms.buildPxiBdfName(target, 10);
    EXPECT_STREQ(parms.getCanonicalName(nullptr, 0), "PXI0::CHA");
    parms.buildPxiLegacyName(target, 1024);
    EXPECT_STREQ(parms.getCanonicalName(nullptr, 0), "PXI0::CHASSIS1::SLOT5::FUNC0::INSTR");
    EXPECT_STREQ(target, "untouched");
}

TEST(IoParmsDump, PrintsEveryFieldInItsFixedFormat) {
    const test::TempStore store;
    test::putInterface("INTF0", "USB0", "USB");
    test::putString(test::underProduct("INTF0"), "VISAKorlIntfName", "KUSB0");
    test::putDword(test::underProduct("INTF0"), "VISAExportEnabled", 1);
    std::string input(" USB0::0x1234::0x5678::SN42::INSTR");
    IoParms parms;
    ASSERT_EQ(parms.parse(input.data(), false), visa::VI_SUCCESS);
    char address[64];
    std::snprintf(address, sizeof address, "\nIoParms instance: 0x%lx\n", reinterpret_cast<unsigned long>(&parms));
    EXPECT_EQ(dumpText(parms), std::string(address) +
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
    // The KORL name is bounded by the configuration's room, not by the size
    // passed; only the low 16 bits of the export flag count.
    char name[visa::kConfigTextChars] = "stale";
    EXPECT_EQ(parms.getKorlIntfName(name, 1), name);
    EXPECT_STREQ(name, "KUSB0");
    test::putDword(test::underProduct("INTF0"), "VISAExportEnabled", 0x10000);
    EXPECT_FALSE(parms.isExportEnabled());
    // Never parsed: NULL texts, the initial status, board -1 and no elements.
    IoParms empty;
    const std::string text = dumpText(empty);
    for (const char* line :
         {"\n   rsrcString    = NULL\n", "\n   lastError     = -1073807342\n", "\n   intfTypeStr   = NULL\n",
          "\n   rsrcClassStr  = NULL\n", "\n   board#        = -1\n", "\n   pCount        = -2\n\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line;
}

}  // namespace
}  // namespace braxcfg::rsrc
