// The LAN commands' refusals of bad input: each says what is wrong and
// exits 2 before any traffic (so these run outside a private namespace).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tool_run.h"

namespace braxcfg::test {
namespace {

TEST(LanTool, BadInputExitsTwoWithAReason) {
    const struct { std::vector<std::string> args; std::string err; } cases[] = {
        {{"discover", "--timeout", "0"}, "braxcfg: --timeout takes seconds, more than 0 and at most 60 (2, 0.5)\n"},
        {{"discover", "--timeout", "61"}, "braxcfg: --timeout takes seconds, more than 0 and at most 60 (2, 0.5)\n"},
        {{"discover", "--timeout", "1e1"}, "braxcfg: --timeout takes seconds, more than 0 and at most 60 (2, 0.5)\n"},
        {{"discover", "now"}, "braxcfg: discover takes no operand\n"},
        {{"discover", "--add"}, "braxcfg: option --add needs a value\n"},
        {{"identify"}, "braxcfg: identify needs exactly one RESOURCE\n"},
        {{"identify", "TCPIP0::127.0.0.1::INSTR", "--timeout", "60001"},
         "braxcfg: --timeout takes milliseconds from 1 to 60000\n"},
        {{"identify", "TCPIP0::127.0.0.1::99999::SOCKET"},
         "braxcfg: \"TCPIP0::127.0.0.1::99999::SOCKET\" is not a LAN resource (TCPIP::host[::device][::INSTR] or "
         "TCPIP::host::port::SOCKET)\n"},
        {{"simulate"}, "braxcfg: simulate needs exactly one lab FILE\n"},
        {{"simulate", "/nonexistent/lab.ini"}, "braxcfg: /nonexistent/lab.ini: cannot read the file\n"},
        {{"simulate", BRAXCFG_SOURCE_DIR "/tests/fixtures/setup_every_type.reg", "--mdns"},
         "braxcfg: " BRAXCFG_SOURCE_DIR "/tests/fixtures/setup_every_type.reg:1: a line before the first [RESOURCE]\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.front() + (c.args.size() > 1 ? " " + c.args[1] : ""));
        const ToolRun run = runTool(c.args);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, c.err);
    }
}

}  // namespace
}  // namespace braxcfg::test
