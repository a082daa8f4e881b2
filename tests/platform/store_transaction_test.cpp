// The SQLite store's connections: what another connection sees of a
// transaction while it is open, the subkey lists kept between calls, and
// handles on keys a rollback undid. Nesting and rollback themselves are
// decided by the conformance suite.
#include <gtest/gtest.h>

#include "platform/debug_output.h"
#include "platform/sqlite_store_file.h"
#include "platform/store.h"
#include "store_access.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

using test::createKey;
using test::setString;
using test::subkeyNames;
using Names = std::vector<std::string>;

// The store of `temp` opened a second time, standing for another process.
SqliteStoreOpening otherConnection(const test::TempStore& temp) {
    SqliteStoreOpening opening = openSqliteStore(temp.path());
    EXPECT_TRUE(opening.backend) << opening.status.error;
    return opening;
}

TEST(StoreConnections, OthersWaitForAnOpenTransactionAndSayWhy) {
    test::TempStore temp;
    SqliteStoreOpening opening = otherConnection(temp);
    StoreBackend& other = *opening.backend;
    StoreTransaction held;
    ASSERT_TRUE(held.active());
    createKey(currentStore(), "Pending");
    EXPECT_EQ(subkeyNames(other, kLocalMachine), Names{}) << "uncommitted work is invisible to others";

    DebugCapture debug;
    EXPECT_EQ(setString(other, kLocalMachine, "blocked", "x"), kErrorBusy);
    EXPECT_NE(debug.text().find("Configuration store: "), std::string::npos) << "the failure is reported";
    {
        // A list rewrite learns why its transaction could not start.
        StoreTransaction blocked(other);
        EXPECT_FALSE(blocked.active());
        EXPECT_FALSE(blocked.commit());
        EXPECT_EQ(blocked.failure(), StoreFailure::Busy);  // its text is the tool's busy-store test
    }
    ASSERT_TRUE(held.commit());
    EXPECT_EQ(subkeyNames(other, kLocalMachine), Names{"Pending"});
    EXPECT_EQ(setString(other, kLocalMachine, "free", "x"), kErrorSuccess);
}

// The lists follow every change, here or in another connection; their stamp,
// which callers cache results by, moves with them.
TEST(StoreConnections, KeptSubkeyListsFollowEveryChange) {
    test::TempStore temp;
    StoreBackend& store = currentStore();
    const HKey parent = createKey(store, "Kept");
    for (const char* name : {"b", "d"}) store.closeKey(createKey(store, name, parent));
    SqliteStoreOpening opening = otherConnection(temp);
    StoreBackend& other = *opening.backend;
    const auto stamp = [&] {
        std::uint64_t time = 0;
        EXPECT_EQ(store.queryInfoKey(parent, nullptr, &time), kErrorSuccess);
        return time;
    };
    char name[8];
    // An enumeration going on index by index keeps the list it began with.
    ASSERT_EQ(store.enumKey(parent, 0, name, sizeof name), kErrorSuccess);
    store.closeKey(createKey(other, "Kept\\a"));
    ASSERT_EQ(store.enumKey(parent, 1, name, sizeof name), kErrorSuccess);
    EXPECT_STREQ(name, "d");
    EXPECT_EQ(subkeyNames(store, parent), (Names{"a", "b", "d"}));

    std::uint64_t before = stamp();
    store.closeKey(createKey(store, "c", parent));
    EXPECT_NE(stamp(), before);
    before = stamp();
    ASSERT_EQ(other.deleteKey(kLocalMachine, "Kept\\D"), kErrorSuccess);
    EXPECT_NE(stamp(), before);
    EXPECT_EQ(subkeyNames(store, parent), (Names{"a", "b", "c"}));
    const HKey doomed = createKey(store, "Kept\\doomed");
    ASSERT_EQ(other.deleteKey(kLocalMachine, "Kept\\DOOMED"), kErrorSuccess);
    EXPECT_EQ(store.enumKey(doomed, 0, name, sizeof name), kErrorKeyDeleted) << "a key another connection deleted";
    {
        StoreTransaction transaction(store);
        store.closeKey(createKey(store, "e", parent));
        ASSERT_EQ(store.deleteKey(parent, "a"), kErrorSuccess);
        EXPECT_EQ(subkeyNames(store, parent), (Names{"b", "c", "e"}));
    }
    EXPECT_EQ(subkeyNames(store, parent), (Names{"a", "b", "c"})) << "a rollback restores the list";
}

TEST(StoreConnections, HandlesOnRolledBackKeysStayDeadAndStrayCallsFail) {
    test::TempStore temp;
    StoreBackend& store = currentStore();
    HKey undone = kNoKey;
    {
        StoreTransaction scope;
        undone = createKey(store, "Undone");
        ASSERT_NE(undone, kNoKey);
    }
    // The rolled-back key's id is free again; the next key may get it.
    const HKey next = createKey(store, "Next");
    ASSERT_EQ(setString(store, next, "v", "next"), kErrorSuccess);
    EXPECT_EQ(setString(store, undone, "v", "wrong key"), kErrorKeyDeleted);
    EXPECT_EQ(test::valueBytes(store, next, "v"), std::string("next", 5));

    EXPECT_EQ(store.commitTransaction(), kErrorInvalidParameter);
    store.rollbackTransaction();
    EXPECT_EQ(setString(store, kLocalMachine, "after", "x"), kErrorSuccess);
    closeStore();
    StoreTransaction scope;
    EXPECT_FALSE(scope.active());
    EXPECT_FALSE(scope.commit());
}

}  // namespace
}  // namespace braxcfg::platform
