// The store file and the files the tool is given: paths, import files and
// interface numbers that are not what they seem each get a clear error (or
// a plain answer), never a fallback, a crash or a loop without end; commands
// that only read leave the store as they found it: a missing store is an
// error, not a new file, and an existing one is not written, not even the
// product key words a first use otherwise records.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "store_files.h"
#include "tool_folder.h"

namespace braxcfg::test {
namespace {

using StorePathsTool = ToolFolder;

TEST_F(StorePathsTool, BadPathsAreRefusedOrTakenLiterally) {
    std::filesystem::create_directories(path("folder"));
    std::filesystem::resize_file(write("big.reg", ""), (std::uintmax_t{1} << 30) + 1);  // sparse
    ASSERT_EQ(tool({"import", write("max.reg", "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\"
                                               "CurrentVersion\\INTF2147483647]\n\"VISAName\"=\"GPIB7\"\n"
                                               "\"VISAIntfType\"=\"GPIB\"\n")}).exitCode, 0);
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
