// The VISA services: status texts, the built-in session table and the
// probe's entry checks, handing everything to a system library (a stand-in
// built by the tests), and the probe's configured timeout.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstring>
#include <set>

#include "platform/product_settings.h"
#include "platform/registry.h"
#include "temp_store.h"
#include "visacore/probe_timeout.h"
#include "visacore/status_text.h"
#include "visacore/visa_api.h"

namespace braxcfg::visa {
namespace {

using std::chrono::milliseconds;

// The built-in VISA unless a test picks another (and puts it back): a VISA
// library installed on the machine must not answer for it.
void use(const char* choice) {
    setenv("BRAXCFG_VISA_LIBRARY", choice, 1);
    reselectVisaLibrary();
}
[[maybe_unused]] const bool kBuiltinVisa = setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1) == 0;

// Every entry is found by its own code and described in full by
// viStatusDesc; one text of each kind of code is pinned (the rest come
// from the same table), and codes not in the table are described by number.
TEST(StatusText, DescribesEveryCode) {
    std::set<std::string> names;
    char desc[kStatusDescLength];
    for (const StatusText& entry : statusTexts()) {
        EXPECT_TRUE(names.insert(entry.name).second) << "duplicate name " << entry.name;
        EXPECT_EQ(findStatusText(toStatus(entry.code)), &entry) << "duplicate code for " << entry.name;
        EXPECT_EQ(viStatusDesc(VI_NULL, toStatus(entry.code), desc), VI_SUCCESS);
        EXPECT_STREQ(desc, entry.description) << "the text must fit the buffer";
    }
    const struct { ViStatus status; const char* name; const char* description; } cases[] = {
        {VI_SUCCESS, "VI_SUCCESS", "Operation completed successfully."},
        {toStatus(0x3FFF007Du), "VI_SUCCESS_DEV_NPRESENT",
         "Session opened successfully, but the device at the specified address is not responding."},
        {toStatus(0xBFFF0014u), "", "Unknown error code 0xBFFF0014."},  // a gap in the numbering
        {toStatus(0x3FFF1234u), "", "Unknown completion code 0x3FFF1234."},
    };
    for (const auto& c : cases) {
        const StatusText* entry = findStatusText(c.status);
        EXPECT_STREQ(entry != nullptr ? entry->name : "", c.name);
        EXPECT_EQ(viStatusDesc(VI_NULL, c.status, desc), *c.name != '\0' ? VI_SUCCESS : VI_WARN_UNKNOWN_STATUS);
        EXPECT_STREQ(desc, c.description);
    }
    EXPECT_EQ(viStatusDesc(VI_NULL, VI_SUCCESS, nullptr), VI_ERROR_INV_PARAMETER);
}

TEST(BuiltinVisa, SessionsOpenCloseOnceAndCheckTheProbesArguments) {
    ViSession first = VI_NULL, second = VI_NULL, third = VI_NULL;
    ASSERT_EQ(viOpenDefaultRM(&first), VI_SUCCESS);
    ASSERT_EQ(viOpenDefaultRM(&second), VI_SUCCESS);
    // A null or repeated number would fail the closes that follow.
    EXPECT_EQ(viClose(first), VI_SUCCESS);
    EXPECT_EQ(viClose(first), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(viProbeRsrc(first, kResourceProbeSelector, "GPIB0::1::INSTR"), VI_ERROR_INV_OBJECT);
    ASSERT_EQ(viOpenDefaultRM(&third), VI_SUCCESS);
    EXPECT_NE(third, first) << "numbers are not handed out again at once";
    EXPECT_EQ(viProbeRsrc(second, kResourceProbeSelector + 1, "TCPIP0::127.0.0.1::1::SOCKET"), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viProbeRsrc(second, kResourceProbeSelector, nullptr), VI_ERROR_INV_RSRC_NAME);
    EXPECT_EQ(viClose(second), VI_SUCCESS);
    EXPECT_EQ(viClose(third), VI_SUCCESS);
}

TEST(SystemVisa, ForwardsEveryServiceToTheLibrary) {
    const struct Restore { ~Restore() { use("builtin"); } } restore;
    use(FAKE_VISA_PATH);
    EXPECT_EQ(activeVisaLocation(), FAKE_VISA_PATH);
    ViSession rm = VI_NULL;
    ASSERT_EQ(viOpenDefaultRM(&rm), VI_SUCCESS);
    EXPECT_EQ(rm, 0x5151u);
    // closes: the instrument session is closed exactly when one was opened.
    const struct { const char* resource; ViStatus expected; int closes; } cases[] = {
        {"TCPIP0::127.0.0.1::found0::INSTR", VI_SUCCESS, 1},
        {"TCPIP0::127.0.0.1::quiet0::INSTR", toStatus(0x3FFF007Du), 1},
        {"TCPIP0::127.0.0.2::inst0::INSTR", VI_ERROR_MACHINE_NAVAIL, 0},
    };
    int closed = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.resource);
        EXPECT_EQ(viProbeRsrc(rm, kResourceProbeSelector, c.resource, ProbeControl{milliseconds(1234)}), c.expected);
        // The library's text says how many instruments it closed and the
        // open timeout it was given (the probe's).
        char desc[kStatusDescLength];
        ASSERT_EQ(viStatusDesc(rm, VI_ERROR_TMO, desc), VI_SUCCESS);
        closed += c.closes;
        EXPECT_EQ(std::string(desc), "system text for BFFF0015; " + std::to_string(closed) + " closed, timeout 1234");
    }
    EXPECT_EQ(viClose(rm), VI_SUCCESS);
}

// A library without viOpen, a missing one and a relative path; why is only
// said on the debug output.
TEST(SystemVisa, FallsBackToTheBuiltinOne) {
    for (const char* choice : {FAKE_VISA_PARTIAL_PATH, "/nonexistent/libvisa.so", "libvisa.so"}) {
        SCOPED_TRACE(choice);
        use(choice);
        EXPECT_TRUE(activeVisaLocation().empty());
        char desc[kStatusDescLength];
        EXPECT_EQ(viStatusDesc(VI_NULL, VI_ERROR_TMO, desc), VI_SUCCESS);
        EXPECT_STREQ(desc, "Timeout expired before operation completed.") << "the built-in one answers";
    }
}

// The product reader decides the value's forms; here: the setting is the
// one read, and whatever comes is kept within bounds. A caller's own
// timeout reaching the library is the forwarding test's.
TEST(ProbeTimeout, ProductSettingIsReadAndClamped) {
    EXPECT_EQ(clampProbeTimeout(0), milliseconds(3000));
    test::TempStore store;
    EXPECT_EQ(configuredProbeTimeout(), milliseconds(3000)) << "missing";
    platform::Registry(platform::kLocalMachine, platform::productKey(), platform::kRegOpenOrCreate)
        .setDword(kProbeTimeoutValue, 3600000);
    store.reopen();
    EXPECT_EQ(effectiveProbeTimeout(milliseconds(0)), milliseconds(60000)) << "no timeout of its own: the setting";
}

}  // namespace
}  // namespace braxcfg::visa
