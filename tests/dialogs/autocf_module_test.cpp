// The auto-configuration module we ship, loaded as the plug-in loads it:
// its sources in their order, and its refusal of a record of another
// layout. The lab named by the environment and an unreadable lab are the
// tool's autoconfig test.
#include <braxcfg/autocf.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "fake_autocf.h"
#include "lab_file.h"
#include "scoped_env.h"
#include "store_builder.h"
#include "temp_store.h"
#include "visacore/visa_api.h"

namespace braxcfg::dialogs {
namespace {

using Names = std::vector<std::string>;
using test::ScopedEnv;

TEST(AutocfModule, AnswersFromItsSourcesInOrder) {
    const std::tuple<std::string, const char*, Names> sources[] = {  // "LabFile" setting, VISA library, found
        // The lab answers the instruments on GPIB0 only, newest (last in the file) first.
        {BRAXCFG_EXAMPLES "/lab.ini", FAKE_VISA_PATH, {"GPIB0::9", "GPIB0::5::3", "GPIB0::22"}},
        {"", FAKE_VISA_PATH, {"GPIB0::5::3", "GPIB0::3", "GPIB0::7"}},
        {"", "builtin", {}},
    };
    const ScopedEnv modules("BRAXCFG_MODULE_PATH", AUTOCF_MODULE_DIR);
    const ScopedEnv lab("BRAXCFG_LAB", nullptr);
    for (const auto& [labSetting, visaLibrary, found] : sources) {
        SCOPED_TRACE(labSetting + visaLibrary);
        test::TempStore store;
        test::putInterface("INTF0", "GPIB0", "GPIB");
        if (!labSetting.empty()) test::putString(test::underProduct(), "LabFile", labSetting);
        const ScopedEnv library("BRAXCFG_VISA_LIBRARY", visaLibrary);
        visa::reselectVisaLibrary();
        Names messages;
        EXPECT_EQ(test::searchIntf0(messages).newDevices, found);
        EXPECT_EQ(messages, Names{});
    }
    visa::reselectVisaLibrary();
}

TEST(AutocfModule, RefusesARecordOfAnotherLayout) {
    void* module = dlopen(AUTOCF_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    auto reset = reinterpret_cast<braxcfg_autocf_reset_fn>(dlsym(module, "AUTOCF_autoConfigReset"));
    auto next = reinterpret_cast<braxcfg_autocf_next_dev_fn>(dlsym(module, "AUTOCF_autoConfigNextDev"));
    ASSERT_TRUE(reset && next);
    // Only the two leading fields may be read from a record of another
    // layout: here one of this version that is too short.
    braxcfg_autocf_record record{};
    record.version = BRAXCFG_AUTOCF_VERSION;
    record.size = 8;
    EXPECT_EQ(reset(&record, 0), BRAXCFG_AUTOCF_ERROR_LAYOUT);
    EXPECT_EQ(next(&record), BRAXCFG_AUTOCF_ERROR_LAYOUT);
    EXPECT_EQ(reset(nullptr, 0), BRAXCFG_AUTOCF_ERROR_INV_PARAMETER);
    dlclose(module);
}

// Reading a good lab is the search test's above, through the example lab.
TEST(LabFile, RefusesBadLinesAndNamesDevicesOnTheInterface) {
    for (const auto& [text, error] : {std::pair{"[GPIB0::1]\njunk\n", "line 2: expected [RESOURCE] or NAME = VALUE"},
                                      std::pair{"[GPIB0::1\n", "line 1: a section name needs [RESOURCE]"}}) {
        const auto refused = lab::parseLabText(text);
        EXPECT_EQ(refused.error, error) << text;
        EXPECT_TRUE(refused.instruments.empty());
    }
    for (const auto& [resource, device, onGpib0] :
         {std::tuple{"gpib0::5::3::instr", "gpib0::5::3", true}, std::tuple{"GPIB0::22", "GPIB0::22", true},
          std::tuple{"GPIB01::2::INSTR", "GPIB01::2", false}}) {
        EXPECT_EQ(lab::deviceNameOf(resource), device);
        EXPECT_EQ(lab::isOnInterface(resource, "GPIB0"), onGpib0) << resource;
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
