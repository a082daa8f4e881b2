// Store paths, import files and interface numbers that are not what they
// seem: each gets a clear error (or a plain answer), never a fallback, a
// crash or a loop without end.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tool_folder.h"

namespace {

using braxcfg::test::runToolAs;
using braxcfg::test::ToolOptions;

using BadPathsTool = braxcfg::test::ToolFolder;

TEST_F(BadPathsTool, AreRefusedOrTakenLiterally) {
    const std::string& dir = dir_;
    const std::string store = this->store();
    std::filesystem::create_directories(dir + "/folder");
    std::ofstream(dir + "/big.reg").close();
    std::filesystem::resize_file(dir + "/big.reg", (std::uintmax_t{1} << 30) + 1);  // sparse
    std::ofstream(dir + "/max.reg") << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion"
                                       "\\INTF2147483647]\n\"VISAName\"=\"GPIB7\"\n\"VISAIntfType\"=\"GPIB\"\n";
    ASSERT_EQ(tool({"import", dir + "/max.reg"}).exitCode, 0);
    const std::string uri = "file:bad-paths-" + std::to_string(::getpid()) + ".db?mode=memory";  // in the working directory

    const struct {
        const char* label;
        std::vector<std::string> args;
        std::vector<std::pair<std::string, std::string>> env;
        int exit;
        std::string output;  // part of what the tool prints
    } cases[] = {
        {"empty --store", {"--store", "", "interfaces"}, {}, 2, "option --store needs a file name"},
        {"empty BRAXCFG_STORE", {"interfaces"}, {{"BRAXCFG_STORE", ""}}, 2, "BRAXCFG_STORE is set but empty"},
        {"import of a folder", {"--store", store, "import", dir + "/folder"}, {}, 2, "it is a directory"},
        {"import of a device", {"--store", store, "import", "/dev/zero"}, {}, 2, "it is a device, not a file"},
        {"import over 1 GiB", {"--store", store, "import", dir + "/big.reg"}, {}, 2, "larger than 1 GiB"},
        {"relative BRAXCFG_PLUGIN", {"--store", store, "valid", "INTF2147483647"}, {{"BRAXCFG_PLUGIN", "lib/libbraxcfg.so"}},
         2, "BRAXCFG_PLUGIN must be an absolute path"},
        {"interface INTF2147483647", {"--store", store, "interfaces"}, {}, 0, "INTF2147483647 GPIB7"},
        {"resource on INTF2147483647", {"--store", store, "rsrc", "canon", "GPIB7::5"}, {}, 0, "GPIB7::5::INSTR"},
        {"a URI is a file name", {"--store", uri, "import", dir + "/max.reg"}, {}, 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        ToolOptions options;
        options.env = c.env;
        const auto run = runToolAs(c.args, options);
        EXPECT_EQ(run.exitCode, c.exit) << (run.out + run.err);
        EXPECT_NE((run.out + run.err).find(c.output), std::string::npos) << (run.out + run.err);
    }
    EXPECT_TRUE(std::filesystem::is_regular_file(uri)) << "the URI's options were obeyed";
    for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(uri + suffix);
}

}  // namespace
