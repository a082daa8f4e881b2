// The Registry wrapper over the real store: its fixed buffers and its
// behaviour when the key is not open. Its 80-character key names end the
// enumerations of the rename and end-of-pass tests (tests/store).
#include "platform/registry.h"

#include <gtest/gtest.h>

#include "platform/debug_output.h"
#include "platform/store.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

TEST(RegistryWrapper, UnknownOpenModeGivesAnEmptyWrapper) {
    test::TempStore temp;
    DebugCapture debug;
    Registry reg(kLocalMachine, "SOFTWARE\\Mode", 2);
    EXPECT_FALSE(reg.isOpen());
    EXPECT_EQ(debug.text(), "Invalid RegState to Registry::Registry\n");
    reg.setString("v", "x");
    EXPECT_EQ(reg.getString("v"), "");
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
}

}  // namespace
}  // namespace braxcfg::platform
