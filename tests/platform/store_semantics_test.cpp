// The store backend's registry behaviour: names, paths, orders, value
// buffers, deletion and handles on deleted keys.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/sqlite_store_file.h"
#include "platform/store.h"
#include "store_test_access.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

using test::createKey;
using test::KeyHandle;
using test::setString;
using test::subkeyNames;
using test::valueBytes;
using test::valueNames;

class StoreSemantics : public ::testing::Test {
protected:
    test::TempStore temp;
    StoreBackend& store = currentStore();

    HKey open(const std::string& path, HKey parent = kLocalMachine, RegAccess access = kKeyAllAccess) {
        HKey key = kNoKey;
        store.openKey(parent, path.c_str(), access, &key);
        return key;
    }
};

struct NameCase {
    const char* label;
    std::string created;
    std::string openedAs;
    RegResult expected;
};

TEST_F(StoreSemantics, KeyNamesMatchByUpperCaseOnly) {
    const NameCase cases[] = {
        {"ASCII case", "Subkey3a", "sUBKEY3A", kErrorSuccess},
        {"cp1252 e acute", "Caf\xE9", "CAF\xC9", kErrorSuccess},
        {"s caron, oe, y diaeresis", "\x9A\x9C\xFF", "\x8A\x8C\x9F", kErrorSuccess},
        {"sharp s is not SS", "Stra\xDF" "e", "STRASSE", kErrorFileNotFound},
        {"trailing space is part of the name", "Subkey1c ", "Subkey1c", kErrorFileNotFound},
        {"punctuation is legal", "Subkey\"1/2:https://host", "SUBKEY\"1/2:HTTPS://HOST", kErrorSuccess},
        {"runs of separators", "A\\\\B\\", "a\\b", kErrorSuccess},
        {"trailing separators", "Subkey4\\\\", "Subkey4", kErrorSuccess},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        KeyHandle created(store, createKey(store, "Names\\" + c.created));
        ASSERT_NE(created, kNoKey);
        ASSERT_EQ(setString(store, created, "mark", c.label), kErrorSuccess);
        HKey opened = kNoKey;
        EXPECT_EQ(store.openKey(open("Names"), c.openedAs.c_str(), kKeyAllAccess, &opened), c.expected);
        if (c.expected == kErrorSuccess) {
            EXPECT_EQ(valueBytes(store, opened, "mark"), std::string(c.label) + '\0');
            store.closeKey(opened);
        } else {
            EXPECT_EQ(opened, kNoKey);
        }
    }
}

TEST_F(StoreSemantics, NamesKeepTheCaseTheyWereCreatedWith) {
    KeyHandle parent(store, createKey(store, "Case"));
    KeyHandle first(store, createKey(store, "MixedCase", parent));
    bool created = true;
    HKey again = kNoKey;
    ASSERT_EQ(store.createKey(parent, "MIXEDCASE", kKeyAllAccess, &again, &created), kErrorSuccess);
    EXPECT_FALSE(created);
    store.closeKey(again);
    ASSERT_EQ(setString(store, parent, "Value", "1"), kErrorSuccess);
    ASSERT_EQ(setString(store, parent, "VALUE", "2"), kErrorSuccess);
    EXPECT_EQ(subkeyNames(store, parent), std::vector<std::string>{"MixedCase"});
    EXPECT_EQ(valueNames(store, parent), std::vector<std::string>{"Value"});
    EXPECT_EQ(valueBytes(store, parent, "vAlUe"), std::string("2", 2));
}

