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
    Registry check(kLocalMachine, "SOFTWARE\\Mode", kRegOpenExisting);
    EXPECT_FALSE(check.isOpen()) << "nothing was created";
}

TEST(RegistryWrapper, StringsReadThroughA256ByteBuffer) {
    test::TempStore temp;
    Registry reg(kLocalMachine, "SOFTWARE\\Strings", kRegOpenOrCreate);
    ASSERT_TRUE(reg.isOpen());
    struct LengthCase {
        std::size_t length;
        bool readable;
    };
    for (const LengthCase c : {LengthCase{254, true}, LengthCase{255, true}, LengthCase{256, false}}) {
        SCOPED_TRACE(c.length);
        const std::string text(c.length, 's');
        reg.setString("text", text);
        EXPECT_EQ(reg.getString("text"), c.readable ? text : "");
    }
}

TEST(RegistryWrapper, ValueExistsIsCaseSensitiveUnlikeTheStore) {
    test::TempStore temp;
    Registry reg(kLocalMachine, "SOFTWARE\\Exists", kRegOpenOrCreate);
    reg.setString("MixedName", "x");
    EXPECT_TRUE(reg.valueExists("MixedName"));
    EXPECT_FALSE(reg.valueExists("mixedname"));
    EXPECT_EQ(reg.getString("mixedname"), "x") << "the store itself ignores case";
}

TEST(RegistryWrapper, EightyCharacterKeyNameEndsTheEnumeration) {
    test::TempStore temp;
    Registry reg(kLocalMachine, "SOFTWARE\\Enum", kRegOpenOrCreate);
    // Sorted: "A...", then the 80-character "B...", then "C".
    for (const std::string& name : {std::string(79, 'A'), std::string(80, 'B'), std::string("C")})
        Registry child(reg.handle(), name, kRegOpenOrCreate);
    EXPECT_EQ(reg.enumKey(0), std::string(79, 'A'));
    EXPECT_EQ(reg.enumKey(1), "") << "does not fit the buffer";
    EXPECT_EQ(reg.enumKey(2), "C") << "the store still has the keys after it";
}

}  // namespace
}  // namespace braxcfg::platform
