// The auto-configuration module we ship, loaded as the plug-in loads it:
// its three sources in their order, and its refusal of a record of another
// layout.
#include <braxcfg/autocf.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "dialogs/done_auto_config_logic.h"
#include "lab_file.h"
#include "scoped_env.h"
#include "store/config_store.h"
#include "store_builder.h"
#include "temp_store.h"
#include "visacore/visa_api.h"

namespace braxcfg::dialogs {
namespace {

using Names = std::vector<std::string>;

const std::string kLab = std::string(BRAXCFG_EXAMPLES) + "/lab.ini";

using test::ScopedEnv;

struct SourceCase {
    const char* name;
    const char* labEnv;       // BRAXCFG_LAB
    std::string labSetting;   // "LabFile" below the product key
    const char* visaLibrary;  // BRAXCFG_VISA_LIBRARY
    Names found;
    Names messages;
};

const SourceCase kSources[] = {
    // The lab answers the instruments on GPIB0 only, newest (last in the file) first.
    {"LabFromEnvironment", kLab.c_str(), "", FAKE_VISA_PATH, {"GPIB0::9", "GPIB0::5::3", "GPIB0::22"}, {}},
    {"LabFromProductSetting", nullptr, kLab, FAKE_VISA_PATH, {"GPIB0::9", "GPIB0::5::3", "GPIB0::22"}, {}},
    {"SystemVisaWithoutLab", nullptr, "", FAKE_VISA_PATH, {"GPIB0::5::3", "GPIB0::3", "GPIB0::7"}, {}},
    {"NothingWithoutEither", nullptr, "", "builtin", {}, {}},
    {"UnreadableLabIsAnError", "/nonexistent/lab.ini", "", "builtin", {},
     {"VISA Error (0xbfff003a) occurred. "}},
};

class AutocfModule : public ::testing::TestWithParam<SourceCase> {};

TEST_P(AutocfModule, AnswersFromItsSourcesInOrder) {
    const SourceCase& c = GetParam();
    test::TempStore store;
    test::putInterface("INTF0", "GPIB0", "GPIB");
    if (!c.labSetting.empty()) test::putString(test::underProduct(), "LabFile", c.labSetting);
    const ScopedEnv modules("BRAXCFG_MODULE_PATH", AUTOCF_MODULE_DIR);
    const ScopedEnv lab("BRAXCFG_LAB", c.labEnv);
    const ScopedEnv visaLibrary("BRAXCFG_VISA_LIBRARY", c.visaLibrary);
    visa::reselectVisaLibrary();

    store::ConfigStore configStore;
    StoreDevices devices(configStore, "INTF0");
    Names messages;
    const AutoConfigResult result = runAutoConfigSearch(
        "INTF0", "GPIB0", devices, {[&](const std::string& text) { messages.push_back(text); }, nullptr});
    EXPECT_EQ(result.newDevices, c.found);
    ASSERT_EQ(messages.size(), c.messages.size());
    for (std::size_t i = 0; i < messages.size(); ++i) EXPECT_TRUE(messages[i].starts_with(c.messages[i])) << messages[i];
    visa::reselectVisaLibrary();
}

INSTANTIATE_TEST_SUITE_P(Sources, AutocfModule, ::testing::ValuesIn(kSources),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(AutocfModule, RefusesARecordOfAnotherLayout) {
    void* module = dlopen(AUTOCF_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    auto reset = reinterpret_cast<braxcfg_autocf_reset_fn>(dlsym(module, "AUTOCF_autoConfigReset"));
    auto next = reinterpret_cast<braxcfg_autocf_next_dev_fn>(dlsym(module, "AUTOCF_autoConfigNextDev"));
    ASSERT_TRUE(reset && next);
    const struct {
        std::uint32_t version, size;
        std::int32_t status;
    } rows[] = {{BRAXCFG_AUTOCF_VERSION + 1, sizeof(braxcfg_autocf_record), BRAXCFG_AUTOCF_ERROR_LAYOUT},
                {BRAXCFG_AUTOCF_VERSION, 8, BRAXCFG_AUTOCF_ERROR_LAYOUT}};
    for (const auto& row : rows) {
        // Only the two leading fields may be read from a record of another layout.
        braxcfg_autocf_record record{};
        record.version = row.version;
        record.size = row.size;
        EXPECT_EQ(reset(&record, 0), row.status);
        EXPECT_EQ(next(&record), row.status);
    }
    EXPECT_EQ(reset(nullptr, 0), BRAXCFG_AUTOCF_ERROR_INV_PARAMETER);
    dlclose(module);
}

TEST(LabFile, ReadsInstrumentsAndRefusesBadLines) {
    const auto lab = lab::parseLabText("; lab\n[GPIB0::22::INSTR]\n identification = A,B\nSerial=7\n\n[ASRL1::INSTR]\n");
    ASSERT_EQ(lab.instruments.size(), 2u);
    EXPECT_EQ(lab.instruments[0].identification, "A,B");
    EXPECT_EQ(lab.instruments[0].values.size(), 2u);
    for (const auto& [text, error] : {std::pair{"Identification = X\n", "line 1: expected [RESOURCE] or NAME = VALUE"},
                                      std::pair{"[GPIB0::1::INSTR]\njunk\n", "line 2: expected [RESOURCE] or NAME = VALUE"},
                                      std::pair{"[GPIB0::1::INSTR\n", "line 1: a section name needs [RESOURCE]"}}) {
        const auto refused = lab::parseLabText(text);
        EXPECT_EQ(refused.error, error) << text;
        EXPECT_TRUE(refused.instruments.empty());
    }
    for (const auto& [resource, device, onGpib0] :
         {std::tuple{"GPIB0::22::INSTR", "GPIB0::22", true}, std::tuple{"gpib0::5::3::instr", "gpib0::5::3", true},
          std::tuple{"GPIB0::22", "GPIB0::22", true}, std::tuple{"GPIB01::2::INSTR", "GPIB01::2", false},
          std::tuple{"TCPIP0::127.0.0.1::inst0::INSTR", "TCPIP0::127.0.0.1::inst0", false}}) {
        EXPECT_EQ(lab::deviceNameOf(resource), device);
        EXPECT_EQ(lab::isOnInterface(resource, "GPIB0"), onGpib0) << resource;
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
