// Commands that only read leave the store as they found it: a missing store
// is an error, not a new file, and an existing one is not written, not even
// the product key words a first use otherwise records.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tool_folder.h"

namespace braxcfg::test {
namespace {

using ReadOnlyTool = ToolFolder;

TEST_F(ReadOnlyTool, ReadingNeitherMakesNorWritesTheStore) {
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
    EXPECT_EQ(runToolOn(fresh, {"export", "--utf8"}).out.find("MfgName"), std::string::npos);
    // The first change makes the store, and records the product words.
    ASSERT_EQ(tool({"aliases", "set", "scope1", "--resource", "GPIB0::7"}).exitCode, 0);
    EXPECT_NE(tool({"export", "--utf8"}).out.find("\"MfgName\"=\"Tolvane\""), std::string::npos);
}

}  // namespace
}  // namespace braxcfg::test
