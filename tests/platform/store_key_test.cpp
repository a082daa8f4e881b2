// The key holder under Registry: who closes a handle, what an empty holder
// does, names of any length, and deleting a tree.
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
bool stillOpen(HKey key) {
    std::uint32_t subKeys = 0;
    return currentStore().queryInfoKey(key, &subKeys, nullptr) == kErrorSuccess;
}

TEST(StoreKey, ClosesExactlyTheHandleItOwns) {
    test::TempStore temp;
    HKey first = kNoKey;
    HKey second = kNoKey;
    {
        StoreKey a;
        ASSERT_EQ(a.create(kLocalMachine, "SOFTWARE\\A", kKeyAllAccess), kErrorSuccess);
        first = a.get();
        StoreKey b(std::move(a));
        EXPECT_FALSE(a) << "a moved-from holder owns nothing";
        EXPECT_EQ(b.get(), first);
        ASSERT_EQ(a.open(kLocalMachine, "SOFTWARE\\A", kKeyAllAccess), kErrorSuccess);
        second = a.get();
        b = std::move(a);
        EXPECT_FALSE(stillOpen(first)) << "taking another key closes the one held";
        EXPECT_TRUE(stillOpen(second));
        EXPECT_EQ(b.setText("v", "x"), kErrorSuccess);
    }
    EXPECT_FALSE(stillOpen(second)) << "closed when the holder went out of scope";

    StoreKey key;
    ASSERT_EQ(key.open(kLocalMachine, "SOFTWARE\\A", kKeyAllAccess), kErrorSuccess);
    const HKey held = key.get();
    EXPECT_EQ(key.open(kLocalMachine, "SOFTWARE\\Missing", kKeyAllAccess), kErrorFileNotFound);
    EXPECT_FALSE(key) << "a failed open leaves the holder empty";
    EXPECT_FALSE(stillOpen(held)) << "and still closed what it held";
}

TEST(StoreKey, AnEmptyHolderReachesNoStore) {
    test::TempStore temp;
    const StoreKey key = StoreKey::opened(kLocalMachine, "SOFTWARE\\Missing", kKeyAllAccess);
    ASSERT_FALSE(key);
    RegType type = kRegNone;
    std::string bytes;
    EXPECT_FALSE(key.readInto("v", 16, type, bytes));
    EXPECT_FALSE(key.readBytes("v", type, bytes));
    EXPECT_EQ(key.setText("v", "x"), kErrorInvalidHandle);
    EXPECT_EQ(key.deleteValue("v"), kErrorInvalidHandle);
    EXPECT_TRUE(key.valueNames().empty());
    EXPECT_TRUE(key.subkeyNames().empty());
}

TEST(StoreKey, ReadsNamesOfAnyLengthAndValuesUpToItsBuffer) {
    test::TempStore temp;
    StoreKey key;
    ASSERT_EQ(key.create(kLocalMachine, "SOFTWARE\\Names", kKeyAllAccess), kErrorSuccess);
    const std::vector<std::string> keyNames = {std::string(80, 'a'), std::string(kMaxKeyNameLength, 'b'), "c"};
    for (const std::string& name : keyNames) StoreKey(key.store()).create(key.get(), name, kKeyAllAccess);
    EXPECT_EQ(key.subkeyNames(), keyNames);

    const std::string longValue(2000, 'v');
    ASSERT_EQ(key.setText(longValue, "abc"), kErrorSuccess);
    ASSERT_EQ(key.setBytes("", kRegBinary, std::string("\x00\x01", 2)), kErrorSuccess);
    const auto values = key.valueNames();
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0].name, longValue);
    EXPECT_EQ(values[0].type, kRegSz);
    EXPECT_EQ(values[1].name, "") << "the default value";

    // "abc" is stored with its terminator: 4 bytes.
    for (const auto& [capacity, fits] : {std::pair{3u, false}, std::pair{4u, true}, std::pair{5u, true}}) {
        RegType type = kRegNone;
        std::string bytes;
        EXPECT_EQ(key.readInto(longValue, capacity, type, bytes), fits) << capacity;
        if (fits) {
            EXPECT_EQ(textOf(bytes), "abc");
        }
    }
}

TEST(StoreKey, DeleteKeyTree) {
    struct Case {
        const char* what;
        std::vector<std::string> made;  // below SOFTWARE\T
        const char* deleted;
        RegResult result;
        std::vector<std::string> left;  // subkeys of SOFTWARE\T afterwards
    };
    const std::string longName(kMaxKeyNameLength, 'n');
    const std::vector<Case> cases = {
        {"a leaf", {"a", "b"}, "a", kErrorSuccess, {"b"}},
        {"a tree, long names and values included", {"a\\x\\" + longName, "a\\y", "b"}, "a", kErrorSuccess, {"b"}},
        {"a path of several names", {"a\\x\\y", "a\\z"}, "a\\x", kErrorSuccess, {"a"}},
        {"a missing key", {"b"}, "a", kErrorFileNotFound, {"b"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
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
