// braxcfg import / export, run as a child process on a store file of its
// own, and the text edges: the command line, .reg files, listings and JSON.
// The .reg grammar and its round trip are the regfile layer's tests.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tool_folder.h"

namespace {

using braxcfg::test::readFile;
using braxcfg::test::ToolRun;
using RegfileTool = braxcfg::test::ToolFolder;

const std::string kFixtures = BRAXCFG_TEST_FIXTURES;
const std::string kProduct = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion";

// UTF-8 to standard output with --utf8, else the Windows form (UTF-16) to a file.
TEST_F(RegfileTool, ImportThenExportGivesTheFileBack) {
    ASSERT_EQ(tool({"import", kFixtures + "/regfile_roundtrip.utf16.reg"}).exitCode, 0);
    EXPECT_EQ(tool({"export", "--utf8"}).out, readFile(kFixtures + "/regfile_roundtrip.utf8.reg"));
    const ToolRun toFile = tool({"export", path("out.reg")});
    EXPECT_EQ(toFile.exitCode, 0) << toFile.err;
    EXPECT_EQ(readFile(path("out.reg")), readFile(kFixtures + "/regfile_roundtrip.utf16.reg"));
}

// One non-ASCII name typed on the command line, imported from a .reg file,
// exported and listed is one and the same name (JSON's UTF-8 is the JSON
// report test's).
TEST_F(RegfileTool, OneNonAsciiNameIsTheSameAtEveryEdge) {
    const std::string bench = "B\xC3\xA4nch";  // as typed in a UTF-8 terminal
    write("intf.reg", "Windows Registry Editor Version 5.00\n\n[" + kProduct + "\\INTF0]\n\"VISAName\"=\"" + bench +
                          "\"\n\"VISAIntfType\"=\"GPIB\"\n\n[" + kProduct + "\\INTF0\\VISADev]\n");
    ASSERT_EQ(tool({"import", path("intf.reg")}).exitCode, 0);
    ASSERT_EQ(tool({"aliases", "set", bench, "--resource", "TCPIP0::a::INSTR"}).exitCode, 0);
    ASSERT_EQ(tool({"devices", "INTF0", "add", bench + "::7"}).exitCode, 0);
    ASSERT_EQ(tool({"export", "--utf8", path("out.reg")}).exitCode, 0);
    const std::string file = readFile(path("out.reg"));
    EXPECT_NE(file.find("[" + kProduct + "\\INTF0\\VISADev\\" + bench + "::7]"), std::string::npos) << file;
    // The exported file setting the alias again is the same alias, not a second one.
    ASSERT_EQ(tool({"import", path("out.reg")}).exitCode, 0);
    const std::string aliases = tool({"aliases"}).out;
    EXPECT_EQ(aliases.find(bench), aliases.rfind(bench)) << aliases;
    EXPECT_NE(aliases.find(bench + "                TCPIP0::a::INSTR"), std::string::npos) << aliases;
    const ToolRun refused = tool({"aliases", "set", "\xE4\xB8\xAD", "--resource", "TCPIP0::a::INSTR"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_NE(refused.err.find("U+4E2D is not in the Windows-1252 code page"), std::string::npos) << refused.err;
}

// Control characters in store text reach a terminal escaped, a pipe as they are.
TEST_F(RegfileTool, ControlCharactersAreEscapedOnATerminal) {
    ASSERT_EQ(tool({"aliases", "set", "A\x1b[31m", "--resource", "TCPIP0::a::INSTR"}).exitCode, 0);
    EXPECT_NE(tool({"aliases"}).out.find("A\x1b[31m"), std::string::npos);
    // script(1) gives the tool a terminal as its standard output.
    const std::string command =
        "script -qec \"'" BRAXCFG_TOOL_PATH "' --store '" + store() + "' aliases\" /dev/null > '" + path("tty") + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::string shown = readFile(path("tty"));
    EXPECT_NE(shown.find("A\\x1B[31m"), std::string::npos) << shown;
    EXPECT_EQ(shown.find('\x1b'), std::string::npos);
}

TEST_F(RegfileTool, ErrorsExitWithCode2AndSayWhy) {
    ASSERT_EQ(tool({"import", write("good.reg", "REGEDIT4\n[HKEY_LOCAL_MACHINE\\A]\n\"v\"=\"1\"\n")}).exitCode, 0);
    const std::string before = tool({"export", "--utf8"}).out;
    write("bad.reg", "REGEDIT4\n[-HKEY_LOCAL_MACHINE\\A]\n[HKEY_LOCAL_MACHINE\\B]\n\"w\"=dword:123456789\n");
    const struct { std::vector<std::string> args; std::string reason; } cases[] = {
        {{"import", path("bad.reg")}, "bad.reg: line 4: dword: has more than 8 hex digits; nothing was imported"},
        {{"import", path("a.reg"), path("b.reg")}, "import needs exactly one FILE"},
        {{"import", path("missing.reg")}, "cannot read"},
        {{"export", "--key", "HKEY_LOCAL_MACHINE\\Nowhere"}, "HKEY_LOCAL_MACHINE\\Nowhere does not exist"},
        {{"export", path("a.reg"), path("b.reg")}, "at most one FILE"},
        {{"export", path("no-such-dir/out.reg")}, "cannot write"},
    };
    for (const auto& c : cases) {
        const ToolRun result = tool(c.args);
        EXPECT_EQ(result.exitCode, 2) << c.reason;
        EXPECT_NE(result.err.find(c.reason), std::string::npos) << "wanted: " << c.reason << "\ngot: " << result.err;
        EXPECT_EQ(result.out, "") << c.reason;
    }
    EXPECT_EQ(tool({"export", "--utf8"}).out, before);
}

}  // namespace
