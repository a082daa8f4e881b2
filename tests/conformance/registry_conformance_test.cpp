// The registry behaviour every store backend keeps: names, paths, orders,
// value buffers, deletion and handles on deleted keys. Written once against
// StoreBackend and run on the process's store: the SQLite file on Linux,
// the registry on Windows (and under Wine, with Wine's known deviations).
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/store.h"
#include "store_access.h"
#include "temp_store.h"
#include "wine_deviation.h"

namespace braxcfg::platform {
namespace {

using namespace std::string_literals;
using namespace test;
using Names = std::vector<std::string>;

class StoreSemantics : public ::testing::Test {
protected:
    test::TempStore temp;
    StoreBackend& store = currentStore();

    HKey open(const std::string& path) {
        HKey key = kNoKey;
        store.openKey(kLocalMachine, path.c_str(), kKeyAllAccess, &key);
        return key;
    }
};

TEST_F(StoreSemantics, KeyNamesMatchByUpperCaseAndKeepTheirCase) {
    struct Case { const char* label; std::string created, openedAs; RegResult expected; };
    const Case cases[] = {
        {"ASCII case", "Subkey3a", "sUBKEY3A", kErrorSuccess},
        {"cp1252 e acute", "Caf\xE9", "CAF\xC9", kErrorSuccess},
        {"s caron, oe, y diaeresis", "\x9A\x9C\xFF", "\x8A\x8C\x9F", kErrorSuccess},
        {"sharp s is not SS", "Stra\xDF" "e", "STRASSE", kErrorFileNotFound},
        {"trailing space is part of the name", "Subkey1c ", "Subkey1c", kErrorFileNotFound},
        {"runs of separators", "A\\\\B\\", "a\\b", kErrorSuccess},
    };
    const HKey names = createKey(store, "Names");
    for (const auto& c : cases) {
        ASSERT_EQ(setString(store, createKey(store, c.created, names), "mark", c.label), kErrorSuccess);
        HKey opened = kNoKey;
        EXPECT_EQ(store.openKey(names, c.openedAs.c_str(), kKeyAllAccess, &opened), c.expected) << c.label;
        EXPECT_EQ(valueBytes(store, opened, "mark"), c.expected ? "<missing>" : c.label + "\0"s) << c.label;
        store.closeKey(opened);
    }
    bool isNew = true;
    HKey opened = kNoKey;
    ASSERT_EQ(store.createKey(names, "sUBKEY3A", kKeyAllAccess, &opened, &isNew), kErrorSuccess);
    EXPECT_FALSE(isNew) << "creating under another case opens the existing key";
    EXPECT_EQ(subkeyNames(store, names),
              (Names{"A", "Caf\xE9", "Stra\xDF" "e", "Subkey1c ", "Subkey3a", "\x9A\x9C\xFF"}));
}

TEST_F(StoreSemantics, PathsAreRelativeAndNamesAreLimited) {
    const std::string longest(kMaxKeyNameLength, 'k');
    // Relative to the key "Paths". wine: what Wine answers where it differs.
    struct Case {
        const char* label; std::string path; RegResult expected; const WineDeviation* deviation; RegResult wine; };
    const Case cases[] = {
        {"leading separator", "\\A", kErrorBadPathname, nullptr, 0},
        {"255-character name", longest, kErrorSuccess, nullptr, 0},
        {"256-character name", longest + "k", kErrorInvalidParameter, &kWineKeyNameLimit, kErrorSuccess},
        {"long name in the middle", longest + "kk\\A", kErrorInvalidParameter, nullptr, 0},
        {"path of 300 characters", std::string(150, 'a') + "\\" + std::string(149, 'b'), kErrorSuccess,
         &kWineNarrowPathLimit, kErrorMoreData},
    };
    const HKey paths = createKey(store, "Paths");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const RegResult expected = c.deviation ? expectedAnswer(c.expected, *c.deviation, c.wine) : c.expected;
        HKey key = kNoKey;
        EXPECT_EQ(store.createKey(paths, c.path.c_str(), kKeyAllAccess, &key, nullptr), expected);
        store.closeKey(key);
        EXPECT_EQ(store.openKey(paths, c.path.c_str(), kKeyAllAccess, &key), expected);
        store.closeKey(key);
    }
    EXPECT_EQ(subkeyNames(store, paths),
              expectedAnswer(Names{std::string(150, 'a'), longest}, kWineKeyNameLimit, Names{longest, longest + "k"}));

