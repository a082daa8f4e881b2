// The SQLite store's connections: the subkey lists kept between calls, and
// handles on keys a rollback undid. Nesting and rollback themselves are
// decided by the conformance suite; what a transaction held by another
// process does to each writing command is the tool's busy-store test.
#include <gtest/gtest.h>

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

// The lists follow every change, here or in another connection; their stamp,
// which callers cache results by, moves with them. After a rollback they are
// read through the conformance suite's exports of the restored tree.
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

    store.closeKey(createKey(store, "c", parent));
    const std::uint64_t before = stamp();
    ASSERT_EQ(other.deleteKey(kLocalMachine, "Kept\\D"), kErrorSuccess);
    EXPECT_NE(stamp(), before) << "a change in another connection moves the stamp";
    EXPECT_EQ(subkeyNames(store, parent), (Names{"a", "b", "c"}));
    const HKey doomed = createKey(store, "Kept\\doomed");
    ASSERT_EQ(other.deleteKey(kLocalMachine, "Kept\\DOOMED"), kErrorSuccess);
    EXPECT_EQ(store.enumKey(doomed, 0, name, sizeof name), kErrorKeyDeleted) << "a key another connection deleted";
}

TEST(StoreConnections, HandlesOnRolledBackKeysStayDeadAndNoStoreMeansNoTransaction) {
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

    closeStore();
    StoreTransaction scope;
    EXPECT_FALSE(scope.active());
    EXPECT_FALSE(scope.commit());
}

}  // namespace
}  // namespace braxcfg::platform
