// How the tool reads its command line: both option forms, "--", ranges,
// unknown and repeated options, help per command; exit codes and messages.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "temp_store.h"
#include "tool_run.h"

namespace braxcfg::test {
namespace {

TEST(OptionFormsTool, FormsAndMistakes) {
    const TempStore store;
    const std::string& path = store.path();
    ASSERT_EQ(runTool({"--store=" + path, "aliases", "set", "scope", "--resource=TCPIP0::h::INSTR"}).exitCode, 0);
    const struct {
        std::vector<std::string> args;
        int exitCode;
        std::string inOut;  // part of standard output
        std::string err;    // standard error exactly, when not empty
    } cases[] = {
        // --store before or after the command word, with or without "=".
        {{"--store=" + path, "resolve", "scope"}, 0, "TCPIP0::h::INSTR\n", ""},
        {{"resolve", "scope", "--store", path}, 0, "TCPIP0::h::INSTR\n", ""},
        {{"--store", path, "--store", path, "resolve", "scope"}, 2, "", "braxcfg: option --store given more than once\n"},
        {{"--store=", "resolve", "scope"}, 2, "", "braxcfg: option --store needs a file name, not an empty one\n"},
        // Ranges are checked in either form, before anything is probed.
        {{"test", "TCPIP0::127.0.0.1::INSTR", "--timeout=0"}, 2, "",
         "braxcfg: --timeout takes milliseconds from 1 to 60000\n"},
        {{"identify", "TCPIP0::127.0.0.1::INSTR", "--timeout", "60001"}, 2, "",
         "braxcfg: --timeout takes milliseconds from 1 to 60000\n"},
        {{"test", "TCPIP0::127.0.0.1::INSTR", "--timeout", "5x"}, 2, "",
         "braxcfg: --timeout takes milliseconds from 1 to 60000\n"},
        {{"test", "TCPIP0::127.0.0.1::INSTR", "--alias", "a", "--alias=b"}, 2, "",
         "braxcfg: option --alias given more than once\n"},
        {{"status", "--bogus"}, 2, "", "braxcfg: unknown option --bogus\n"},
        {{"discover", "--add"}, 2, "", "braxcfg: option --add needs a value\n"},
        {{"discover", "--add="}, 2, "", "braxcfg: option --add needs a value\n"},
        {{"status", "--json=x", "0"}, 2, "", "braxcfg: option --json takes no value\n"},
        // A negative code is no option; after "--" nothing is.
        {{"status", "-1073807343"}, 0, "VI_ERROR_RSRC_NFOUND (0xBFFF0011)\n", ""},
        {{"--store", path, "rsrc", "canon", "--", "--json"}, 1, "\t\t0xBFFF0012\n", ""},
        {{"status", "--", "--help"}, 2, "", "braxcfg: '--help' is not a status (0xBFFF0011 or -1073807343)\n"},
        // Help per command, generated from its options, with its usage.
        {{"resolve", "--help"}, 0, "usage: braxcfg resolve [--json] [--] NAME", ""},
        {{"test", "-h"}, 0, "--timeout MS", ""},
        {{"--version", "status"}, 2, "", "braxcfg: --version takes no arguments\n"},
    };
    for (const auto& c : cases) {
        std::string line;
        for (const std::string& word : c.args) line += " [" + word + "]";
        SCOPED_TRACE(line);
        const ToolRun run = runTool(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
        EXPECT_NE(run.out.find(c.inOut), std::string::npos) << run.out;
        if (!c.err.empty()) {
            EXPECT_EQ(run.err, c.err);
        }
    }
}

TEST(OptionFormsTool, UnknownCommandListsTheCommands) {
    const ToolRun run = runTool({"nosuch"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.err.find("  resolve "), std::string::npos);
    EXPECT_NE(run.err.find("braxcfg: unknown command 'nosuch'\n"), std::string::npos);
}

}  // namespace
}  // namespace braxcfg::test
