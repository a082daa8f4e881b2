// The store shared with other processes, all of them real.
//
// Under real use: a host process that keeps the plug-in loaded for the
// whole run, two tool processes writing in a loop (device entries, and
// imports that make the file grow, so that the log is checkpointed often)
// and one reading through the plug-in. No healthy store is ever refused, no
// answer turns false, and every add that exited 0 is there at the end.
// BRAXCFG_LOAD_SECONDS sets the length of the run (default 30).
//
// Busy: writing commands while another process holds the store's write
// lock. Longer than the bounded wait, each says the store is busy, exits 2
// and writes nothing; released within the wait, a clear of a long device
// list waits and then runs whole.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <mutex>
#include <thread>

#include "platform/sqlite_db.h"
#include "store_write_lock.h"
#include "tool_folder.h"

namespace {

using braxcfg::test::ToolRun;
using Clock = std::chrono::steady_clock;

int runSeconds() {
    const char* text = std::getenv("BRAXCFG_LOAD_SECONDS");
    return text != nullptr && std::atoi(text) > 0 ? std::atoi(text) : 30;
}

// The host: loads the plug-in once and asks it about INTF0 until the end;
// its exit code is the number of answers that were not 1 (at most 100).
pid_t startHost(const std::string& store, Clock::time_point end) {
    const pid_t pid = ::fork();
    if (pid != 0) return pid;
    ::setenv("BRAXCFG_STORE", store.c_str(), 1);
    void* plugin = ::dlopen(BRAXCFG_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
    auto* valid = plugin ? reinterpret_cast<int (*)(const char*)>(::dlsym(plugin, "isValidVisaIntf")) : nullptr;
    if (valid == nullptr) ::_exit(101);
    int wrong = 0;
    while (Clock::now() < end) {
        if (valid("INTF0") != 1) ++wrong;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    ::_exit(wrong > 100 ? 100 : wrong);
}

// 40 keys of 1 KB each below SOFTWARE\<name>.
std::string bulkFile(const std::string& name) {
    std::string text = "REGEDIT4\n";
    for (int i = 0; i < 40; ++i)
        text += "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\" + name + "\\K" + std::to_string(i) + "]\n\"v\"=\"" +
                std::string(1000, 'x') + "\"\n";
    return text;
}

using StoreUnderLoad = braxcfg::test::ToolFolder;

TEST_F(StoreUnderLoad, NoRefusalNoLossWithAHostAndTwoWriters) {
    ASSERT_EQ(tool({"interfaces", "add", "GPIB"}).exitCode, 0);  // INTF0, set up

    const auto end = Clock::now() + std::chrono::seconds(runSeconds());
    const pid_t host = startHost(store(), end);
    ASSERT_GT(host, 0);
    std::atomic<int> refusals{0}, reads{0};
    std::string firstRefusal;
    std::mutex refusalMutex;
    const auto refused = [&](const std::string& what, const ToolRun& run) {
        std::lock_guard lock(refusalMutex);
        if (refusals++ == 0) firstRefusal = what + ": " + run.out + run.err;
    };
    std::vector<std::vector<std::string>> added(2);
    std::atomic<int> imported{0};
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 2; ++writer)
        threads.emplace_back([&, writer] {
            const std::string bulk = "bulk" + std::to_string(writer) + ".reg";
            for (int n = 0; Clock::now() < end; ++n) {
                const std::string device = "GPIB0::" + std::to_string(writer * 100000 + n);
                const ToolRun run = tool({"devices", "INTF0", "add", device});
                run.exitCode == 0 ? added[writer].push_back(device) : refused("add " + device, run);
                const ToolRun load = tool({"import", write(bulk, bulkFile("Bulk" + device.substr(7)))});
                load.exitCode == 0 ? void(++imported) : refused("import", load);
            }
        });
    threads.emplace_back([&] {
        while (Clock::now() < end) {
            for (const auto& args : {std::vector<std::string>{"valid", "INTF0"}, {"interfaces"}}) {
                const ToolRun run = tool(args);
                ++reads;
                if (run.exitCode != 0 || (args[0] == "valid" && (run.out + run.err) != "1\n")) refused(args[0], run);
            }
        }
    });
    for (auto& thread : threads) thread.join();
    int status = -1;
    ASSERT_EQ(::waitpid(host, &status, 0), host);

    const std::string listed = "\n" + tool({"devices", "INTF0"}).out;
    std::size_t missing = 0;
    for (const auto& devices : added)
        for (const std::string& device : devices) missing += listed.find("\n" + device + "\n") == std::string::npos;
    braxcfg::platform::SqliteConnection db;
    ASSERT_EQ(db.open(store(), SQLITE_OPEN_READONLY), SQLITE_OK);
    const auto bulkKeys = db.queryInt("SELECT count(*) FROM keys WHERE CAST(name AS TEXT) LIKE 'Bulk%'", -1);
    std::cout << "load run: " << runSeconds() << " s, adds: " << added[0].size() + added[1].size() << ", imports: "
              << imported << ", reads: " << reads << ", refusals: " << refusals << ", missing: " << missing << "\n";
    EXPECT_EQ(refusals, 0) << firstRefusal;
    EXPECT_EQ(missing, 0u);
    EXPECT_EQ(bulkKeys, imported);
    EXPECT_GT(added[0].size() + added[1].size(), 0u);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the host got answers other than 1";
}

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