TEST_F(StoreSemantics, PathsAreRelativeAndNamesAreLimited) {
    const std::string longest(kMaxKeyNameLength, 'k');
    struct PathCase {
        const char* label;
        std::string path;
        RegResult expected;
    };
    const PathCase cases[] = {
        {"leading separator", "\\Paths\\A", kErrorBadPathname},
        {"only a separator", "\\", kErrorBadPathname},
        {"255-character name", "Paths\\" + longest, kErrorSuccess},
        {"256-character name", "Paths\\" + longest + "k", kErrorInvalidParameter},
        {"long name in the middle", "Paths\\" + longest + "k\\A", kErrorInvalidParameter},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        HKey key = kNoKey;
        EXPECT_EQ(store.createKey(kLocalMachine, c.path.c_str(), kKeyAllAccess, &key, nullptr), c.expected);
        store.closeKey(key);
        EXPECT_EQ(store.openKey(kLocalMachine, c.path.c_str(), kKeyAllAccess, &key), c.expected);
        store.closeKey(key);
    }
    KeyHandle paths(store, open("Paths"));
    EXPECT_EQ(subkeyNames(store, paths), std::vector<std::string>{longest});
}

TEST_F(StoreSemantics, ValueNamesAreLimited) {
    KeyHandle key(store, createKey(store, "Limits"));
    const std::string longest(kMaxValueNameLength, 'v');
    const std::string tooLong = longest + "v";
    EXPECT_EQ(setString(store, key, longest.c_str(), "x"), kErrorSuccess);
    EXPECT_EQ(setString(store, key, tooLong.c_str(), "x"), kErrorInvalidParameter);
    std::uint32_t size = 0;
    EXPECT_EQ(store.queryValue(key, tooLong.c_str(), nullptr, nullptr, &size), kErrorInvalidParameter);
    EXPECT_EQ(store.deleteValue(key, tooLong.c_str()), kErrorInvalidParameter);
    EXPECT_EQ(store.deleteValue(key, longest.c_str()), kErrorSuccess);
}

TEST_F(StoreSemantics, SubkeysEnumerateByUpperCaseCharacterCode) {
    KeyHandle parent(store, createKey(store, "Order"));
    // Created out of order. Upper-cased, '[' and '_' sort after 'Z'; the euro
    // sign (0x80 in the code page) sorts by its character, after E acute.
    for (const char* name : {"_x", "Zed", "\x80", "apple", "Subkey2", "Subkey1", "[b", "\xE9", "a", "A1"})
        KeyHandle child(store, createKey(store, name, parent));
    const std::vector<std::string> expected = {"a", "A1", "apple", "Subkey1", "Subkey2",
                                               "Zed", "[b", "_x", "\xE9", "\x80"};
    EXPECT_EQ(subkeyNames(store, parent), expected);
}

TEST_F(StoreSemantics, ValuesEnumerateInCreationOrder) {
    KeyHandle key(store, createKey(store, "Values"));
    for (const char* name : {"A", "C", "D", "B"}) ASSERT_EQ(setString(store, key, name, name), kErrorSuccess);
    EXPECT_EQ(valueNames(store, key), (std::vector<std::string>{"A", "C", "D", "B"}));

    ASSERT_EQ(setString(store, key, "c", "overwritten"), kErrorSuccess);
    EXPECT_EQ(valueNames(store, key), (std::vector<std::string>{"A", "C", "D", "B"})) << "overwrite keeps the slot";

    ASSERT_EQ(store.deleteValue(key, "d"), kErrorSuccess);
    ASSERT_EQ(setString(store, key, "D", "again"), kErrorSuccess);
    ASSERT_EQ(setString(store, key, nullptr, "default"), kErrorSuccess);
    EXPECT_EQ(valueNames(store, key), (std::vector<std::string>{"A", "C", "B", "D", ""}))
        << "delete then re-add goes last";
    EXPECT_EQ(valueBytes(store, key, ""), std::string("default", 8)) << "null and empty name are the default";
    EXPECT_EQ(store.deleteValue(key, ""), kErrorSuccess);
    EXPECT_EQ(store.deleteValue(key, nullptr), kErrorFileNotFound);
}