    const std::string value(kMaxValueNameLength, 'v');
    const std::string tooLong = value + "v";
    std::uint32_t size = 0;
    EXPECT_EQ(setString(store, paths, value.c_str(), "x"), kErrorSuccess);
    EXPECT_EQ(setString(store, paths, tooLong.c_str(), "x"), kErrorInvalidParameter);
    const RegResult tooLongRead = expectedAnswer(kErrorInvalidParameter, kWineValueNameLimit, kErrorFileNotFound);
    EXPECT_EQ(store.queryValue(paths, tooLong.c_str(), nullptr, nullptr, &size), tooLongRead);
    EXPECT_EQ(store.deleteValue(paths, tooLong.c_str()), tooLongRead);
    EXPECT_EQ(store.deleteValue(paths, value.c_str()), kErrorSuccess);
}

TEST_F(StoreSemantics, SubkeysEnumerateByUpperCaseCharacterCode) {
    const HKey parent = createKey(store, "Order");
    // Upper-cased, '[' and '_' sort after 'Z'; the cp1252 letters sort by
    // their upper-case character: e acute as U+00C9, oe U+0152, s caron
    // U+0160, y diaeresis U+0178, z caron U+017D, f hook U+0191, the euro
    // sign U+20AC; the micro sign has no upper case and stays U+00B5.
    for (const char* name : {"_x", "Zed", "\x80", "apple", "Subkey2", "Subkey1", "[b", "\xE9", "a", "A1", "\xB5",
                             "\x83", "\x9E", "\xFF", "\x9A", "\x9C"})
        createKey(store, name, parent);
    EXPECT_EQ(subkeyNames(store, parent),
              expectedAnswer(Names{"a", "A1", "apple", "Subkey1", "Subkey2", "Zed", "[b", "_x", "\xB5", "\xE9", "\x9C",
                                   "\x9A", "\xFF", "\x9E", "\x83", "\x80"}, kWineSubkeyOrder,
                             Names{"[b", "_x", "a", "A1", "apple", "Subkey1", "Subkey2", "Zed", "\xB5", "\xE9", "\xFF",
                                   "\x9C", "\x9A", "\x9E", "\x83", "\x80"}));
}

TEST_F(StoreSemantics, ValuesEnumerateInCreationOrder) {
    const HKey key = createKey(store, "Values");
    for (const char* name : {"A", "C", "D", "B"}) ASSERT_EQ(setString(store, key, name, name), kErrorSuccess);
    ASSERT_EQ(setString(store, key, "c", "overwritten"), kErrorSuccess);
    EXPECT_EQ(valueNames(store, key),
              expectedAnswer(Names{"A", "C", "D", "B"}, kWineValueOrder, Names{"A", "B", "C", "D"}))
        << "overwrite keeps the slot and the case";
    EXPECT_EQ(valueBytes(store, key, "C"), "overwritten\0"s);

    ASSERT_EQ(store.deleteValue(key, "d"), kErrorSuccess);
    ASSERT_EQ(setString(store, key, "D", "again"), kErrorSuccess);
    ASSERT_EQ(setString(store, key, nullptr, "default"), kErrorSuccess);
    EXPECT_EQ(valueNames(store, key),
              expectedAnswer(Names{"A", "C", "B", "D", ""}, kWineValueOrder, Names{"", "A", "B", "C", "D"}))
        << "delete then re-add goes last";
    EXPECT_EQ(valueBytes(store, key, ""), "default\0"s) << "null and empty name are the default";
    EXPECT_EQ(store.deleteValue(key, nullptr), kErrorSuccess);
}

TEST_F(StoreSemantics, StoredBytesFollowTheStringTerminatorRule) {
    const HKey key = createKey(store, "Data");
    // buffer: what the caller's memory holds; cbData: the size it passes.
    struct Case { const char* label; RegType type; std::string buffer; std::uint32_t cbData; std::string stored; };
    const Case cases[] = {
        {"terminator not counted, next byte NUL", kRegSz, "foobar\0"s, 6, "foobar\0"s},
        {"next byte not NUL", kRegSz, "foobarX", 6, "foobar"},
        {"expand string too", kRegExpandSz, "%x%\0"s, 3, "%x%\0"s},
        {"binary keeps its size (every type but the text ones)", kRegBinary, "ab\0"s, 2, "ab"},
        {"embedded NULs", kRegSz, "a\0b\0"s, 4, "a\0b\0"s},
        {"empty string", kRegSz, "\0"s, 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        ASSERT_EQ(store.setValue(key, "v", c.type, bytesOf(c.buffer.data()), c.cbData), kErrorSuccess);
        RegType type = kRegNone;
        EXPECT_EQ(store.queryValue(key, "v", &type, nullptr, nullptr), kErrorSuccess);
        EXPECT_EQ(type, c.type);
        EXPECT_EQ(valueBytes(store, key, "v"), c.stored);
    }
}

TEST_F(StoreSemantics, QueryHonoursTheCallersBuffer) {
    const HKey key = createKey(store, "Query");
    ASSERT_EQ(setString(store, key, "Test", "foobar"), kErrorSuccess);
    ASSERT_EQ(store.setValue(key, "raw", kRegSz, bytesOf("abcX"), 3), kErrorSuccess);
    // expected: result, size and type after the call, then what became of
    // a 10-byte buffer filled with '#' (when one was passed).
    const struct { const char* name; bool withBuffer; std::uint32_t cbData; std::string expected; } cases[] = {
        {"Test", false, 0, "0 7 1 ##########"},
        {"Test", true, 10, "0 7 1 foobar\0###"s},
        {"Test", true, 6, "234 7 1 ##########"},      // too small: the type is set all the same
        {"none", false, 5, "2 0 - ##########"},       // missing: the size is cleared ...
        {"none", true, 5, "2 5 - ##########"},        // ... unless a buffer was passed
        {"raw", true, 3, "0 3 1 abc#######"},         // unterminated, exactly its size
        {"raw", true, 4, "0 3 1 abc\0######"s},       // room for a NUL that is not counted
    };
    for (const auto& c : cases) {
        std::string buffer(10, '#');
        RegType type = 0xFFFF;
        std::uint32_t cb = c.cbData;
        const RegResult rc = store.queryValue(key, c.name, &type, c.withBuffer ? bytesOf(buffer.data()) : nullptr, &cb);
        const std::string typeText = rc == kErrorFileNotFound ? "-" : std::to_string(type);
        EXPECT_EQ(std::to_string(rc) + " " + std::to_string(cb) + " " + typeText + " " + buffer, c.expected) << c.name;
    }
}

// Key names too long for the buffer end the enumerations of the rename and
// end-of-pass tests (tests/store), which run on both backends too. Null
// buffers and sizes are not checked here: every caller goes through StoreKey
// or Registry, which never pass them.
TEST_F(StoreSemantics, EnumLeavesBuffersAloneWhenTheyAreTooSmall) {
    const HKey key = createKey(store, "Enum");
    ASSERT_EQ(setString(store, key, "Test", "foobar"), kErrorSuccess);
    // expected: result, name length and data size after the call, then
    // what became of 10-byte name and data buffers filled with '#'.
    // wine: Wine's answer where it differs.
    const struct { std::uint32_t cchName, cbData; std::string expected, wine; } cases[] = {
        {5, 10, "0 4 7 Test\0##### foobar\0###"s, ""},
        {4, 10, "234 4 7 ########## ##########", "234 4 7 Tes\0###### foobar\0###"s},  // no room for the NUL
        {10, 2, "234 10 7 ########## ##########", ""},
        {0, 10, "234 0 7 ########## ##########", "234 0 7 ########## foobar\0###"s},
    };
    for (const auto& c : cases) {
        std::string name(10, '#'), data(10, '#');
        std::uint32_t cch = c.cchName, cb = c.cbData;
        RegType type = kRegNone;
        const RegResult rc = store.enumValue(key, 0, name.data(), &cch, &type, bytesOf(data.data()), &cb);
        const std::string expected =
            c.wine.empty() ? c.expected : expectedAnswer(c.expected, kWineEnumValueData, c.wine);
        EXPECT_EQ(std::to_string(rc) + " " + std::to_string(cch) + " " + std::to_string(cb) + " " + name + " " + data,
                  expected) << c.cchName << " " << c.cbData;
        EXPECT_EQ(type, kRegSz);
    }
    char name[16];
    std::uint32_t cch = sizeof name;
    EXPECT_EQ(store.enumValue(key, 1, name, &cch, nullptr, nullptr, nullptr), kErrorNoMoreItems);

}

TEST_F(StoreSemantics, OpenGivesNewHandlesAndLeavesResultsAsWindowsDoes) {
    const HKey key = createKey(store, "Open");
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

    HKey result = 0x1234;
    EXPECT_EQ(store.openKey(0x9999, "x", kKeyAllAccess, &result), kErrorInvalidHandle);
    EXPECT_EQ(result, expectedAnswer<HKey>(0x1234u, kWineInvalidParentResult, kNoKey))
        << "invalid parent leaves the result alone";
    EXPECT_EQ(store.openKey(key, "missing", kKeyAllAccess, &result), kErrorFileNotFound);
    EXPECT_EQ(result, kNoKey);

    bool created = false;
    ASSERT_EQ(store.createKey(key, "x\\y\\z", kKeyAllAccess, &result, &created), kErrorSuccess);
    EXPECT_TRUE(created);
    store.closeKey(result);
    EXPECT_EQ(subkeyNames(store, open("Open\\x")), Names{"y"});
}

TEST_F(StoreSemantics, DeleteKeyIsNotRecursive) {
    const HKey parent = createKey(store, "Del");
    const HKey child = createKey(store, "Child\\Grandchild", parent);
    ASSERT_EQ(setString(store, child, "v", "x"), kErrorSuccess);
    struct Case { const char* label; HKey parent; const char* subKey; RegResult expected; };
    const Case cases[] = {
        {"has subkeys", parent, "child", kErrorAccessDenied},
        {"the root", kLocalMachine, "", kErrorAccessDenied},
        {"leaf, other case", parent, "CHILD\\GRANDCHILD", kErrorSuccess},
        {"now empty", parent, "Child", kErrorSuccess},
    };
    for (const auto& c : cases) EXPECT_EQ(store.deleteKey(c.parent, c.subKey), c.expected) << c.label;
    const HKey again = createKey(store, "Child\\Grandchild", parent);
    EXPECT_EQ(valueNames(store, again), Names{}) << "values went with the key";
    EXPECT_EQ(store.deleteKey(again, ""), kErrorSuccess) << "empty subkey deletes the key itself";
    EXPECT_EQ(subkeyNames(store, open("Del\\Child")), Names{});

    // Deleting while enumerating shifts the later keys down by one.
    for (const char* name : {"k1", "k2", "k3", "k4"}) createKey(store, name, parent);
    char name[16];
    ASSERT_EQ(store.enumKey(parent, 1, name, sizeof name), kErrorSuccess);
    ASSERT_EQ(store.deleteKey(parent, name), kErrorSuccess);
    ASSERT_EQ(store.enumKey(parent, 2, name, sizeof name), kErrorSuccess);
    EXPECT_STREQ(name, "k3") << "increasing index skips the entry that moved into the deleted slot";
    createKey(store, "k0", parent);
    ASSERT_EQ(store.enumKey(parent, 1, name, sizeof name), kErrorSuccess);
    EXPECT_STREQ(name, "k0") << "a new key shows at once";
}

TEST_F(StoreSemantics, HandleOnDeletedKeyNeverReachesItsSuccessor) {
    const HKey parent = createKey(store, "Gone");
    const HKey doomed = createKey(store, "Doomed", parent);
    ASSERT_EQ(setString(store, doomed, "old", "x"), kErrorSuccess);
    ASSERT_EQ(store.deleteKey(parent, "Doomed"), kErrorSuccess);
    const HKey successor = createKey(store, "DOOMED", parent);
    ASSERT_EQ(setString(store, successor, "new", "y"), kErrorSuccess);

    char name[16];
    std::uint32_t cch = sizeof name, cb = 0;
    HKey result = kNoKey;
    // Every call through the handle; the list is evaluated in order.
    const std::vector<RegResult> answers{store.queryValue(doomed, "new", nullptr, nullptr, &cb),
        setString(store, doomed, "new", "overwritten"), store.deleteValue(doomed, "new"),
        store.enumValue(doomed, 0, name, &cch, nullptr, nullptr, nullptr), store.enumKey(doomed, 0, name, sizeof name),
        store.openKey(doomed, "", kKeyAllAccess, &result),
        store.createKey(doomed, "sub", kKeyAllAccess, &result, nullptr),
        store.deleteKey(doomed, "")};
    EXPECT_EQ(answers, std::vector<RegResult>(8, kErrorKeyDeleted));
    EXPECT_EQ(store.closeKey(doomed), kErrorSuccess);
    EXPECT_EQ(valueNames(store, successor), Names{"new"});
    EXPECT_EQ(valueBytes(store, successor, "new"), "y\0"s);
}

}  // namespace
}  // namespace braxcfg::platform
