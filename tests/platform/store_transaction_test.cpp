// Transaction scopes: commit, rollback, nesting, what other connections see
// meanwhile, and handles on keys a rollback undid.
#include <gtest/gtest.h>

#include <chrono>

#include "platform/debug_output.h"
#include "platform/sqlite_store_file.h"
#include "platform/store.h"
#include "store_test_access.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

using test::createKey;
using test::setString;

bool keyExists(StoreBackend& store, const char* path) {
    HKey key = kNoKey;
    const bool found = store.openKey(kLocalMachine, path, kKeyQueryValue, &key) == kErrorSuccess;
    store.closeKey(key);
    return found;
}

// Nested scopes on one backend are decided by the store transaction
// conformance tests; here, that an inner commit reaches the file only with
// the outer one.
TEST(StoreTransactionScope, AnInnerCommitReachesTheFileOnlyWithTheOuterOne) {
    for (const bool commitOuter : {true, false}) {
        SCOPED_TRACE(commitOuter ? "outer commits" : "outer rolls back");
        test::TempStore temp;
        StoreBackend& store = currentStore();
        {
            StoreTransaction outer;
            ASSERT_TRUE(outer.active());
            createKey(store, "Outer");
            {
                StoreTransaction inner;
                ASSERT_TRUE(inner.active());
                createKey(store, "Inner");
                EXPECT_TRUE(inner.commit());
            }
            if (commitOuter) { EXPECT_TRUE(outer.commit()); }
        }
        temp.reopen();
        EXPECT_EQ(keyExists(currentStore(), "Outer"), commitOuter);
        EXPECT_EQ(keyExists(currentStore(), "Inner"), commitOuter);
    }
}

TEST(StoreTransactionScope, OtherConnectionsWaitBoundedAndSayWhy) {
    test::TempStore temp;
    StoreBackend& store = currentStore();
    SqliteStoreOpening opening = openSqliteStore(temp.path());
    ASSERT_TRUE(opening.backend) << opening.status.error;
    StoreBackend& other = *opening.backend;

    StoreTransaction held;
    ASSERT_TRUE(held.active());
    createKey(store, "Pending");
    EXPECT_FALSE(keyExists(other, "Pending")) << "uncommitted work is invisible to others";

    DebugCapture debug;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(setString(other, kLocalMachine, "blocked", "x"), kErrorBusy);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::seconds(4));
    EXPECT_LT(waited, std::chrono::seconds(15));
    EXPECT_NE(debug.text().find("Configuration store: "), std::string::npos) << "the failure is reported";
    {
        // A list rewrite learns why its transaction could not start.
        StoreTransaction blocked(other);
        EXPECT_FALSE(blocked.active());
        EXPECT_FALSE(blocked.commit());
        EXPECT_EQ(blocked.failure(), StoreFailure::Busy);
        EXPECT_EQ(blocked.failureMessage(), "the store " + temp.path() +
                                                " is busy (another program is changing it), try again; nothing was changed");
    }

    ASSERT_TRUE(held.commit());
    EXPECT_TRUE(keyExists(other, "Pending"));
    EXPECT_EQ(setString(other, kLocalMachine, "free", "x"), kErrorSuccess);
}

TEST(StoreTransactionScope, HandlesOnRolledBackKeysStayDeadAndStrayCallsFail) {
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
    store.closeKey(undone);

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
