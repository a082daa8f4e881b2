// Several processes writing one store file at the same moment: nothing is
// lost, nothing is corrupted, and every refusal is reported to the caller.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/sqlite_db.h"
#include "platform/store.h"
#include "store_helper_process.h"
#include "store_test_access.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

using test::KeyHandle;
using test::subkeyNames;
using test::valueBytes;

std::uint32_t dwordValue(StoreBackend& store, HKey key, const char* name) {
    const std::string bytes = valueBytes(store, key, name);
    std::uint32_t value = 0;
    if (bytes.size() == sizeof value) std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

TEST(StoreProcesses, ConcurrentWritersLoseNothing) {
    constexpr int kWriters = 3;
    constexpr int kKeysEach = 150;
    test::TempStore temp;
    StoreBackend& store = currentStore();

    std::vector<test::HelperRun> runs;
    for (int id = 0; id < kWriters; ++id)
        runs.push_back(test::startHelper({"write", temp.path(), std::to_string(id), std::to_string(kKeysEach)}));
    // Read while they write: enumeration must never fail or see a half key.
    for (int pass = 0; pass < 50; ++pass) {
        KeyHandle writers(store, test::createKey(store, "Writers"));
        for (const auto& name : subkeyNames(store, writers)) EXPECT_EQ(name.rfind("W", 0), 0u) << name;
    }
    for (int id = 0; id < kWriters; ++id) {
        const test::HelperResult result = test::finishHelper(runs[id]);
        EXPECT_EQ(result.exitCode, 0) << "writer " << id << ": " << result.output;
    }

    temp.reopen();
    StoreBackend& after = currentStore();
    KeyHandle writers(after, test::createKey(after, "Writers"));
    EXPECT_EQ(dwordValue(after, writers, "Counter"), std::uint32_t{kWriters * kKeysEach})
        << "every read-modify-write transaction kept";
    for (int id = 0; id < kWriters; ++id) {
        KeyHandle mine(after, test::createKey(after, "W" + std::to_string(id), writers));
        EXPECT_EQ(subkeyNames(after, mine).size(), std::size_t{kKeysEach});
        for (int i = 0; i < kKeysEach; i += 37) {
            KeyHandle key(after, test::createKey(after, "K" + std::to_string(i), mine));
            EXPECT_EQ(valueBytes(after, key, "a"), std::to_string(i) + '\0');
            EXPECT_EQ(dwordValue(after, key, "b"), static_cast<std::uint32_t>(i));
        }
    }

    closeStore();
    SqliteConnection check;
    ASSERT_EQ(check.open(temp.path(), SQLITE_OPEN_READONLY), SQLITE_OK);
    StatementUse integrity(check.cached("PRAGMA integrity_check"));
    ASSERT_EQ(integrity->step(), SQLITE_ROW);
    EXPECT_EQ(integrity->columnBlob(0), "ok");
}

}  // namespace
}  // namespace braxcfg::platform
