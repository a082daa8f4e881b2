// braxcfg rsrc dump | canon, run as a child process.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "temp_store.h"
#include "tool_run.h"

namespace braxcfg::test {
namespace {

// The tool's standard output and exit code.
std::pair<std::string, int> runOnStore(const std::string& storePath, std::vector<std::string> args) {
    args.insert(args.begin(), {"--store", storePath});
    ToolRun result = runTool(args);
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
    EXPECT_EQ(out.rfind("\nIoParms instance: 0x", 0), 0u);
    for (const char* part :
         {"= 'GPIB0::7'\n   canonicalName = 'GPIB0::7::INSTR'\n", "= 'GPIB0::FOO'\n   canonicalName = ''\n"})
        EXPECT_NE(out.find(part), std::string::npos) << part;
}

}  // namespace
}  // namespace braxcfg::test
