// braxcfg rsrc dump | canon, run as a child process.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>
#include <vector>

#include "temp_store.h"

namespace braxcfg::test {
namespace {

struct ToolRun {
    std::string out;
    int exitCode = -1;
};

std::string shellQuoted(const std::string& word) {
    std::string quoted = "'";
    for (char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

ToolRun runTool(const std::string& storePath, const std::vector<std::string>& args) {
    std::string command = shellQuoted(BRAXCFG_TOOL_PATH) + " --store " + shellQuoted(storePath);
    for (const std::string& arg : args) command += " " + shellQuoted(arg);
    ToolRun run;
    std::FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) return run;
    char chunk[4096];
    for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, pipe)) > 0;) run.out.append(chunk, n);
    const int status = pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
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
        {{"rsrc", "canon", "--", "gpib0::7::instr", "-x", ""},
         "GPIB0::7::INSTR\t\t0x00000000\n\t\t0xBFFF0012\n\t\t0xBFFF0012\n",
         1},
        {{"rsrc", "canon"}, "", 2},
        {{"rsrc", "canon", "-x"}, "", 2},
        {{"rsrc", "frob", "GPIB0::7"}, "", 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.size() > 2 ? c.args[2] : c.args.back());
        const ToolRun run = runTool(store.path(), c.args);
        EXPECT_EQ(run.out, c.out);
        EXPECT_EQ(run.exitCode, c.exitCode);
    }
}

TEST(RsrcTool, DumpPrintsTheRecordOfEachString) {
    const TempStore store;
    const ToolRun run = runTool(store.path(), {"rsrc", "dump", "--", "  GPIB0::7 ", "GPIB0::FOO"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out.rfind("\nIoParms instance: 0x", 0), 0u);
    for (const char* part :
         {"= 'GPIB0::7'\n   canonicalName = 'GPIB0::7::INSTR'\n", "= 'GPIB0::FOO'\n   canonicalName = ''\n"})
        EXPECT_NE(run.out.find(part), std::string::npos) << part;
}

}  // namespace
}  // namespace braxcfg::test
