// How the tool reads its command line, run as a child process: both option
// forms, "--", ranges checked before anything is probed, the operands each
// command takes, and what it prints and exits with; and the --json of every
// reporting command, parsed: the answer's shape, once per command, with the
// store's text (cp1252) as UTF-8. What a resource string parses to is the
// parser's to decide; here only how the tool shows it.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "braxcfg_version.h"
#include "scoped_env.h"
#include "tool_folder.h"

namespace braxcfg::test {
namespace {

using CommandLineTool = ToolFolder;
using nlohmann::json;

TEST_F(CommandLineTool, ArgumentsExitCodesAndOutput) {
    ASSERT_EQ(tool({"aliases", "set", "scope", "--resource=TCPIP0::h::INSTR"}).exitCode, 0);
    // An alias that looks like a resource string is still an alias.
    ASSERT_EQ(tool({"aliases", "set", "gpib0::9", "--resource", "TCPIP0::h9::INSTR"}).exitCode, 0);
    const ScopedEnv storeFromEnvironment("BRAXCFG_STORE", store().c_str());
    const std::string ms = "braxcfg: --timeout takes milliseconds from 1 to 60000\n";
    const std::string seconds = "braxcfg: --timeout takes seconds, more than 0 and at most 60 (2, 0.5)\n";
    const std::string version = "braxcfg " BRAXCFG_VERSION_TEXT "\n", db = store();
    const std::string lo = "TCPIP0::127.0.0.1::INSTR";  // refused before any traffic, and loopback in any case
    const struct { std::vector<std::string> args; int exitCode; std::string out, err; } cases[] = {
        // --store before or after the command word, with or without "=".
        {{"--store=" + db, "resolve", "scope"}, 0, "TCPIP0::h::INSTR\n", ""},
        {{"resolve", "scope", "--store", db}, 0, "TCPIP0::h::INSTR\n", ""},
        {{"--store", db, "--store", db, "resolve", "scope"}, 2, "", "braxcfg: option --store given more than once\n"},
        {{"--store=", "resolve", "scope"}, 2, "", "braxcfg: option --store needs a file name, not an empty one\n"},
        {{"--store", "/nonexistent/dir/store.db", "--version"}, 0, version, ""},  // opens no store
        {{"--version", "status"}, 2, "", "braxcfg: --version takes no arguments\n"},
        {{"identify", lo, "--timeout", "60001"}, 2, "", ms},
        {{"test", lo, "--timeout", "5x"}, 2, "", ms},
        {{"discover", "--timeout", "61"}, 2, "", seconds},
        {{"discover", "--timeout", "1e1"}, 2, "", seconds},
        {{"test", lo, "--alias", "a", "--alias=b"}, 2, "", "braxcfg: option --alias given more than once\n"},
        {{"status", "--bogus"}, 2, "", "braxcfg: unknown option --bogus\n"},
        {{"discover", "--add"}, 2, "", "braxcfg: option --add needs a value\n"},
        {{"discover", "--add="}, 2, "", "braxcfg: option --add needs a value\n"},
        {{"status", "--json=x", "0"}, 2, "", "braxcfg: option --json takes no value\n"},
        // A negative code is no option; after "--" nothing is.
        {{"status", "-1073807343"}, 0, "VI_ERROR_RSRC_NFOUND (0xBFFF0011)\nInsufficient location information or the "
         "requested device or resource is not present in the system.\n", ""},
        {{"status", "--", "--help"}, 2, "", "braxcfg: '--help' is not a status (0xBFFF0011 or -1073807343)\n"},
        {{"discover", "now"}, 2, "", "braxcfg: discover takes no operand\n"},
        {{"identify"}, 2, "", "braxcfg: identify needs exactly one RESOURCE\n"},
        {{"identify", "TCPIP0::127.0.0.1::99999::SOCKET"}, 2, "",
         "braxcfg: \"TCPIP0::127.0.0.1::99999::SOCKET\" is not a LAN resource (TCPIP::host[::device][::INSTR] or "
         "TCPIP::host::port::SOCKET)\n"},
        {{"simulate"}, 2, "", "braxcfg: simulate needs exactly one lab FILE\n"},
        {{"simulate", "/nonexistent/lab.ini"}, 2, "", "braxcfg: /nonexistent/lab.ini: cannot read the file\n"},
        // Canonical name, alternate name, status: one line per string.
        {{"rsrc", "canon", "usb0::4660::22136::SN42", "GPIB0::0x7"}, 0,
         "USB0::0x1234::0x5678::SN42::0::INSTR\tUSB0::4660::22136::SN42::0::INSTR\t0x00000000\n"
         "GPIB0::7::INSTR\t\t0x00000000\n", ""},
        {{"rsrc", "canon", "--", "gpib0::7::instr", "-x", "--json"}, 1,
         "GPIB0::7::INSTR\t\t0x00000000\n\t\t0xBFFF0012\n\t\t0xBFFF0012\n", ""},
        // TAB and other controls are escaped so the columns hold; other characters come out as UTF-8.
        {{"rsrc", "canon", "USB0::1::2::S\tN\x1b[0m", "TCPIP0::h\xC3\xA9::inst0"}, 0,
         "USB0::0x0001::0x0002::S\\x09N\\x1B[0m::0::INSTR\tUSB0::1::2::S\\x09N\\x1B[0m::0::INSTR\t0x00000000\n"
         "TCPIP0::h\xC3\xA9::inst0::INSTR\t\t0x00000000\n", ""},
        {{"rsrc", "canon"}, 2, "", "braxcfg: rsrc canon needs at least one resource string\n"},
        {{"rsrc", "frob", "GPIB0::7"}, 2, "", "braxcfg: rsrc needs 'dump' or 'canon' (see braxcfg rsrc --help)\n"},
        // resolve: aliases (names ignore case) first, then resource strings.
        {{"resolve", "GPIB0::9"}, 0, "TCPIP0::h9::INSTR\n", ""},
        {{"resolve", "gpib0::7"}, 0, "GPIB0::7::INSTR\n", ""},
        {{"resolve", "scope2"}, 1, "", "braxcfg: scope2 is neither an alias nor a resource string\n"},
        {{"resolve", ""}, 2, "", "braxcfg: resolve needs exactly one NAME\n"},
        {{"resolve", "\xFF"}, 2, "", "braxcfg: the argument '\xFF' cannot be used: the text is not valid UTF-8\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        const ToolRun run = runTool(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_EQ(run.out, c.out);
        EXPECT_EQ(run.err, c.err);
    }
    // A record per string, headed without an address so that it is the same on every run.
    const ToolRun dump = runTool({"rsrc", "dump", "--", "GPIB0::7", "GPIB0::FOO"});
    const std::string head = "\nIoParms record\n   rsrcString    = '";
    EXPECT_EQ(dump.out.rfind(head + "GPIB0::7'\n   canonicalName = 'GPIB0::7::INSTR'\n", 0), 0u);
    EXPECT_NE(dump.out.find(head + "GPIB0::FOO'\n   canonicalName = ''\n"), std::string::npos);
}

TEST_F(CommandLineTool, EveryJsonReportParsesWithItsFields) {
    const std::string cafe = "caf\xC3\xA9";  // "café" in UTF-8; one cp1252 byte in the store
    ASSERT_EQ(tool({"import", BRAXCFG_TEST_FIXTURES "/setup_every_type.reg"}).exitCode, 0);
    ASSERT_EQ(tool({"aliases", "set", cafe, "--resource", "TCPIP0::h" + cafe + "::INSTR"}).exitCode, 0);
    ASSERT_EQ(tool({"devices", "INTF0", "add", "GPIB0::" + cafe}).exitCode, 0);
    const std::string lan = "TCPIP0::127.0.0.1::1::SOCKET";  // port 1 of loopback: refused at once
    const struct { std::vector<std::string> args; int exitCode; const char* pointer; std::string expected; } cases[] = {
        {{"interfaces"}, 0, "/0",
         R"({"key": "INTF0", "visaName": "GPIB0", "type": "GPIB", "setUp": false, "autoConfig": null, "devices": 2})"},
        {{"aliases"}, 0, "/0",
         R"({"alias": ")" + cafe + R"(", "resource": "TCPIP0::h)" + cafe + R"(::INSTR", "korlAddress": null})"},
        {{"devices", "INTF0"}, 0, "/devices/0", R"({"name": "GPIB0::)" + cafe + R"(", "resources": []})"},
        {{"resolve", cafe}, 0, "",
         R"({"name": ")" + cafe + R"(", "kind": "alias", "resource": "TCPIP0::h)" + cafe + R"(::INSTR"})"},
        {{"rsrc", "canon", "gpib0::7", "GPIB0::FOO"}, 1, "/1/status/name", R"("VI_ERROR_INV_RSRC_NAME")"},
        {{"rsrc", "dump", "h" + cafe}, 1, "/0/string", R"("h)" + cafe + R"(")"},
        {{"status", "0xBFFF0015"}, 0, "", R"({"code": "0xBFFF0015", "name": "VI_ERROR_TMO",
                                               "description": "Timeout expired before operation completed."})"},
        {{"status", "0x3FFF1234"}, 0, "/name", "null"},
        {{"test", lan, "--timeout", "500"}, 1, "/found", "false"},
        {{"identify", lan, "--timeout", "500"}, 1, "/identification", "null"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = c.args;
        args.push_back("--json");
        SCOPED_TRACE(testing::PrintToString(args) + " " + c.pointer);
        const ToolRun run = tool(args);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
        json answer;
        ASSERT_NO_THROW(answer = json::parse(run.out)) << run.out;
        const json::json_pointer field(c.pointer);
        EXPECT_EQ(answer.contains(field) ? answer.at(field) : json("missing"), json::parse(c.expected)) << run.out;
    }
}

TEST(CommandLineHelp, PerCommandFromItsOptionsAndTheCommandsForAnUnknownOne) {
    // "help" in the command's place, after --store too, asks what --help asks.
    EXPECT_NE(runTool({"--store", "/nonexistent/s.db", "help", "resolve"}).out.find("usage: braxcfg resolve [--json] "
              "[--] NAME"), std::string::npos);
    EXPECT_NE(runTool({"--store=/nonexistent/s.db", "help"}).out.find("\ncommands:\n"), std::string::npos);
    for (const std::vector<std::string>& words : {std::vector<std::string>{"nosuch"}, {"help", "nosuch"}}) {
        const ToolRun unknown = runTool(words);
        EXPECT_EQ(unknown.exitCode, 2);
        EXPECT_NE(unknown.err.find("  resolve "), std::string::npos);
        EXPECT_NE(unknown.err.find("braxcfg: unknown command 'nosuch'\n"), std::string::npos);
    }
}

}  // namespace
}  // namespace braxcfg::test
