// The key holder under Registry: who closes a handle, what an empty holder
// does, and deleting a tree (names of any length: the rename test's).
#include "platform/store_key.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/store.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

// True while `key` is still an open handle of the store (closing it would
// succeed). Asked through a read, so the handle stays as it is.
bool stillOpen(HKey key) { return currentStore().queryInfoKey(key, nullptr, nullptr) == kErrorSuccess; }

TEST(StoreKey, ClosesExactlyTheHandleItOwns) {
    test::TempStore temp;
    HKey first = kNoKey, second = kNoKey;
    {
        StoreKey a;
        ASSERT_EQ(a.create(kLocalMachine, "SOFTWARE\\A", kKeyAllAccess), kErrorSuccess);
        first = a.get();
        StoreKey b(std::move(a));
        EXPECT_FALSE(a) << "a moved-from holder owns nothing";
        ASSERT_EQ(a.open(kLocalMachine, "SOFTWARE\\A", kKeyAllAccess), kErrorSuccess);
        second = a.get();
        b = std::move(a);
        EXPECT_FALSE(stillOpen(first)) << "taking another key closes the one held";
        EXPECT_EQ(b.setText("v", "x"), kErrorSuccess) << "the moved handle still works";
        EXPECT_EQ(a.open(kLocalMachine, "SOFTWARE\\Missing", kKeyAllAccess), kErrorFileNotFound);
        EXPECT_EQ(a.setText("v", "x"), kErrorInvalidHandle) << "a failed open leaves the holder empty";
    }
    EXPECT_FALSE(stillOpen(second)) << "closed when the holder went out of scope";
}

TEST(StoreKey, DeleteKeyTree) {
    const std::string longName(kMaxKeyNameLength, 'n');
    // made: below SOFTWARE\T; left: the subkeys of SOFTWARE\T afterwards.
    using Names = std::vector<std::string>;
    const struct { Names made; const char* deleted; RegResult result; Names left; } cases[] = {
            {{"a\\x\\" + longName, "a\\y", "b"}, "a", kErrorSuccess, {"b"}},  // long names and values included
            {{"a\\x\\y", "a\\z"}, "a\\x", kErrorSuccess, {"a"}},             // a path of several names
            {{"b"}, "a", kErrorFileNotFound, {"b"}},
        };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.deleted);
        test::TempStore temp;
        StoreKey root;
        ASSERT_EQ(root.create(kLocalMachine, "SOFTWARE\\T", kKeyAllAccess), kErrorSuccess);
        for (const std::string& path : c.made) {
            StoreKey made;
            ASSERT_EQ(made.create(root.get(), path, kKeyAllAccess), kErrorSuccess);
            made.setText("v", path);
        }
        EXPECT_EQ(deleteKeyTree(root.store(), root.get(), c.deleted), c.result);
        EXPECT_EQ(root.subkeyNames(), c.left);
        EXPECT_FALSE(StoreKey::opened(root.get(), c.deleted, kKeyAllAccess));
    }
}

}  // namespace
}  // namespace braxcfg::platform
