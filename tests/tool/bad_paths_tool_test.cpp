// Store paths, import files and interface numbers that are not what they
// seem: each gets a clear error (or a plain answer), never a fallback, a
// crash or a loop without end.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "store_files.h"
#include "tool_folder.h"

namespace {

using BadPathsTool = braxcfg::test::ToolFolder;

TEST_F(BadPathsTool, AreRefusedOrTakenLiterally) {
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
        braxcfg::test::ToolOptions options;
        options.env = c.env;
        const auto run = braxcfg::test::runToolAs(c.args, options);
        EXPECT_EQ(run.exitCode, c.exit) << (run.out + run.err);
        EXPECT_NE((run.out + run.err).find(c.output), std::string::npos) << (run.out + run.err);
    }
    EXPECT_TRUE(std::filesystem::is_regular_file(uri)) << "the URI's options were obeyed";
    braxcfg::test::removeStoreFiles(uri);
}

}  // namespace
