// Commands that only read leave the store as they found it: a missing store
// is an error, not a new file, and an existing one is not written, not even
// the product key words a first use otherwise records.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "store_files.h"
#include "temp_store.h"
#include "file_bytes.h"
#include "tool_run.h"

namespace braxcfg::test {
namespace {

const std::vector<std::vector<std::string>> kReadCommands = {
    {"interfaces"}, {"devices", "INTF0"}, {"aliases"}, {"rsrc", "canon", "GPIB0::7"},
    {"rsrc", "dump", "GPIB0::7"}, {"export"}, {"resolve", "GPIB0::7"},
};

// The store file and its log, byte for byte (the shared-memory index is
// every reader's to change).
std::string storeBytes(const std::string& path) {
    std::string bytes;
    for (const char* suffix : {"", "-wal"}) bytes += std::string(suffix) + ":" + readFile(path + suffix);
    return bytes;
}

TEST(ReadOnlyTool, AMissingStoreIsAnErrorAndStaysMissing) {
    const ScratchStoreFiles store(testOutputDir("tool") + "/missing-" + std::to_string(getpid()) + ".db");
    for (const auto& args : kReadCommands) {
        SCOPED_TRACE(testing::PrintToString(args));
        const ToolRun run = runToolOn(store.path(), args);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "braxcfg: cannot use the store " + store.path() + ": " + store.path() +
                               ": no such file (a command that only reads does not make one)\n");
        EXPECT_FALSE(std::filesystem::exists(store.path()));
    }
    // A change makes the store, as before.
    EXPECT_EQ(runToolOn(store.path(), {"aliases", "set", "scope1", "--resource", "GPIB0::7"}).exitCode, 0);
    EXPECT_EQ(runToolOn(store.path(), {"resolve", "scope1"}).out, "GPIB0::7\n");
}

TEST(ReadOnlyTool, ReadingWritesNothingNotEvenTheProductWords) {
    const TempStore store;  // new: no product key words yet
    const std::string before = storeBytes(store.path());
    for (const auto& args : kReadCommands) {
        SCOPED_TRACE(testing::PrintToString(args));
        // The store opened and was read (the empty store has no INTF0: devices says so).
        EXPECT_EQ(runToolOn(store.path(), args).err.find("cannot use the store"), std::string::npos);
        EXPECT_EQ(storeBytes(store.path()), before);
    }
    const ToolRun exported = runToolOn(store.path(), {"export", "--utf8"});
    EXPECT_EQ(exported.out.find("MfgName"), std::string::npos) << exported.out;
    // The first change records them.
    ASSERT_EQ(runToolOn(store.path(), {"aliases", "set", "scope1", "--resource", "GPIB0::7"}).exitCode, 0);
    EXPECT_NE(runToolOn(store.path(), {"export", "--utf8"}).out.find("\"MfgName\"=\"Tolvane\""), std::string::npos);
}

}  // namespace
}  // namespace braxcfg::test
