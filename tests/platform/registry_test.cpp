// The Registry wrapper over the real store: its fixed buffers and its
// behaviour when the key is not open.
#include "platform/registry.h"

#include <gtest/gtest.h>

#include "platform/debug_output.h"
#include "platform/store.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

TEST(RegistryWrapper, UnknownOpenModeGivesAnEmptyWrapper) {
    test::TempStore temp;
    for (const RegState state : {2, -1}) {
        DebugCapture debug;
        Registry reg(kLocalMachine, "SOFTWARE\\Mode", state);
        EXPECT_FALSE(reg.isOpen()) << state;
        EXPECT_EQ(debug.text(), "Invalid RegState to Registry::Registry\n");
        reg.setString("v", "x");
        EXPECT_EQ(reg.getString("v"), "");
    }
    EXPECT_FALSE(Registry(kLocalMachine, "SOFTWARE\\Mode", kRegOpenExisting).isOpen()) << "nothing was created";
}

TEST(RegistryWrapper, FixedBuffersAndCaseSensitiveValueExists) {
    test::TempStore temp;
    Registry reg(kLocalMachine, "SOFTWARE\\Buffers", kRegOpenOrCreate);
    ASSERT_TRUE(reg.isOpen());
    // Strings are read through a 256-byte buffer.
    for (const auto& [length, readable] : {std::pair{255, true}, std::pair{256, false}}) {
        reg.setString("text", std::string(length, 's'));
        EXPECT_EQ(reg.getString("text"), readable ? std::string(length, 's') : "") << length;
    }
    reg.setString("MixedName", "x");
    EXPECT_TRUE(reg.valueExists("MixedName"));
    EXPECT_FALSE(reg.valueExists("mixedname"));
    EXPECT_EQ(reg.getString("mixedname"), "x") << "the store itself ignores case";
    // Key names are read through 80 characters: sorted, "A..." fits, the
    // 80-character "B..." does not, "C" comes after it.
    for (const std::string& name : {std::string(79, 'A'), std::string(80, 'B'), std::string("C")})
        Registry child(reg.handle(), name, kRegOpenOrCreate);
    EXPECT_EQ(reg.enumKey(0) + "|" + reg.enumKey(1) + "|" + reg.enumKey(2), std::string(79, 'A') + "||C");
}

}  // namespace
}  // namespace braxcfg::platform
