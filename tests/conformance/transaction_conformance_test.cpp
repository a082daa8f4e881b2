// What a StoreTransaction promises on every backend: a rewrite of keys and
// values that is rolled back, or whose process dies half-way, leaves the
// store as it was, values in their order included; a committed one stays.
// SQLite keeps it with its own transactions, the registry with the undo
// journal.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/store.h"
#include "store_access.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

using test::createKey;
using test::setString;
using test::subkeyNames;
using test::valueBytes;
using test::valueNames;

// Every key below `key` with its values and their bytes, in enumeration order.
std::string dump(StoreBackend& store, HKey key, const std::string& path = "") {
    std::string text = "[" + path + "]\n";
    for (const std::string& name : valueNames(store, key))
        text += "\"" + name + "\"=" + valueBytes(store, key, name.c_str()) + "\n";
    for (const std::string& name : subkeyNames(store, key)) {
        HKey child = kNoKey;
        store.openKey(key, name.c_str(), kKeyQueryValue, &child);
        text += dump(store, child, path + "\\" + name);
        store.closeKey(child);
    }
    return text;
}

HKey listKey(StoreBackend& store) { return createKey(store, "SOFTWARE\\Lists\\Aliases"); }

// The state every test starts from: values in an order that is not sorted,
// an unterminated string, a subkey with its own values and subkeys.
void writeOldList(StoreBackend& store) {
    const HKey list = listKey(store);
    for (const char* name : {"Zulu", "alpha", "Mike", "bravo"}) setString(store, list, name, std::string("old ") + name);
    store.setValue(list, "raw", kRegSz, test::bytesOf("abcX"), 3);
    const HKey entry = createKey(store, "GPIB0::5\\GPIB0::5::INSTR", list);
    setString(store, entry, "Driver", "old");
    store.closeKey(entry);
    store.closeKey(list);
}

// A rewrite that touches every kind of change: overwrite, delete, re-add,
// new values, keys deleted, keys created several levels deep.
void rewriteList(StoreBackend& store) {
    const HKey list = listKey(store);
    setString(store, list, "Mike", "new");
    store.deleteValue(list, "alpha");
    setString(store, list, "ALPHA", "re-added");
    store.deleteValue(list, "raw");
    setString(store, list, "Yankee", "new");
    store.deleteKey(list, "GPIB0::5\\GPIB0::5::INSTR");
    store.deleteKey(list, "GPIB0::5");
    const HKey added = createKey(store, "TCPIP0::host\\deep\\deeper", list);
    setString(store, added, "Driver", "new");
    store.closeKey(added);
    store.closeKey(list);
}

// Fixed per test, so that the child process of a death test opens the
// store its parent prepared.
std::string sharedLocation(const std::string& name) {
#ifdef _WIN32
    return "HKEY_CURRENT_USER\\Software\\braxcfg-tests\\" + name;
#else
    return test::testOutputDir("stores") + "/" + name + ".db";
#endif
}

class StoreTransactions : public ::testing::Test {
protected:
    test::TempStore temp;
    StoreBackend& store = currentStore();
};

TEST_F(StoreTransactions, RollbackRestoresKeysValuesAndTheirOrder) {
    writeOldList(store);
    const HKey list = listKey(store);
    const std::string before = dump(store, list);
    {
        StoreTransaction transaction;
        ASSERT_TRUE(transaction.active());
        rewriteList(store);
        ASSERT_NE(dump(store, list), before);
    }
    EXPECT_EQ(dump(store, list), before);
    EXPECT_EQ(valueBytes(store, list, "raw"), "abc") << "an unterminated string stays unterminated";
}

TEST_F(StoreTransactions, CommitKeepsTheRewriteAndNestedRollbackUndoesOnlyItsScope) {
    writeOldList(store);
    const HKey list = listKey(store);
    std::string afterInner;
    {
        StoreTransaction outer;
        setString(store, list, "outer", "kept");
        const std::string beforeInner = dump(store, list);
        {
            StoreTransaction inner;
            rewriteList(store);
        }
        EXPECT_EQ(dump(store, list), beforeInner) << "the inner scope alone is undone";
        {
            StoreTransaction inner;
            rewriteList(store);
            ASSERT_TRUE(inner.commit());
        }
        afterInner = dump(store, list);
        ASSERT_TRUE(outer.commit());
    }
    EXPECT_EQ(dump(store, list), afterInner);
    EXPECT_EQ(valueBytes(store, list, "outer"), std::string("kept\0", 5));
}

TEST(StoreTransactionsAcrossProcesses, AWriterKilledHalfWayLeavesTheOldState) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string location = sharedLocation("killed-writer");
    // A death test's child runs this test again from the start, up to the
    // statement it is to die in; preparing the store is the same for both.
    ASSERT_EQ(openStore(location).state, StoreOpenState::Open);
    StoreBackend& store = currentStore();
    const HKey lists = createKey(store, "SOFTWARE\\Lists");
    store.closeKey(lists);
    if (HKey old = kNoKey; store.openKey(kLocalMachine, "SOFTWARE\\Lists\\Aliases", kKeyQueryValue, &old) ==
                           kErrorSuccess) {
        store.closeKey(old);
    } else {
        writeOldList(store);
    }
    const HKey list = listKey(store);
    const std::string before = dump(store, list);
    store.closeKey(list);

    EXPECT_EXIT(
        {
            StoreTransaction transaction;
            rewriteList(store);
            std::_Exit(3);  // no rollback, no destructors: as if killed
        },
        ::testing::ExitedWithCode(3), "");

    // The next process to open the store finds the old state.
    ASSERT_EQ(openStore(location).state, StoreOpenState::Open);
    const HKey again = listKey(currentStore());
    EXPECT_EQ(dump(currentStore(), again), before);
    currentStore().closeKey(again);
    closeStore();
    test::removeTestStore(location);
}

}  // namespace
}  // namespace braxcfg::platform
