// braxcfg resolve: aliases to their resource strings, other names to their
// canonical form, run as a child process.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tool_folder.h"

namespace braxcfg::test {
namespace {

using ResolveTool = ToolFolder;

TEST_F(ResolveTool, AliasesThenResourceStrings) {
    for (const std::vector<std::string>& alias :
         {std::vector<std::string>{"scope1", "TCPIP0::10.0.0.5::inst0::INSTR"},
          // Store text is cp1252: the name and the string go in and come out as UTF-8.
          {"caf\xC3\xA9", "TCPIP0::h\xC3\xA9::INSTR"},
          // An alias that looks like a resource string is still an alias.
          {"gpib0::9", "TCPIP0::10.0.0.9::inst0::INSTR"}}) {
        ASSERT_EQ(tool({"aliases", "set", alias[0], "--resource", alias[1]}).exitCode, 0);
    }
    const struct { std::vector<std::string> args; std::string out; int exitCode; } cases[] = {
        {{"SCOPE1"}, "TCPIP0::10.0.0.5::inst0::INSTR\n", 0},
        {{"CAF\xC3\xA9"}, "TCPIP0::h\xC3\xA9::INSTR\n", 0},
        {{"GPIB0::9"}, "TCPIP0::10.0.0.9::inst0::INSTR\n", 0},
        {{"gpib0::7"}, "GPIB0::7::INSTR\n", 0},
        {{"--", "usb0::4660::22136::SN42"}, "USB0::0x1234::0x5678::SN42::0::INSTR\n", 0},
        {{"scope2"}, "", 1},
        {{"--", "-x"}, "", 1},
        {{""}, "", 2},
        {{}, "", 2},
        {{"scope1", "scope2"}, "", 2},
        {{"--json"}, "", 2},
        {{"\xFF"}, "", 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        std::vector<std::string> args{"resolve"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const ToolRun run = tool(args);
        EXPECT_EQ(run.out, c.out);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_EQ(run.err.empty(), c.exitCode == 0) << run.err;
    }
}

}  // namespace
}  // namespace braxcfg::test
