// Handing the VISA services to a system library, with a stand-in built by
// the tests.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>

#include "platform/debug_output.h"
#include "visacore/visa_api.h"

namespace braxcfg::visa {
namespace {

class SystemVisaTest : public ::testing::Test {
protected:
    void use(const char* choice) {
        setenv("BRAXCFG_VISA_LIBRARY", choice, 1);
        reselectVisaLibrary();
    }
    void TearDown() override {
        unsetenv("BRAXCFG_VISA_LIBRARY");
        reselectVisaLibrary();
    }
    template <typename Fn>
    Fn* fakeFunction(const char* name) {
        void* handle = dlopen(FAKE_VISA_PATH, RTLD_NOW | RTLD_NOLOAD);
        EXPECT_NE(handle, nullptr);
        Fn* fn = handle != nullptr ? reinterpret_cast<Fn*>(dlsym(handle, name)) : nullptr;
        if (handle != nullptr) dlclose(handle);
        return fn;
    }
};

TEST_F(SystemVisaTest, ForwardsEveryServiceToTheLibrary) {
    use(FAKE_VISA_PATH);
    EXPECT_EQ(activeVisaLocation(), FAKE_VISA_PATH);
    ViSession rm = VI_NULL;
    ASSERT_EQ(viOpenDefaultRM(&rm), VI_SUCCESS);
    EXPECT_EQ(rm, 0x5151u);
    char desc[kStatusDescLength];
    ASSERT_EQ(viStatusDesc(rm, VI_ERROR_TMO, desc), VI_SUCCESS);
    EXPECT_STREQ(desc, "system text for BFFF0015");

    const auto closedInstruments = fakeFunction<int()>("fakeVisaClosedInstruments");
    const auto lastTimeout = fakeFunction<std::uint32_t()>("fakeVisaLastTimeout");
    ASSERT_NE(closedInstruments, nullptr);
    ASSERT_NE(lastTimeout, nullptr);
    struct Case {
        const char* resource;
        ViStatus expected;
        int closes;  // the instrument session is closed exactly when one was opened
    };
    const Case cases[] = {
        {"TCPIP0::127.0.0.1::found0::INSTR", VI_SUCCESS, 1},
        {"TCPIP0::127.0.0.1::quiet0::INSTR", toStatus(0x3FFF007Du), 1},
        {"TCPIP0::127.0.0.1::located0::INSTR", VI_ERROR_RSRC_NFOUND, 0},
        {"TCPIP0::127.0.0.2::inst0::INSTR", VI_ERROR_MACHINE_NAVAIL, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.resource);
        const int before = closedInstruments();
        EXPECT_EQ(viProbeRsrc(rm, kResourceProbeSelector, c.resource, ProbeControl{std::chrono::milliseconds(1234)}),
                  c.expected);
        EXPECT_EQ(closedInstruments() - before, c.closes);
        EXPECT_EQ(lastTimeout(), 1234u) << "the probe's timeout becomes the open timeout";
    }
    EXPECT_EQ(viClose(rm), VI_SUCCESS);
}

TEST_F(SystemVisaTest, FallsBackToTheBuiltinOne) {
    struct Case {
        const char* choice;
        const char* debugLine;  // what the fallback says, or null for a silent choice
    };
    const Case cases[] = {
        {FAKE_VISA_PARTIAL_PATH, "has no viOpen"},
        {"/nonexistent/libvisa.so", "/nonexistent/libvisa.so"},
        {"libvisa.so", "not an absolute path"},
        {"builtin", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.choice);
        platform::DebugCapture capture;
        use(c.choice);
        EXPECT_TRUE(activeVisaLocation().empty());
        if (c.debugLine != nullptr)
            EXPECT_NE(capture.text().find(c.debugLine), std::string::npos) << capture.text();
        else
            EXPECT_EQ(capture.text(), "");
        char desc[kStatusDescLength];
        EXPECT_EQ(viStatusDesc(VI_NULL, VI_ERROR_TMO, desc), VI_SUCCESS);
        EXPECT_STREQ(desc, "Timeout expired before operation completed.");
    }
}

}  // namespace
}  // namespace braxcfg::visa
