// Every store operation that rewrites many keys is one transaction: a
// process killed at any point of it leaves the store as it was before or as
// it is after, never half-way. Children are killed with SIGKILL at random
// moments of a large rewrite and the store is read back.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <regex>
#include <thread>

#include "platform/store.h"
#include "store/config_store.h"
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::store {
namespace {

constexpr int kSize = 400;  // device entries the rename rewrites

// kSize copies of .reg text, "#" standing for the copy's number.
std::string repeated(const std::string& pattern) {
    std::string out;
    for (int i = 0; i < kSize; ++i) out += std::regex_replace(pattern, std::regex("#"), std::to_string(i));
    return out;
}

// The store's own operations all run in rewriteList; renaming, the largest,
// stands for them. The alias list's commit is one StoreTransaction, whose
// killed writer is the conformance suite's.
const std::string kPrepared =
    "[INTF0]\n\"VISAName\"=\"GPIB0\"\n" + repeated("[INTF0\\VISADev\\GPIB1::#\\GPIB1::#::INSTR]\n\"Driver\"=\"I\"\n");
void renameInterface0() { ConfigStore().RenameIntfEntries("INTF0"); }

TEST(KilledMidway, LeavesTheStoreAsBeforeOrAsAfter) {
    test::TempStore store;
    const auto prepared = [&] {  // the operation's starting content in a fresh store file
        platform::closeStore();
        test::removeTestStore(store.path());
        store.reopen();
        test::putTree(kPrepared);
        return test::treeText("");
    };
    const std::string before = prepared();
    const auto started = std::chrono::steady_clock::now();
    renameInterface0();
    const auto micros =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - started).count();
    const std::string after = test::treeText("");
    ASSERT_NE(before, after);
    std::mt19937 random(12345);
    for (int trial = 0; trial < 6; ++trial) {
        ASSERT_EQ(prepared(), before);
        platform::closeStore();
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            platform::openStore(store.path());
            renameInterface0();
            _exit(0);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % (micros * 3 / 2 + 1)));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        store.reopen();
        const std::string found = test::treeText("");
        ASSERT_TRUE(found == before || found == after) << "trial " << trial << ":\n" << found;
    }
}

}  // namespace
}  // namespace braxcfg::store
