// braxcfg rsrc dump | canon, run as a child process.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "temp_store.h"
#include "tool_run.h"

namespace braxcfg::test {
namespace {

// The tool's standard output and exit code.
std::pair<std::string, int> runOnStore(const std::string& storePath, const std::vector<std::string>& args) {
    ToolRun result = runToolOn(storePath, args);
    return {std::move(result.out), result.exitCode};
}

TEST(RsrcTool, CanonPrintsNamesAndStatusPerString) {
    const TempStore store;
    const struct {
        std::vector<std::string> args;
        std::string out;
        int exitCode;
    } cases[] = {
        {{"rsrc", "canon", "usb0::4660::22136::SN42", "GPIB0::0x7"},
         "USB0::0x1234::0x5678::SN42::0::INSTR\tUSB0::4660::22136::SN42::0::INSTR\t0x00000000\n"
         "GPIB0::7::INSTR\t\t0x00000000\n",
         0},
        // After "--" even "-x" and "" are resource strings.
        {{"rsrc", "canon", "--", "gpib0::7::instr", "-x", ""}, "GPIB0::7::INSTR\t\t0x00000000\n\t\t0xBFFF0012\n\t\t0xBFFF0012\n", 1},
        // Canonical name first, then the alternate: both empty for a string
        // that does not parse, as the dump shows it.
        {{"rsrc", "canon", "PXI0::CHASSIS1::SLOT2::MEMACC"}, "\t\t0xBFFF0012\n", 1},
        // TAB and other controls are escaped so the columns hold; other
        // characters come out as UTF-8.
        {{"rsrc", "canon", "USB0::1::2::S\tN\x1b[0m", "TCPIP0::h\xC3\xA9::inst0"},
         "USB0::0x0001::0x0002::S\\x09N\\x1B[0m::0::INSTR\tUSB0::1::2::S\\x09N\\x1B[0m::0::INSTR\t0x00000000\n"
         "TCPIP0::h\xC3\xA9::inst0::INSTR\t\t0x00000000\n",
         0},
        {{"rsrc", "canon"}, "", 2},
        {{"rsrc", "canon", "-x"}, "", 2},
        {{"rsrc", "frob", "GPIB0::7"}, "", 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        EXPECT_EQ(runOnStore(store.path(), c.args), std::make_pair(c.out, c.exitCode));
    }
}

TEST(RsrcTool, DumpPrintsTheRecordOfEachString) {
    const TempStore store;
    const auto [out, exitCode] = runOnStore(store.path(), {"rsrc", "dump", "--", "  GPIB0::7 ", "GPIB0::FOO"});
    EXPECT_EQ(exitCode, 1);
    EXPECT_EQ(out.rfind("\nIoParms record\n   rsrcString", 0), 0u) << "no address: the same on every run";
    EXPECT_EQ(runOnStore(store.path(), {"rsrc", "dump", "--", "  GPIB0::7 ", "GPIB0::FOO"}).first, out);
    for (const char* part :
         {"= 'GPIB0::7'\n   canonicalName = 'GPIB0::7::INSTR'\n", "= 'GPIB0::FOO'\n   canonicalName = ''\n"})
        EXPECT_NE(out.find(part), std::string::npos) << part;
}

}  // namespace
}  // namespace braxcfg::test
