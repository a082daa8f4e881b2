// What a StoreTransaction promises on every backend: a rewrite of keys and
// values that is rolled back, or whose process dies half-way, leaves the
// store as it was, values in their order included; a committed one stays.
// SQLite keeps it with its own transactions, the registry with the undo
// journal.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/regfile/reg_export.h"
#include "platform/regfile/reg_import.h"
#include "platform/store.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

const std::string kList = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Lists\\Aliases";

// The list's keys and values with their bytes, in enumeration order.
std::string dump() {
    const auto file = regfile::exportRegFile(currentStore(), kList, regfile::RegTextEncoding::Utf8);
    return file.error ? "<" + *file.error + ">" : file.bytes;
}

void apply(const std::string& changes) {
    const auto error = regfile::importRegFile(currentStore(), "REGEDIT4\n[" + kList + "]\n" + changes);
    ASSERT_FALSE(error) << regfile::describe(*error);
}

// The state every test starts from: values in an order that is not sorted,
// an unterminated string, a subkey with its own values and subkeys.
const std::string kOldList = "\"Zulu\"=\"old\"\n\"alpha\"=\"old\"\n\"Mike\"=\"old\"\n\"bravo\"=\"old\"\n"
                             "\"raw\"=hex(1):61,62,63\n[" + kList + "\\GPIB0::5\\GPIB0::5::INSTR]\n"
                             "\"Driver\"=\"old\"\n";
// A rewrite that touches every kind of change: overwrite, delete, re-add,
// new values, keys deleted, keys created several levels deep.
const std::string kRewrite = "\"Mike\"=\"new\"\n\"alpha\"=-\n\"ALPHA\"=\"re-added\"\n\"raw\"=-\n\"Yankee\"=\"new\"\n"
                             "[-" + kList + "\\GPIB0::5]\n[" + kList + "\\TCPIP0::host\\deep\\deeper]\n"
                             "\"Driver\"=\"new\"\n";

// Fixed per test, so that the child process of a death test opens the
// store its parent prepared.
std::string sharedLocation(const std::string& name) {
#ifdef _WIN32
    return "HKEY_CURRENT_USER\\Software\\braxcfg-tests\\" + name;
#else
    return test::testOutputDir("stores") + "/" + name + ".db";
#endif
}

// A rollback restores keys, values and their order; a nested scope's
// rollback undoes only that scope, and its commit lasts, in the store as the
// next process opens it, only with the outer scope's.
TEST(StoreTransactions, NestedScopesLastOnlyWithTheOuterCommit) {
    for (const bool commitOuter : {false, true}) {
        SCOPED_TRACE(commitOuter ? "outer commits" : "outer rolls back");
        test::TempStore temp;
        apply(kOldList);
        const std::string before = dump();
        std::string afterInner;
        {
            StoreTransaction outer;
            ASSERT_TRUE(outer.active());
            apply("\"outer\"=\"kept\"\n");
            const std::string beforeInner = dump();
            {
                StoreTransaction inner;
                apply(kRewrite);
            }
            EXPECT_EQ(dump(), beforeInner) << "the inner scope alone is undone";
            {
                StoreTransaction inner;
                apply(kRewrite);
                ASSERT_TRUE(inner.commit());
            }
            afterInner = dump();
            if (commitOuter) { ASSERT_TRUE(outer.commit()); }
        }
        temp.reopen();
        EXPECT_EQ(dump(), commitOuter ? afterInner : before);
    }
}

TEST(StoreTransactionsAcrossProcesses, AWriterKilledHalfWayLeavesTheOldState) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string location = sharedLocation("killed-writer");
    // A death test's child runs this test again from the start, up to the
    // statement it is to die in; preparing the store is the same for both.
    ASSERT_EQ(openStore(location).state, StoreOpenState::Open);
    apply(kOldList);
    const std::string before = dump();
    EXPECT_EXIT(
        {
            StoreTransaction transaction;
            apply(kRewrite);
            std::_Exit(3);  // no rollback, no destructors: as if killed
        },
        ::testing::ExitedWithCode(3), "");
    // The next process to open the store finds the old state.
    ASSERT_EQ(openStore(location).state, StoreOpenState::Open);
    EXPECT_EQ(dump(), before);
    closeStore();
    test::removeTestStore(location);
}

}  // namespace
}  // namespace braxcfg::platform
