// Trees far deeper than the registry allows (a foreign tool can make them):
// every walk over them finishes without exhausting the stack, export and
// import refuse them.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "platform/registry.h"
#include "platform/regfile/reg_export.h"
#include "platform/regfile/reg_import.h"
#include "platform/regfile/reg_parser.h"
#include "platform/store.h"
#include "store_test_access.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

// SOFTWARE\Deep\k\k\...\k, `levels` keys of "k" below Deep, the last
// holding a value; built one level at a time in one transaction.
void buildChain(int levels) {
    StoreBackend& store = currentStore();
    StoreTransaction transaction;
    HKey key = test::createKey(store, "SOFTWARE\\Deep");
    for (int i = 0; i < levels; ++i) {
        const HKey next = test::createKey(store, "k", key);
        store.closeKey(key);
        key = next;
    }
    test::setString(store, key, "bottom", "yes");
    store.closeKey(key);
    ASSERT_TRUE(transaction.commit());
}

bool keyExists(const char* path = "SOFTWARE\\Deep") {
    HKey key = kNoKey;
    const bool exists = currentStore().openKey(kLocalMachine, path, kKeyAllAccess, &key) == kErrorSuccess;
    currentStore().closeKey(key);
    return exists;
}

TEST(DeepTree, EveryWalkFinishesAtAnyDepth) {
    const struct {
        const char* walk;
        int levels;
        std::function<bool()> run;  // true when the walk did its work
        bool keyRemains;
    } cases[] = {
        {"export", 100000,
         [] {
             const auto result = regfile::exportRegFile(currentStore(), "HKEY_LOCAL_MACHINE\\SOFTWARE\\Deep",
                                                        regfile::RegTextEncoding::Utf8);
             // Refused whole: such a file could not be imported again.
             return result.error && result.error->find("deeper than the 512 levels") != std::string::npos;
         },
         true},
        {"[-key] import", 40000,
         [] { return !regfile::importRegFile(currentStore(), "REGEDIT4\n\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Deep]\n"); },
         false},
        {"Registry::deleteTree", 40000,
         [] { return Registry(kLocalMachine, "SOFTWARE", kRegOpenExisting).deleteTree("Deep") == kErrorSuccess; },
         false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.walk);
        test::TempStore temp;
        buildChain(c.levels);
        EXPECT_TRUE(c.run());
        EXPECT_EQ(keyExists(), c.keyRemains);
    }
}

TEST(DeepTree, ImportRefusesKeysDeeperThanTheRegistryAllows) {
    test::TempStore temp;
    const auto path = [](int levels) {
        std::string text = "HKEY_LOCAL_MACHINE\\SOFTWARE";
        for (int i = 1; i < levels; ++i) text += "\\k";
        return text;
    };
    // levels below HKEY_LOCAL_MACHINE, the line's form: line 4 holds the key.
    const struct { int levels; const char* prefix; bool refused; } cases[] = {
        {513, "[", true}, {40000, "[-", true}, {512, "[", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.levels);
        const auto error = regfile::importRegFile(currentStore(), "REGEDIT4\n\n\n" + std::string(c.prefix) +
                                                                      path(c.levels) + "]\n");
        ASSERT_EQ(error.has_value(), c.refused) << (error ? regfile::describe(*error) : "");
        if (error) {
            EXPECT_EQ(regfile::describe(*error),
                      "line 4: the key is " + std::to_string(c.levels) + " levels deep; the store allows at most 512");
        }
        EXPECT_EQ(keyExists("SOFTWARE\\k"), !c.refused);
    }
}

}  // namespace
}  // namespace braxcfg::platform
