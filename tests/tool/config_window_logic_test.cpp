#include "config_window_logic.h"

#include <gtest/gtest.h>

namespace braxcfg::tool {
namespace {

// Set up rows have "VISAAutoConfig" (0) too.
InterfaceRow row(const char* visaName, const char* type, bool setUp = false, std::vector<std::string> devices = {}) {
    return {"INTF4", visaName, type, setUp, setUp, 0, std::move(devices)};
}

TEST(ConfigWindowLogic, ActionsFollowTheSelectionTheTypeAndTheStore) {
    const InterfaceRow gpib = row("GPIB0", "GPIB"), setUpGpib = row("GPIB0", "GPIB", true),
                       gpibVxi = row("GPIB-VXI0", "GPIB-VXI"), tcpip = row("TCPIP0", "TCPIP"), noName = row("", "GPIB"),
                       lowerCase = row("GPIB1", "gpib");
    // The plug-in's answer and the store's writability in, the six actions out.
    const struct { const InterfaceRow* selected; bool editable, writable, setUp, edit, configure, add, remove, import; }
        cases[] = {
        {nullptr, false, true, false, false, false, true, false, true},
        {&gpib, true, true, true, true, true, true, true, true},
        {&setUpGpib, true, true, false, true, true, true, true, true},  // set up once only
        {&gpibVxi, false, true, true, false, true, true, true, true},   // the plug-in's answer decides Edit
        {&tcpip, true, true, true, true, false, true, true, true},      // LAN resources are not searched
        {&noName, false, true, true, false, false, true, true, true},   // invalid: nothing to configure
        {&lowerCase, false, true, true, false, false, true, true, true},
        {&gpib, true, false, false, false, false, false, false, false},  // a read-only store changes nothing
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "row " << (&c - cases));
        const WindowActions a = windowActions(c.selected, c.editable, c.writable);
        EXPECT_EQ((std::vector<bool>{a.setUp, a.edit, a.configure, a.add, a.remove, a.import}),
                  (std::vector<bool>{c.setUp, c.edit, c.configure, c.add, c.remove, c.import}));
    }
}

TEST(ConfigWindowLogic, RowTextsAndTheQuestionBeforeARemoval) {
    const InterfaceRow setUp = row("GPIB0", "GPIB", true, {"GPIB0::5"});
    EXPECT_EQ(interfaceCells(setUp), (std::vector<std::string>{"INTF4", "GPIB0", "GPIB", "yes", "no", "1"}));
    EXPECT_EQ(interfaceCells(row("", "X")), (std::vector<std::string>{"INTF4", "", "X", "no", "", "0"}));
    EXPECT_EQ(removeQuestion(setUp), "Remove the interface INTF4 (GPIB0) and its 1 device from the store?");
    EXPECT_EQ(removeQuestion(row("GPIB0", "GPIB", false, {"a", "b"})),
              "Remove the interface INTF4 (GPIB0) and its 2 devices from the store?");
    EXPECT_EQ(removeQuestion(row("", "GPIB")), "Remove the interface INTF4 from the store?");
    EXPECT_EQ(storeStatusLine("/tmp/s.db", false), "Store: /tmp/s.db (read-only: changes are refused)");
    EXPECT_TRUE(canShowWindows(nullptr, ":0", nullptr));
    EXPECT_TRUE(canShowWindows("xcb", "", "wayland-0"));
    EXPECT_FALSE(canShowWindows("offscreen", ":0", nullptr));  // draws nowhere: the overview instead
    EXPECT_FALSE(canShowWindows(nullptr, "", nullptr));
}

}  // namespace
}  // namespace braxcfg::tool
