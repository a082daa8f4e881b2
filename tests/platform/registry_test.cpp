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
        SCOPED_TRACE(state);
        DebugCapture debug;
        Registry reg(kLocalMachine, "SOFTWARE\\Mode", state);
        EXPECT_FALSE(reg.isOpen());
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
    for (const auto& [length, readable] : {std::pair{254, true}, std::pair{255, true}, std::pair{256, false}}) {
        const std::string text(length, 's');
        reg.setString("text", text);
        EXPECT_EQ(reg.getString("text"), readable ? text : "") << length;
    }
    reg.setString("MixedName", "x");
    EXPECT_TRUE(reg.valueExists("MixedName"));
    EXPECT_FALSE(reg.valueExists("mixedname"));
    EXPECT_EQ(reg.getString("mixedname"), "x") << "the store itself ignores case";

    // Key names are read through 80 characters: sorted, "A..." fits, the
    // 80-character "B..." does not, "C" comes after it.
    for (const std::string& name : {std::string(79, 'A'), std::string(80, 'B'), std::string("C")})
        Registry child(reg.handle(), name, kRegOpenOrCreate);
    EXPECT_EQ(reg.enumKey(0), std::string(79, 'A'));
    EXPECT_EQ(reg.enumKey(1), "") << "does not fit the buffer";
    EXPECT_EQ(reg.enumKey(2), "C") << "the store still has the keys after it";
}

}  // namespace
}  // namespace braxcfg::platform
