// The built-in VISA services: status texts, the session table and the
// probe's entry checks.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstring>
#include <set>
#include <string>

#include "visacore/status_text.h"
#include "visacore/visa_api.h"

namespace braxcfg::visa {
namespace {

class BuiltinVisaTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1);
        reselectVisaLibrary();
    }
    void TearDown() override {
        unsetenv("BRAXCFG_VISA_LIBRARY");
        reselectVisaLibrary();
    }
};

TEST(StatusText, TableIsConsistent) {
    std::set<std::string> names;
    for (const StatusText& entry : statusTexts()) {
        SCOPED_TRACE(entry.name);
        EXPECT_TRUE(names.insert(entry.name).second) << "duplicate name";
        const bool error = static_cast<ViStatus>(entry.code) < 0;
        const std::string name = entry.name;
        EXPECT_EQ(name.rfind(error ? "VI_ERROR_" : "VI_", 0), 0u);
        if (!error && entry.code != 0) {
            EXPECT_TRUE(name.rfind("VI_SUCCESS_", 0) == 0 || name.rfind("VI_WARN_", 0) == 0);
        }
        const std::string description = entry.description;
        EXPECT_FALSE(description.empty());
        EXPECT_EQ(description.back(), '.');
        EXPECT_LT(description.size(), kStatusDescLength);
    }
}

TEST(StatusText, DescribesCodesByNumber) {
    struct Case {
        ViStatus status;
        const char* name;
        const char* description;
    };
    const Case cases[] = {
        {VI_SUCCESS, "VI_SUCCESS", "Operation completed successfully."},
        {VI_ERROR_RSRC_NFOUND, "VI_ERROR_RSRC_NFOUND",
         "Insufficient location information or the requested device or resource is not present in the system."},
        {VI_ERROR_MACHINE_NAVAIL, "VI_ERROR_MACHINE_NAVAIL",
         "The remote machine does not exist or is not accepting any connections."},
        {toStatus(0x3FFF007Du), "VI_SUCCESS_DEV_NPRESENT",
         "Session opened successfully, but the device at the specified address is not responding."},
    };
    for (const Case& c : cases) {
        const StatusText* entry = findStatusText(c.status);
        ASSERT_NE(entry, nullptr) << c.name;
        EXPECT_STREQ(entry->name, c.name);
        EXPECT_EQ(statusDescription(c.status), c.description);
    }
    EXPECT_EQ(findStatusText(toStatus(0xBFFF0014u)), nullptr) << "a gap in the numbering";
    EXPECT_EQ(statusDescription(toStatus(0xBFFF0014u)), "Unknown error code 0xBFFF0014.");
    EXPECT_EQ(statusDescription(toStatus(0x3FFF1234u)), "Unknown completion code 0x3FFF1234.");
}

TEST_F(BuiltinVisaTest, StatusDescFillsTheBufferAndFlagsUnknownCodes) {
    char desc[kStatusDescLength];
    std::memset(desc, 'x', sizeof desc);
    EXPECT_EQ(viStatusDesc(VI_NULL, VI_ERROR_TMO, desc), VI_SUCCESS);
    EXPECT_STREQ(desc, "Timeout expired before operation completed.");
    EXPECT_EQ(viStatusDesc(VI_NULL, toStatus(0xBFFF0014u), desc), VI_WARN_UNKNOWN_STATUS);
    EXPECT_STREQ(desc, "Unknown error code 0xBFFF0014.");
    EXPECT_EQ(viStatusDesc(VI_NULL, VI_SUCCESS, nullptr), VI_ERROR_INV_PARAMETER);
}

TEST_F(BuiltinVisaTest, SessionsOpenAndCloseOnce) {
    ViSession first = VI_NULL, second = VI_NULL;
    ASSERT_EQ(viOpenDefaultRM(&first), VI_SUCCESS);
    ASSERT_EQ(viOpenDefaultRM(&second), VI_SUCCESS);
    EXPECT_NE(first, VI_NULL);
    EXPECT_NE(first, second);
    EXPECT_EQ(viClose(first), VI_SUCCESS);
    EXPECT_EQ(viClose(first), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(viProbeRsrc(first, kResourceProbeSelector, "GPIB0::1::INSTR"), VI_ERROR_INV_OBJECT)
        << "a closed session cannot probe";
    EXPECT_EQ(viClose(VI_NULL), VI_WARN_NULL_OBJECT);
    EXPECT_EQ(viOpenDefaultRM(nullptr), VI_ERROR_INV_PARAMETER);
    ViSession third = VI_NULL;
    ASSERT_EQ(viOpenDefaultRM(&third), VI_SUCCESS);
    EXPECT_NE(third, first) << "numbers are not handed out again at once";
    EXPECT_EQ(viClose(second), VI_SUCCESS);
    EXPECT_EQ(viClose(third), VI_SUCCESS);
}

TEST_F(BuiltinVisaTest, ProbeChecksItsArgumentsFirst) {
    ViSession rm = VI_NULL;
    ASSERT_EQ(viOpenDefaultRM(&rm), VI_SUCCESS);
    EXPECT_EQ(viProbeRsrc(rm, kResourceProbeSelector + 1, "TCPIP0::127.0.0.1::1::SOCKET"), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viProbeRsrc(rm, kResourceProbeSelector, nullptr), VI_ERROR_INV_RSRC_NAME);
    EXPECT_EQ(viProbeRsrc(rm, kResourceProbeSelector, "GPIB0::1::INSTR"), VI_ERROR_NSUP_OPER);
    viClose(rm);
}

}  // namespace
}  // namespace braxcfg::visa
