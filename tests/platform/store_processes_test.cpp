// Several processes writing one store file at the same moment: nothing is
// lost, nothing is corrupted, and every refusal is reported to the caller.
#include <gtest/gtest.h>

#include <string>

#include "platform/sqlite_db.h"
#include "platform/store.h"
#include "store_test_access.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

using test::bytesOf;
using test::createKey;
using test::valueBytes;

constexpr int kWriters = 3;
constexpr std::uint32_t kKeysEach = 150;

std::string dword(std::uint32_t value) { return std::string(reinterpret_cast<const char*>(&value), 4); }

// One writer: keys Writers\W<id>\K<i> with two values, each its own
// operation, and after each key one transaction adding 1 to Writers\Counter.
// A write refused as busy is tried again a few times.
std::string writeKeys(const std::string& path, int id) {
    if (openStore(path).state != StoreOpenState::Open) return "not opened";
    StoreBackend& store = currentStore();
    const auto attempt = [](const auto& write) {
        RegResult rc = kErrorBusy;
        for (int i = 0; i < 4 && rc == kErrorBusy; ++i) rc = write();
        return rc == kErrorSuccess;
    };
    for (std::uint32_t i = 0; i < kKeysEach; ++i) {
        const std::string text = std::to_string(i);
        const auto writeKey = [&] {
            HKey key = kNoKey;
            const std::string keyPath = "Writers\\W" + std::to_string(id) + "\\K" + text;
            RegResult rc = store.createKey(kLocalMachine, keyPath.c_str(), kKeyAllAccess, &key, nullptr);
            if (rc == kErrorSuccess) rc = test::setString(store, key, "a", text);
            return rc != kErrorSuccess ? rc : store.setValue(key, "b", kRegDword, bytesOf(&i), 4);
        };
        const auto count = [&] {
            StoreTransaction scope;
            if (!scope.active()) return kErrorBusy;
            const HKey key = createKey(store, "Writers");
            std::uint32_t counter = 0, size = 4;
            RegResult rc = store.queryValue(key, "Counter", nullptr, bytesOf(&counter), &size);
            ++counter;
            if (rc == kErrorSuccess || rc == kErrorFileNotFound) rc = store.setValue(key, "Counter", kRegDword, bytesOf(&counter), 4);
            return rc != kErrorSuccess ? rc : scope.commit() ? kErrorSuccess : kErrorBusy;
        };
        if (!attempt(writeKey) || !attempt(count)) return "writer " + std::to_string(id) + " failed at " + text;
    }
    return "";
}

TEST(StoreProcesses, ConcurrentWritersLoseNothing) {
    test::TempStore temp;
    closeStore();
    std::vector<test::Child> writers;
    for (int id = 0; id < kWriters; ++id) writers.push_back(test::startChild([&] { return writeKeys(temp.path(), id); }));
    temp.reopen();
    StoreBackend& after = currentStore();
    const HKey all = createKey(after, "Writers");
    // Read while they write: enumeration must never fail or see a half key.
    for (int pass = 0; pass < 50; ++pass)
        for (const auto& name : test::subkeyNames(after, all)) EXPECT_EQ(name.rfind("W", 0), 0u) << name;
    for (const auto& writer : writers) EXPECT_EQ(test::finishChild(writer), "");
    // Then read through the same connection: nothing it cached is stale.
    EXPECT_EQ(valueBytes(after, all, "Counter"), dword(kWriters * kKeysEach)) << "every read-modify-write kept";
    for (int id = 0; id < kWriters; ++id) {
        const HKey mine = createKey(after, "W" + std::to_string(id), all);
        EXPECT_EQ(test::subkeyNames(after, mine).size(), std::size_t{kKeysEach});
        for (std::uint32_t i = 0; i < kKeysEach; i += 37) {
            const HKey key = createKey(after, "K" + std::to_string(i), mine);
            EXPECT_EQ(valueBytes(after, key, "a") + valueBytes(after, key, "b"), std::to_string(i) + '\0' + dword(i));
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
