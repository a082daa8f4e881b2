// Writing commands while another process holds the store's write lock:
// longer than the bounded wait, each says the store is busy, exits 2 and
// writes nothing; released within the wait, a clear of a long device list
// waits and then runs whole.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

#include "store_write_lock.h"
#include "tool_folder.h"

namespace {

using braxcfg::test::ToolRun;

const std::string kIntf0 = "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion\\INTF0]\n"
                           "\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n";

using StoreBusyTool = braxcfg::test::ToolFolder;

TEST_F(StoreBusyTool, EveryWritingCommandRefusesAndWritesNothing) {
    ASSERT_EQ(tool({"import", write("base.reg", kIntf0)}).exitCode, 0);
    ASSERT_EQ(tool({"interfaces", "add", "GPIB"}).exitCode, 0);  // INTF1, set up
    ASSERT_EQ(tool({"devices", "INTF1", "add", "GPIB1::5"}).exitCode, 0);
    const std::string more = write("more.reg", "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\More]\n");
    const std::string before = tool({"export", "--utf8"}).out;

    const std::vector<std::vector<std::string>> commands = {
        {"devices", "INTF1", "add", "GPIB1::9"}, {"devices", "INTF1", "clear"}, {"setup", "INTF0"},
        {"end-pass"}, {"import", more}, {"interfaces", "add", "USB"}, {"interfaces", "remove", "INTF1"},
    };
    braxcfg::test::StoreWriteLock held(store());
    ASSERT_TRUE(held.held());
    std::vector<std::future<ToolRun>> runs;
    for (const auto& command : commands) runs.push_back(std::async(std::launch::async, [&] { return tool(command); }));
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const ToolRun run = runs[i].get();
        SCOPED_TRACE(testing::PrintToString(commands[i]));
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_NE((run.out + run.err).find("the store " + store() + " is busy (another program is changing it), try "
                                           "again; nothing was changed"), std::string::npos) << run.out + run.err;
    }
    held.release();
    EXPECT_EQ(tool({"export", "--utf8"}).out, before) << "a refused command wrote something";
}

TEST_F(StoreBusyTool, AClearWaitsForALockReleasedWithinTheBoundedWait) {
    std::string reg = kIntf0;
    for (int i = 0; i < 20000; ++i)
        reg += "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion\\INTF0\\VISADev\\GPIB0::" +
               std::to_string(i) + "]\n";
    ASSERT_EQ(tool({"import", write("long.reg", reg)}).exitCode, 0);
    braxcfg::test::StoreWriteLock held(store());
    ASSERT_TRUE(held.held());
    const auto release = std::async(std::launch::async, [&] {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        held.release();
    });
    const ToolRun clear = tool({"devices", "INTF0", "clear"});
    EXPECT_EQ(clear.exitCode, 0) << (clear.out + clear.err);
    EXPECT_EQ(tool({"devices", "INTF0"}).out, "No device entries on INTF0 (GPIB0).\n");
}

}  // namespace
