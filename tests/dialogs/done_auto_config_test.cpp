// CDoneAutoConfig's search without a window, in store mode: what it
// reports, what it writes, and how it treats the module and the session;
// then the dialog, which runs it while it opens and shows the two lists.
#include "dialogs/done_auto_config.h"

#include <gtest/gtest.h>

#include <QListView>

#include "dialog_test_support.h"
#include "dialogs/done_auto_config_logic.h"
#include "fake_autocf.h"
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::dialogs {
namespace {

using Names = std::vector<std::string>;

constexpr visa::ViStatus kTimeout = visa::VI_ERROR_TMO;
const std::string kVisaTimeout = "VISA Error (0xbfff0015) occurred. " + test::FakeAutocf::statusDescription(kTimeout);

struct SearchCase {
    const char* name;
    const char* typeWord;
    Names stored;
    visa::ViStatus resetStatus;
    std::vector<test::FakeAutocf::Report> reports;
    std::set<std::string> absent;
    Names known, found, messages, storeAfter;  // expected
    int nextCalls;
};

const SearchCase kCases[] = {
    {"NewestFirstAndWrittenAtOnce", "GPIB", {"GPIB0::1"}, 0, {{"GPIB0::4"}, {"GPIB0::2"}, {"GPIB0::3"}}, {},
     {"GPIB0::1"}, {"GPIB0::3", "GPIB0::2", "GPIB0::4"}, {}, {"GPIB0::1", "GPIB0::2", "GPIB0::3", "GPIB0::4"}, 4},
    {"KnownAndRepeatedDevicesAreNotNew", "GPIB", {"GPIB0::1"}, 0, {{"GPIB0::1"}, {"GPIB0::7"}, {"GPIB0::7"}}, {},
     {"GPIB0::1"}, {"GPIB0::7"}, {}, {"GPIB0::1", "GPIB0::7"}, 4},
    // The list compares with case; the store's key names do not, so the
    // "new" device lands in the entry it already has.
    {"NamesCompareWithCase", "GPIB", {"gpib0::7"}, 0, {{"GPIB0::7"}}, {}, {"gpib0::7"}, {"GPIB0::7"}, {},
     {"gpib0::7"}, 2},
    // Only a GPIB-VXI interface holds a session, and it is closed whatever happened.
    {"FailingResetSearchesNothingAndStillClosesTheSession", "GPIB-VXI", {}, kTimeout, {{"GPIB0::4"}}, {}, {}, {},
     {kVisaTimeout}, {}, 0},
    {"ResourceNotFoundGivesTheLongMessage", "GPIB", {}, 0, {{"GPIB0::4"}, {"", visa::VI_ERROR_RSRC_NFOUND}}, {},
     {}, {"GPIB0::4"}, {kAutoAddErrorMessage}, {"GPIB0::4"}, 2},
    {"OtherErrorsKeepWhatWasFound", "GPIB", {}, 0, {{"GPIB0::4"}, {"", kTimeout}, {"GPIB0::5"}}, {}, {},
     {"GPIB0::4"}, {kVisaTimeout}, {"GPIB0::4"}, 2},
    {"WithoutNextDeviceTheSearchIsEmpty", "GPIB", {}, 0, {{"GPIB0::4"}}, {"AUTOCF_autoConfigNextDev"}, {}, {}, {},
     {}, 0},
    {"WithoutResetTheSearchGoesOn", "GPIB", {}, 0, {{"GPIB0::4"}}, {"AUTOCF_autoConfigReset"}, {}, {"GPIB0::4"},
     {}, {"GPIB0::4"}, 2},
    {"MissingModuleIsAnEmptySearchWithoutMessageOrDone", "GPIB", {}, 0, {{"GPIB0::4"}},
     {"AUTOCF_autoConfigReset", "AUTOCF_autoConfigNextDev", "AUTOCF_autoConfigDone"}, {}, {}, {}, {}, 0},
    {"SuccessWithoutADeviceEndsTheSearch", "GPIB", {}, 0, {{"GPIB0::4"}, {"", 0, false}, {"GPIB0::5"}}, {}, {},
     {"GPIB0::4"}, {}, {"GPIB0::4"}, 2},
};

class AutoConfigSearch : public ::testing::TestWithParam<SearchCase> {};

TEST_P(AutoConfigSearch, ReportsWritesAndCallsTheModule) {
    const SearchCase& c = GetParam();
    test::TempStore store;
    test::putTree(std::string("[INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"") + c.typeWord +
                  "\"\n[INTF0\\VISADev]\n[VISAInfo\\DefaultRsrcs\\INSTR]\n\"DrvrName\"=\"INSTR\"\n\"PrefixName\"=\"INSTR\"\n"
                  "\"GPIB\"=hex:01\n");
    for (const auto& name : c.stored) store::ConfigStore().AddDeviceEntry("INTF0", name, "", "");
    test::FakeAutocf module;
    module.resetStatus = c.resetStatus;
    module.reports = c.reports;
    module.absent = c.absent;
    Names messages;
    const AutoConfigResult result = test::searchIntf0(messages);
    EXPECT_EQ(result.knownDevices, c.known);
    EXPECT_EQ(result.newDevices, c.found);
    EXPECT_EQ(messages, c.messages);
    EXPECT_EQ(store::ConfigStore().GetDeviceNames("INTF0"), c.storeAfter);
    EXPECT_EQ(module.nextCalls, c.nextCalls);
    // Each entry point is looked up again before each call.
    EXPECT_EQ(module.lookups["AUTOCF_autoConfigReset"], 1);
    EXPECT_EQ(module.lookups["AUTOCF_autoConfigNextDev"], c.resetStatus == 0 ? std::max(c.nextCalls, 1) : 0);
    EXPECT_EQ(module.lookups["AUTOCF_autoConfigDone"], 1);
    EXPECT_EQ(module.dones, c.absent.count("AUTOCF_autoConfigDone") ? 0 : 1);
    EXPECT_EQ(module.opened.size(), std::string(c.typeWord) == "GPIB-VXI" ? 1u : 0u);
    EXPECT_EQ(module.closed, module.opened);
}

INSTANTIATE_TEST_SUITE_P(Cases, AutoConfigSearch, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(AutoConfigSearch, VisaErrorMessageShowsTheStatusAsItsThirtyTwoBits) {
    EXPECT_EQ(visaErrorMessage(visa::VI_ERROR_RSRC_NFOUND, "text"), "VISA Error (0xbfff0011) occurred. text");
}

TEST(CDoneAutoConfig, StoreModeShowsTheListsAndItsMessages) {
    test::TempStore file;
    test::putTree("[INTF2]\n\"VISAName\"=\"GPIB-VXI0\"\n\"VISAIntfType\"=\"GPIB-VXI\"\n[INTF2\\VISADev\\GPIB-VXI0::1]\n");
    test::FakeAutocf module;
    module.reports = {{"", visa::VI_ERROR_RSRC_NFOUND}};
    ui::MessageBoxCapture boxes;
    ui::ModalScript script;
    script.expect<CDoneAutoConfig>([&](CDoneAutoConfig& dialog) {
        EXPECT_EQ(dialog.m_knownList.items(), Names{"GPIB-VXI0::1"});
        EXPECT_EQ(dialog.m_newList.items(), Names{kNoNewDevicesFound});
        EXPECT_FALSE(dialog.findChild<QListView*>("newList")->isEnabled());
        test::press(dialog, "OK");
    });
    const store::ConfigStore store;
    CDoneAutoConfig dialog(nullptr);
    dialog.InitStoreMode(store, "INTF2", "GPIB-VXI0");
    dialog.doModal();
    EXPECT_EQ(test::problems(script), "");
    EXPECT_EQ(boxes.texts(), Names{kAutoAddErrorMessage});
}

}  // namespace
}  // namespace braxcfg::dialogs
