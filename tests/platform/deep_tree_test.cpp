// Trees far deeper than the registry allows (a foreign tool can make them):
// every walk over them finishes without exhausting the stack, export and
// import refuse them.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "platform/registry.h"
#include "platform/regfile/reg_export.h"
#include "platform/regfile/reg_import.h"
#include "platform/store.h"
#include "key_chain.h"
#include "store_builder.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

// A [-key] import deletes through the same tree delete as Registry::deleteTree.
TEST(DeepTree, EveryWalkFinishesAtAnyDepth) {
    // run: true when the walk did its work.
    const struct { const char* walk; int levels; std::function<bool()> run; bool keyRemains; } cases[] = {
        {"export", 100000,
         [] {
             const auto result = regfile::exportRegFile(currentStore(), "HKEY_LOCAL_MACHINE\\SOFTWARE\\Deep",
                                                        regfile::RegTextEncoding::Utf8);
             // Refused whole: such a file could not be imported again.
             return result.error && result.error->find("deeper than the 512 levels") != std::string::npos;
         },
         true},
        {"Registry::deleteTree", 40000,
         [] { return Registry(kLocalMachine, "SOFTWARE", kRegOpenExisting).deleteTree("Deep") == kErrorSuccess; },
         false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.walk);
        test::TempStore temp;
        const Registry deep(kLocalMachine, "SOFTWARE\\Deep", kRegOpenOrCreate);
        ASSERT_TRUE(test::createKeyChain(deep.handle(), c.levels));
        EXPECT_TRUE(c.run());
        EXPECT_EQ(test::keyExists("SOFTWARE\\Deep"), c.keyRemains);
    }
}

TEST(DeepTree, ImportRefusesKeysDeeperThanTheRegistryAllows) {
    test::TempStore temp;
    // levels below HKEY_LOCAL_MACHINE: line 4 holds the key.
    const struct { int levels; bool refused; } cases[] = {{513, true}, {512, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.levels);
        std::string path = "HKEY_LOCAL_MACHINE\\SOFTWARE";
        for (int i = 1; i < c.levels; ++i) path += "\\k";
        const auto error = regfile::importRegFile(currentStore(), "REGEDIT4\n\n\n[" + path + "]\n");
        const std::string refusal =
            "line 4: the key is " + std::to_string(c.levels) + " levels deep; the store allows at most 512";
        EXPECT_EQ(error ? regfile::describe(*error) : "accepted", c.refused ? refusal : "accepted");
        EXPECT_EQ(test::keyExists("SOFTWARE\\k"), !c.refused);
    }
}

}  // namespace
}  // namespace braxcfg::platform
