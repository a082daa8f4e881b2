// braxcfg import / export, run as a child process on a store file of its own.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tool_folder.h"

namespace {

using braxcfg::test::readFile;
using braxcfg::test::runTool;
using braxcfg::test::ToolRun;

using RegfileTool = braxcfg::test::ToolFolder;

const std::string kFixtures = BRAXCFG_TEST_FIXTURES;

TEST_F(RegfileTool, ImportThenExportGivesTheFileBack) {
    ASSERT_EQ(tool({"import", kFixtures + "/regfile_roundtrip.utf16.reg"}).exitCode, 0);

    const ToolRun toStdout = tool({"export", "--utf8"});
    EXPECT_EQ(toStdout.exitCode, 0) << toStdout.err;
    EXPECT_EQ(toStdout.out, readFile(kFixtures + "/regfile_roundtrip.utf8.reg"));

    const ToolRun toFile = tool({"export", path("out.reg")});
    EXPECT_EQ(toFile.exitCode, 0) << toFile.err;
    EXPECT_TRUE(toFile.out.empty());
    EXPECT_EQ(readFile(path("out.reg")), readFile(kFixtures + "/regfile_roundtrip.utf16.reg"));

    const ToolRun oneKey =
        tool({"export", "--utf8", "--key", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion\\INTF10"});
    EXPECT_EQ(oneKey.exitCode, 0) << oneKey.err;
    EXPECT_EQ(oneKey.out,
              "Windows Registry Editor Version 5.00\n\n"
              "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion\\INTF10]\n"
              "\"VISAName\"=\"TCPIP0\"\n\"VISAIntfType\"=\"TCPIP\"\n\"VISARsrcType\"=\"SOCKET\"\n\n");
}

// One non-ASCII name typed on the command line, imported from a .reg file,
// exported, listed and written as JSON is one and the same name.
TEST_F(RegfileTool, OneNonAsciiNameIsTheSameAtEveryEdge) {
    const std::string bench = "B\xC3\xA4nch";  // as typed in a UTF-8 terminal
    const std::string product = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion";
    write("intf.reg", "Windows Registry Editor Version 5.00\n\n[" + product + "\\INTF0]\n\"VISAName\"=\"" +
                                    bench + "\"\n\"VISAIntfType\"=\"GPIB\"\n\n[" + product + "\\INTF0\\VISADev]\n");
    ASSERT_EQ(tool({"import", path("intf.reg")}).exitCode, 0);
    ASSERT_EQ(tool({"aliases", "set", bench, "--resource", "TCPIP0::a::INSTR"}).exitCode, 0);
    ASSERT_EQ(tool({"devices", "INTF0", "add", bench + "::7"}).exitCode, 0);

    const ToolRun exported = tool({"export", "--utf8", path("out.reg")});
    ASSERT_EQ(exported.exitCode, 0) << exported.err;
    const std::string file = readFile(path("out.reg"));
    EXPECT_EQ(file.find("B\xC3\x83\xC2\xA4nch"), std::string::npos) << "no UTF-8 bytes stored as text";
    EXPECT_NE(file.find("[" + product + "\\INTF0\\VISADev\\" + bench + "::7]"), std::string::npos) << file;

    // The exported file setting the alias again is the same alias, not a second one.
    ASSERT_EQ(tool({"import", path("out.reg")}).exitCode, 0);
    const ToolRun aliases = tool({"aliases"});
    EXPECT_EQ(aliases.out.find(bench), aliases.out.rfind(bench)) << aliases.out;
    EXPECT_NE(aliases.out.find(bench + "                TCPIP0::a::INSTR"), std::string::npos) << aliases.out;

    EXPECT_EQ(tool({"devices", "INTF0"}).out.rfind(bench + "::7\n", 0), 0u);
    EXPECT_NE(tool({"interfaces", "--json"}).out.find("\"visaName\": \"" + bench + "\""), std::string::npos);

    const ToolRun refused = tool({"aliases", "set", "\xE4\xB8\xAD", "--resource", "TCPIP0::a::INSTR"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_NE(refused.err.find("U+4E2D is not in the Windows-1252 code page"), std::string::npos) << refused.err;
}

// Control characters in store text reach a terminal escaped, a pipe as they are.
TEST_F(RegfileTool, ControlCharactersAreEscapedOnATerminal) {
    ASSERT_EQ(tool({"aliases", "set", "A\x1b[31m", "--resource", "TCPIP0::a::INSTR"}).exitCode, 0);
    EXPECT_NE(tool({"aliases"}).out.find("A\x1b[31m"), std::string::npos);
    // script(1) gives the tool a terminal as its standard output.
    const std::string command = "script -qec \"'" BRAXCFG_TOOL_PATH "' --store '" + path("store.db") +
                                "' aliases\" /dev/null > '" + path("tty") + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::string shown = readFile(path("tty"));
    EXPECT_NE(shown.find("A\\x1B[31m"), std::string::npos) << shown;
    EXPECT_EQ(shown.find('\x1b'), std::string::npos);
}

TEST_F(RegfileTool, ErrorsExitWithCode2AndSayWhy) {
    write("good.reg", "REGEDIT4\n[HKEY_LOCAL_MACHINE\\A]\n\"v\"=\"1\"\n");
    ASSERT_EQ(tool({"import", path("good.reg")}).exitCode, 0);
    const std::string before = tool({"export", "--utf8"}).out;
    write("bad.reg", "REGEDIT4\n[-HKEY_LOCAL_MACHINE\\A]\n[HKEY_LOCAL_MACHINE\\B]\n\"w\"=dword:123456789\n");

    struct Case {
        std::vector<std::string> args;
        std::string reason;
    };
    const std::vector<Case> cases = {
        {{"import", path("bad.reg")}, "bad.reg: line 4: dword: has more than 8 hex digits; nothing was imported"},
        {{"import"}, "import needs exactly one FILE"},
        {{"import", path("a.reg"), path("b.reg")}, "import needs exactly one FILE"},
        {{"import", path("missing.reg")}, "cannot read"},
        {{"export", "--key", "HKEY_LOCAL_MACHINE\\Nowhere"}, "HKEY_LOCAL_MACHINE\\Nowhere does not exist"},
        {{"export", "--key", "HKEY_USERS\\A"}, "only HKEY_LOCAL_MACHINE"},
        {{"export", "--key"}, "needs a value"},
        {{"export", path("a.reg"), path("b.reg")}, "at most one FILE"},
        {{"export", "--bogus"}, "unknown option --bogus"},
        {{"export", path("no-such-dir/out.reg")}, "cannot write"},
    };
    for (const Case& c : cases) {
        const ToolRun result = tool(c.args);
        EXPECT_EQ(result.exitCode, 2) << c.reason;
        EXPECT_NE(result.err.find(c.reason), std::string::npos) << "wanted: " << c.reason << "\ngot: " << result.err;
        EXPECT_TRUE(result.out.empty()) << c.reason;
    }
    EXPECT_EQ(tool({"export", "--utf8"}).out, before);
}

}  // namespace
