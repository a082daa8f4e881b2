// Several processes changing one store file at the same moment through
// transactions that read, then write: every change is kept and the file
// stays sound. Plain writes from several processes are the load test's
// (tests/tool), with the tool and the plug-in as the writers.
#include <gtest/gtest.h>

#include <string>

#include "platform/sqlite_db.h"
#include "platform/store.h"
#include "store_test_access.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

constexpr int kWriters = 3;
constexpr std::uint32_t kRounds = 150;

// One writer: kRounds transactions each adding 1 to Counter, a transaction
// refused as busy tried again a few times.
std::string addToCounter(const std::string& path) {
    if (openStore(path).state != StoreOpenState::Open) return "not opened";
    StoreBackend& store = currentStore();
    const auto add = [&] {
        StoreTransaction scope;
        if (!scope.active()) return false;
        std::uint32_t counter = 0, size = 4;
        const RegResult rc = store.queryValue(kLocalMachine, "Counter", nullptr, test::bytesOf(&counter), &size);
        ++counter;
        return (rc == kErrorSuccess || rc == kErrorFileNotFound) &&
               store.setValue(kLocalMachine, "Counter", kRegDword, test::bytesOf(&counter), 4) == kErrorSuccess &&
               scope.commit();
    };
    for (std::uint32_t i = 0; i < kRounds; ++i) {
        int tries = 0;
        while (!add())
            if (++tries == 4) return "failed at " + std::to_string(i);
    }
    return "";
}

TEST(StoreProcesses, ConcurrentReadModifyWritesLoseNothing) {
    test::TempStore temp;
    closeStore();
    std::vector<test::Child> writers;
    for (int id = 0; id < kWriters; ++id)
        writers.push_back(test::startChild([&] { return addToCounter(temp.path()); }));
    for (const auto& writer : writers) EXPECT_EQ(test::finishChild(writer), "");
    temp.reopen();
    const std::uint32_t expected = kWriters * kRounds;
    EXPECT_EQ(test::valueBytes(currentStore(), kLocalMachine, "Counter"),
              std::string(reinterpret_cast<const char*>(&expected), 4));
    closeStore();
    SqliteConnection check;
    ASSERT_EQ(check.open(temp.path(), SQLITE_OPEN_READONLY), SQLITE_OK);
    StatementUse integrity(check.cached("PRAGMA integrity_check"));
    ASSERT_EQ(integrity->step(), SQLITE_ROW);
    EXPECT_EQ(integrity->columnBlob(0), "ok");
}

}  // namespace
}  // namespace braxcfg::platform
