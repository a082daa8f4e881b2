// Writing commands while another process holds the store's write lock for
// longer than the bounded wait: each says the store is busy, exits 2 and
// writes nothing; a clear of a long device list is all or nothing.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <thread>

#include "platform/sqlite_db.h"
#include "store_write_lock.h"
#include "tool_folder.h"

namespace {

using braxcfg::test::runTool;
using braxcfg::test::ToolRun;

const std::string kProduct = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion";

class StoreBusyTool : public braxcfg::test::ToolFolder {
protected:
    std::string snapshot() const { return tool({"export", "--utf8"}).out; }
};

TEST_F(StoreBusyTool, EveryWritingCommandRefusesAndWritesNothing) {
    const std::string base = write("base.reg", "REGEDIT4\n\n" + kProduct + "\\INTF0]\n\"VISAName\"=\"GPIB0\"\n"
                                   "\"VISAIntfType\"=\"GPIB\"\n\n" + kProduct + "\\INTF1]\n\"VISAName\"=\"GPIB1\"\n"
                                   "\"VISAIntfType\"=\"GPIB\"\n");
    ASSERT_EQ(tool({"import", base}).exitCode, 0);
    ASSERT_EQ(tool({"setup", "INTF0"}).exitCode, 0);
    ASSERT_EQ(tool({"devices", "INTF0", "add", "GPIB0::5"}).exitCode, 0);
    const std::string more = write("more.reg", "REGEDIT4\n\n" + kProduct + "\\INTF2]\n\"VISAName\"=\"GPIB2\"\n");
    const std::string before = snapshot();

    const std::vector<std::vector<std::string>> commands = {
        {"devices", "INTF0", "add", "GPIB0::9"}, {"devices", "INTF0", "clear"}, {"setup", "INTF1"},
        {"end-pass"},                            {"import", more},
    };
    braxcfg::test::StoreWriteLock held(store());
    ASSERT_TRUE(held.held());
    std::vector<std::future<ToolRun>> runs;
    for (const auto& command : commands) runs.push_back(std::async(std::launch::async, [&] { return tool(command); }));
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const ToolRun run = runs[i].get();
        SCOPED_TRACE(commands[i][0] + " " + (commands[i].size() > 1 ? commands[i][1] : ""));
        EXPECT_EQ(run.exitCode, 2) << (run.out + run.err);
        EXPECT_NE((run.out + run.err).find("the store " + store() + " is busy"), std::string::npos) << (run.out + run.err);
        EXPECT_NE((run.out + run.err).find("try again"), std::string::npos) << (run.out + run.err);
    }
    held.release();
    EXPECT_EQ(snapshot(), before) << "a refused command wrote something";
}

TEST_F(StoreBusyTool, AContendedClearOfALongListIsAllOrNothing) {
    constexpr int kDevices = 20000;
    std::string reg = "REGEDIT4\n\n" + kProduct + "\\INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n";
    for (int i = 0; i < kDevices; ++i) reg += "\n" + kProduct + "\\INTF0\\VISADev\\GPIB0::" + std::to_string(i) + "]\n";
    const std::string file = write("long.reg", reg);
    // seconds the lock is held, with the clear started at once (0: for the
    // whole command): longer than the bounded wait refuses it whole, shorter
    // lets it run whole.
    const struct { int heldSeconds; int exit; int devices; } cases[] = {
        {0, 2, kDevices},
        {1, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.heldSeconds);
        ASSERT_EQ(tool({"import", file}).exitCode, 0);
        const ToolRun clear = [&] {
            braxcfg::test::StoreWriteLock held(store());
            EXPECT_TRUE(held.held());
            const auto timer = std::async(std::launch::async, [&] {
                if (c.heldSeconds == 0) return;
                std::this_thread::sleep_for(std::chrono::seconds(c.heldSeconds));
                held.release();
            });
            return tool({"devices", "INTF0", "clear"});
        }();
        EXPECT_EQ(clear.exitCode, c.exit) << (clear.out + clear.err);
        braxcfg::platform::SqliteConnection db;
        ASSERT_EQ(db.open(store(), SQLITE_OPEN_READONLY), SQLITE_OK);
        EXPECT_EQ(db.queryInt("SELECT count(*) FROM keys WHERE parent = "
                              "(SELECT id FROM keys WHERE name = CAST('VISADev' AS BLOB))", -1),
                  c.devices);
    }
}

}  // namespace