TEST_F(StoreSemantics, StoredBytesFollowTheStringTerminatorRule) {
    KeyHandle key(store, createKey(store, "Data"));
    struct DataCase {
        const char* label;
        RegType type;
        std::string buffer;  // what the caller's memory holds
        std::uint32_t cbData;
        std::string stored;
    };
    const DataCase cases[] = {
        {"terminator counted", kRegSz, std::string("foobar\0", 7), 7, std::string("foobar\0", 7)},
        {"terminator not counted, next byte NUL", kRegSz, std::string("foobar\0", 7), 6,
         std::string("foobar\0", 7)},
        {"next byte not NUL", kRegSz, "foobarX", 6, "foobar"},
        {"expand string too", kRegExpandSz, std::string("%x%\0", 4), 3, std::string("%x%\0", 4)},
        {"binary keeps its size", kRegBinary, std::string("ab\0", 3), 2, "ab"},
        {"embedded NULs", kRegSz, std::string("a\0b\0", 4), 4, std::string("a\0b\0", 4)},
        {"empty string", kRegSz, std::string("\0", 1), 0, ""},
        {"8-byte dword", kRegDword, std::string("12345678", 8), 8, "12345678"},
        {"unknown type", 0x1234, "xyz", 3, "xyz"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        ASSERT_EQ(store.setValue(key, "v", c.type, reinterpret_cast<const std::uint8_t*>(c.buffer.data()),
                                 c.cbData),
                  kErrorSuccess);
        RegType type = kRegNone;
        std::uint32_t size = 0;
        ASSERT_EQ(store.queryValue(key, "v", &type, nullptr, &size), kErrorSuccess);
        EXPECT_EQ(type, c.type);
        EXPECT_EQ(valueBytes(store, key, "v"), c.stored);
    }
    EXPECT_EQ(store.setValue(key, "v", kRegBinary, nullptr, 0), kErrorSuccess);
    EXPECT_EQ(store.setValue(key, "v", kRegBinary, nullptr, 1), 998) << "no data for a non-zero size";
}

TEST_F(StoreSemantics, QueryHonoursTheCallersBuffer) {
    KeyHandle key(store, createKey(store, "Query"));
    ASSERT_EQ(setString(store, key, "Test", "foobar"), kErrorSuccess);
    ASSERT_EQ(store.setValue(key, "raw", kRegSz, reinterpret_cast<const std::uint8_t*>("abcX"), 3),
              kErrorSuccess);
    ASSERT_EQ(store.setValue(key, "empty", kRegSz, reinterpret_cast<const std::uint8_t*>(""), 0), kErrorSuccess);
    struct QueryCase {
        const char* label;
        const char* name;
        bool withBuffer;
        std::uint32_t cbData;
        RegResult result;
        std::uint32_t cbAfter;
        std::string bufferAfter;  // of a 10-byte buffer filled with '#'
    };
    const QueryCase cases[] = {
        {"size only", "Test", false, 0, kErrorSuccess, 7, "##########"},
        {"fits", "Test", true, 10, kErrorSuccess, 7, std::string("foobar\0###", 10)},
        {"too small", "Test", true, 6, kErrorMoreData, 7, "##########"},
        {"missing, size only", "none", false, 5, kErrorFileNotFound, 0, "##########"},
        {"missing, with buffer", "none", true, 5, kErrorFileNotFound, 5, "##########"},
        {"unterminated, exact", "raw", true, 3, kErrorSuccess, 3, "abc#######"},
        {"unterminated, room for NUL", "raw", true, 4, kErrorSuccess, 3, std::string("abc\0######", 10)},
        {"zero length", "empty", true, 10, kErrorSuccess, 0, "##########"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        std::string buffer(10, '#');
        RegType type = 0xFFFF;
        std::uint32_t cb = c.cbData;
        EXPECT_EQ(store.queryValue(key, c.name, &type,
                                   c.withBuffer ? reinterpret_cast<std::uint8_t*>(buffer.data()) : nullptr, &cb),
                  c.result);
        EXPECT_EQ(cb, c.cbAfter);
        EXPECT_EQ(buffer, c.bufferAfter);
        if (c.result != kErrorFileNotFound) {
            EXPECT_EQ(type, kRegSz) << "type is set even when data does not fit";
        }
    }
    std::uint8_t byte = 0;
    EXPECT_EQ(store.queryValue(key, "Test", nullptr, &byte, nullptr), kErrorInvalidParameter);
}

TEST_F(StoreSemantics, EnumValueLeavesBuffersAloneWhenEitherIsTooSmall) {
    KeyHandle key(store, createKey(store, "Enum"));
    ASSERT_EQ(setString(store, key, "Test", "foobar"), kErrorSuccess);
    struct EnumCase {
        const char* label;
        std::uint32_t cchName;
        std::uint32_t cbData;
        RegResult result;
        std::uint32_t cchAfter;
        std::string nameAfter;
        std::string dataAfter;
    };
    const EnumCase cases[] = {
        {"both fit", 5, 10, kErrorSuccess, 4, std::string("Test\0#####", 10), std::string("foobar\0###", 10)},
        {"name too small", 3, 10, kErrorMoreData, 3, "##########", "##########"},
        {"name without room for NUL", 4, 10, kErrorMoreData, 4, "##########", "##########"},
        {"data too small", 10, 2, kErrorMoreData, 10, "##########", "##########"},
        {"both too small", 3, 2, kErrorMoreData, 3, "##########", "##########"},
        {"no name room at all", 0, 10, kErrorMoreData, 0, "##########", "##########"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        std::string name(10, '#');
        std::string data(10, '#');
        std::uint32_t cch = c.cchName;
        std::uint32_t cb = c.cbData;
        RegType type = kRegNone;
        EXPECT_EQ(store.enumValue(key, 0, name.data(), &cch, &type, reinterpret_cast<std::uint8_t*>(data.data()),
                                  &cb),
                  c.result);
        EXPECT_EQ(cch, c.cchAfter);
        EXPECT_EQ(cb, 7u);
        EXPECT_EQ(type, kRegSz);
        EXPECT_EQ(name, c.nameAfter);
        EXPECT_EQ(data, c.dataAfter);
    }
    char name[8];
    std::uint32_t cch = sizeof name;
    EXPECT_EQ(store.enumValue(key, 1, name, &cch, nullptr, nullptr, nullptr), kErrorNoMoreItems);
    EXPECT_EQ(store.enumValue(key, 0, nullptr, &cch, nullptr, nullptr, nullptr), kErrorInvalidParameter);
    EXPECT_EQ(store.enumValue(key, 0, name, nullptr, nullptr, nullptr, nullptr), kErrorInvalidParameter);
}

TEST_F(StoreSemantics, EnumKeyNeedsRoomForTheTerminator) {
    KeyHandle parent(store, createKey(store, "Sizes"));
    KeyHandle child(store, createKey(store, std::string(79, 'a'), parent));
    KeyHandle longer(store, createKey(store, std::string(80, 'b'), parent));
    char name[80];
    std::memset(name, '#', sizeof name);
    EXPECT_EQ(store.enumKey(parent, 0, name, sizeof name), kErrorSuccess);
    EXPECT_EQ(std::string(name), std::string(79, 'a'));
    std::memset(name, '#', sizeof name);
    EXPECT_EQ(store.enumKey(parent, 1, name, sizeof name), kErrorMoreData);
    EXPECT_EQ(name[0], '#') << "nothing copied";
    EXPECT_EQ(store.enumKey(parent, 2, name, sizeof name), kErrorNoMoreItems);
}

TEST_F(StoreSemantics, OpenGivesNewHandlesAndLeavesResultsAsWindowsDoes) {
    KeyHandle key(store, createKey(store, "Open"));
    HKey same = kNoKey;
    ASSERT_EQ(store.openKey(key, "", kKeyQueryValue, &same), kErrorSuccess);
    EXPECT_NE(same, key) << "an empty subkey opens a new handle";
    EXPECT_EQ(store.closeKey(same), kErrorSuccess);
    EXPECT_EQ(setString(store, key, "still", "open"), kErrorSuccess);
    EXPECT_EQ(store.closeKey(same), kErrorInvalidHandle) << "second close";

    HKey root = kNoKey;
    EXPECT_EQ(store.openKey(kLocalMachine, nullptr, kKeyAllAccess, &root), kErrorSuccess);
    EXPECT_EQ(root, kLocalMachine);
    EXPECT_EQ(store.closeKey(kLocalMachine), kErrorSuccess);
    EXPECT_EQ(store.closeKey(kNoKey), kErrorInvalidHandle);

    HKey result = 0x1234;
    EXPECT_EQ(store.openKey(0x9999, "x", kKeyAllAccess, &result), kErrorInvalidHandle);
    EXPECT_EQ(result, 0x1234u) << "invalid parent leaves the result alone";
    EXPECT_EQ(store.openKey(key, "missing", kKeyAllAccess, &result), kErrorFileNotFound);
    EXPECT_EQ(result, kNoKey);

    bool created = false;
    HKey deep = kNoKey;
    ASSERT_EQ(store.createKey(key, "x\\y\\z", kKeyAllAccess, &deep, &created), kErrorSuccess);
    EXPECT_TRUE(created);
    store.closeKey(deep);
    EXPECT_EQ(subkeyNames(store, KeyHandle(store, open("Open\\x"))), std::vector<std::string>{"y"});
}

TEST_F(StoreSemantics, ViewFlagsAreIgnoredUnlessBothAreGiven) {
    KeyHandle key(store, createKey(store, "SOFTWARE\\View"));
    ASSERT_EQ(setString(store, key, "v", "one view"), kErrorSuccess);
    for (const RegAccess flag : {kKeyWow64_32Key, kKeyWow64_64Key}) {
        KeyHandle opened(store, open("SOFTWARE\\View", kLocalMachine, kKeyAllAccess | flag));
        EXPECT_EQ(valueBytes(store, opened, "v"), std::string("one view", 9));
    }
    HKey result = kNoKey;
    const RegAccess both = kKeyAllAccess | kKeyWow64_32Key | kKeyWow64_64Key;
    EXPECT_EQ(store.openKey(kLocalMachine, "SOFTWARE\\View", both, &result), kErrorInvalidParameter);
    EXPECT_EQ(store.createKey(kLocalMachine, "SOFTWARE\\Other", both, &result, nullptr), kErrorInvalidParameter);
    EXPECT_EQ(open("SOFTWARE\\Other"), kNoKey);
}

TEST_F(StoreSemantics, DeleteKeyIsNotRecursive) {
    KeyHandle parent(store, createKey(store, "Del"));
    KeyHandle child(store, createKey(store, "Child\\Grandchild", parent));
    ASSERT_EQ(setString(store, child, "v", "x"), kErrorSuccess);
    struct DeleteCase {
        const char* label;
        HKey parent;
        const char* subKey;
        RegResult expected;
    };
    const DeleteCase cases[] = {
        {"has subkeys", parent, "child", kErrorAccessDenied},
        {"missing", parent, "nothing", kErrorFileNotFound},
        {"null subkey", parent, nullptr, kErrorInvalidParameter},
        {"leading separator", parent, "\\Child", kErrorBadPathname},
        {"the root", kLocalMachine, "", kErrorAccessDenied},
        {"leaf, other case", parent, "CHILD\\GRANDCHILD", kErrorSuccess},
        {"now empty", parent, "Child", kErrorSuccess},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        EXPECT_EQ(store.deleteKey(c.parent, c.subKey), c.expected);
    }
    KeyHandle again(store, createKey(store, "Child\\Grandchild", parent));
    EXPECT_EQ(valueNames(store, again), std::vector<std::string>{}) << "values went with the key";
    EXPECT_EQ(store.deleteKey(again, ""), kErrorSuccess) << "empty subkey deletes the key itself";
    EXPECT_EQ(subkeyNames(store, KeyHandle(store, open("Del\\Child"))), std::vector<std::string>{});
}

TEST_F(StoreSemantics, DeletingWhileEnumeratingShiftsLaterKeysDown) {
    KeyHandle parent(store, createKey(store, "Shift"));
    for (const char* name : {"k1", "k2", "k3", "k4"}) KeyHandle child(store, createKey(store, name, parent));
    char name[16];
    ASSERT_EQ(store.enumKey(parent, 0, name, sizeof name), kErrorSuccess);
    ASSERT_EQ(store.deleteKey(parent, name), kErrorSuccess);
    ASSERT_EQ(store.enumKey(parent, 1, name, sizeof name), kErrorSuccess);
    EXPECT_STREQ(name, "k3") << "increasing index skips the entry that moved into the deleted slot";
    KeyHandle added(store, createKey(store, "k0", parent));
    ASSERT_EQ(store.enumKey(parent, 0, name, sizeof name), kErrorSuccess);
    EXPECT_STREQ(name, "k0") << "a new key shows at once";
}

TEST_F(StoreSemantics, HandleOnDeletedKeyNeverReachesItsSuccessor) {
    KeyHandle parent(store, createKey(store, "Gone"));
    const HKey doomed = createKey(store, "Doomed", parent);
    ASSERT_EQ(setString(store, doomed, "old", "x"), kErrorSuccess);
    ASSERT_EQ(store.deleteKey(parent, "Doomed"), kErrorSuccess);
    KeyHandle successor(store, createKey(store, "DOOMED", parent));
    ASSERT_EQ(setString(store, successor, "new", "y"), kErrorSuccess);

    char name[16];
    std::uint32_t cch = sizeof name;
    std::uint32_t cb = 0;
    HKey result = kNoKey;
    EXPECT_EQ(store.queryValue(doomed, "new", nullptr, nullptr, &cb), kErrorKeyDeleted);
    EXPECT_EQ(setString(store, doomed, "new", "overwritten"), kErrorKeyDeleted);
    EXPECT_EQ(store.deleteValue(doomed, "new"), kErrorKeyDeleted);
    EXPECT_EQ(store.enumValue(doomed, 0, name, &cch, nullptr, nullptr, nullptr), kErrorKeyDeleted);
    EXPECT_EQ(store.enumKey(doomed, 0, name, sizeof name), kErrorKeyDeleted);
    EXPECT_EQ(store.openKey(doomed, "", kKeyAllAccess, &result), kErrorKeyDeleted);
    EXPECT_EQ(store.createKey(doomed, "sub", kKeyAllAccess, &result, nullptr), kErrorKeyDeleted);
    EXPECT_EQ(store.deleteKey(doomed, ""), kErrorKeyDeleted);
    EXPECT_EQ(store.closeKey(doomed), kErrorSuccess);

    EXPECT_EQ(valueNames(store, successor), std::vector<std::string>{"new"});
    EXPECT_EQ(valueBytes(store, successor, "new"), std::string("y", 2));
}

TEST_F(StoreSemantics, ChangesFromAnotherConnectionShowInEnumeration) {
    KeyHandle parent(store, createKey(store, "Shared"));
    KeyHandle first(store, createKey(store, "b", parent));
    ASSERT_EQ(subkeyNames(store, parent), std::vector<std::string>{"b"});

    // A second opening of the same file stands for another process.
    SqliteStoreOpening opening = openSqliteStore(temp.path());
    ASSERT_TRUE(opening.backend) << opening.status.error;
    StoreBackend& other = *opening.backend;
    KeyHandle added(other, createKey(other, "Shared\\a"));
    EXPECT_EQ(subkeyNames(store, parent), (std::vector<std::string>{"a", "b"}));
    ASSERT_EQ(other.deleteKey(kLocalMachine, "Shared\\B"), kErrorSuccess);
    EXPECT_EQ(subkeyNames(store, parent), std::vector<std::string>{"a"});
    char name[8];
    EXPECT_EQ(store.enumKey(first, 0, name, sizeof name), kErrorKeyDeleted);
}

}  // namespace
}  // namespace braxcfg::platform
