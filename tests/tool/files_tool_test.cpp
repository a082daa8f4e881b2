// The files the tool reads and writes, run as a child process on a store
// file of its own.
//
// braxcfg import / export, and the text edges: the command line, .reg
// files and listings. The .reg grammar and its round trip are the regfile
// layer's tests.
//
// The store file and the files the tool is given: paths, import files and
// interface numbers that are not what they seem each get a clear error (or
// a plain answer), never a fallback, a crash or a loop without end; commands
// that only read leave the store as they found it: a missing store is an
// error, not a new file, and an existing one is not written, not even the
// product key words a first use otherwise records.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "store_files.h"
#include "tool_folder.h"

namespace braxcfg::test {
namespace {

using RegfileTool = ToolFolder;
using StorePathsTool = ToolFolder;

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

TEST_F(StorePathsTool, BadPathsAreRefusedOrTakenLiterally) {
    std::filesystem::create_directories(path("folder"));
    std::filesystem::resize_file(write("big.reg", ""), (std::uintmax_t{1} << 30) + 1);  // sparse
    ASSERT_EQ(tool({"import", write("max.reg", "REGEDIT4\n\n[" + kProduct + "\\INTF2147483647]\n"
                                               "\"VISAName\"=\"GPIB7\"\n\"VISAIntfType\"=\"GPIB\"\n")}).exitCode, 0);
    // A URI is a file name, in the working directory.
    const std::string uri = "file:bad-paths-" + std::to_string(::getpid()) + ".db?mode=memory";
    const struct {
        std::vector<std::string> args;
        std::vector<std::pair<std::string, std::string>> env;
        int exit;
        std::string output;  // part of what the tool prints
    } cases[] = {
        {{"interfaces"}, {{"BRAXCFG_STORE", ""}}, 2, "BRAXCFG_STORE is set but empty"},
        {{"--store", store(), "import", path("folder")}, {}, 2, "it is a directory"},
        {{"--store", store(), "import", "/dev/zero"}, {}, 2, "it is a device, not a file"},
        {{"--store", store(), "import", path("big.reg")}, {}, 2, "larger than 1 GiB"},
        {{"--store", store(), "valid", "INTF2147483647"}, {{"BRAXCFG_PLUGIN", "lib/libbraxcfg.so"}}, 2,
         "BRAXCFG_PLUGIN must be an absolute path"},
        {{"--store", store(), "interfaces"}, {}, 0, "INTF2147483647 GPIB7"},
        {{"--store", store(), "rsrc", "canon", "GPIB7::5"}, {}, 0, "GPIB7::5::INSTR"},
        {{"--store", uri, "import", path("max.reg")}, {}, 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        ToolOptions options;
        options.env = c.env;
        const auto run = runToolAs(c.args, options);
        EXPECT_EQ(run.exitCode, c.exit) << (run.out + run.err);
        EXPECT_NE((run.out + run.err).find(c.output), std::string::npos) << (run.out + run.err);
    }
    EXPECT_TRUE(std::filesystem::is_regular_file(uri)) << "the URI's options were obeyed";
    removeStoreFiles(uri);
}

TEST_F(StorePathsTool, ReadingNeitherMakesNorWritesTheStore) {
    const TempStore made;  // new: no product key words yet
    const std::string& fresh = made.path();
    // The store file and its log, byte for byte (the shared-memory index is every reader's to change).
    const auto bytes = [&] { return readFile(fresh) + "|" + readFile(fresh + "-wal"); };
    const std::string before = bytes();
    for (const auto& args : std::vector<std::vector<std::string>>{
             {"interfaces"}, {"devices", "INTF0"}, {"aliases"}, {"rsrc", "canon", "GPIB0::7"},
             {"rsrc", "dump", "GPIB0::7"}, {"export"}, {"resolve", "GPIB0::7"}}) {
        SCOPED_TRACE(testing::PrintToString(args));
        const ToolRun missing = tool(args);
        EXPECT_EQ(missing.exitCode, 2);
        EXPECT_EQ(missing.out + missing.err, "braxcfg: cannot use the store " + store() + ": " + store() +
                                                 ": no such file (a command that only reads does not make one)\n");
        EXPECT_FALSE(std::filesystem::exists(store()));
        // The store opened and was read (the empty store has no INTF0: devices says so).
        EXPECT_EQ(runToolOn(fresh, args).err.find("cannot use the store"), std::string::npos);
        EXPECT_EQ(bytes(), before);
    }
}

}  // namespace
}  // namespace braxcfg::test
