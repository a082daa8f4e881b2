// The add/edit dialog's decisions: the resource string composed from the
// fields as typed, and which controls a host name allows.
#include "tcpip/tcpipnewdev_logic.h"

#include <gtest/gtest.h>

namespace braxcfg::tcpip {
namespace {

TEST(ComposeResource, FromHostAndDeviceAsTyped) {
    const struct {
        const char* host;
        const char* device;
        const char* previousClass;
        const char* resource;
        const char* bare;
        const char* rsrcClass;
    } cases[] = {
        {"", "inst1", "SOCKET", "", "", "SOCKET"},  // no host: empty, the class stays
        {"", "", "", "", "", ""},
        {"myhost", "", "", "TCPIP0::myhost::inst0::INSTR", "TCPIP0::myhost::inst0", "INSTR"},
        {"myhost", "inst1", "", "TCPIP0::myhost::inst1::INSTR", "TCPIP0::myhost::inst1", "INSTR"},
        {"myhost", "5025", "INSTR", "TCPIP0::myhost::5025::SOCKET", "TCPIP0::myhost::5025", "SOCKET"},
        {"myhost", "gpib0,2", "SOCKET", "TCPIP0::myhost::gpib0,2::INSTR", "TCPIP0::myhost::gpib0,2", "INSTR"},
        {"10.0.0.7", "   ", "SOCKET", "TCPIP0::10.0.0.7::::INSTR", "TCPIP0::10.0.0.7::", "INSTR"},
        {" myhost ", "", "", "TCPIP0::myhost::inst0::INSTR", "TCPIP0::myhost::inst0", "INSTR"},
        {"myhost", " 7", "", "TCPIP0::myhost::7::SOCKET", "TCPIP0::myhost::7", "SOCKET"},
        {"myhost", "\t7", "", "TCPIP0::myhost::\t7::INSTR", "TCPIP0::myhost::\t7", "INSTR"},  // spaces only
        {"fe80::1", "inst0", "", "TCPIP0::fe80::1::inst0::INSTR", "TCPIP0::fe80::1::inst0", "INSTR"},
        {"  ", "", "", "TCPIP0::::inst0::INSTR", "TCPIP0::::inst0", "INSTR"},  // blanks are a host as typed
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string("'") + c.host + "' '" + c.device + "'");
        const ComposedResource composed = composeResource("TCPIP0::", c.host, c.device, c.previousClass);
        EXPECT_EQ(composed.resource, c.resource);
        EXPECT_EQ(composed.bareResource, c.bare);
        EXPECT_EQ(composed.rsrcClass, c.rsrcClass);
    }
}

TEST(NewDevControlStates, HostAsTypedDecidesUnlessTesting) {
    const struct {
        const char* host;
        bool testing;
        bool usable;  // OK, Test and the device field
        bool cancel;
    } cases[] = {
        {"", false, false, true},        {"myhost", false, true, true},   {"fe80::1", false, false, true},
        {"host:5025", false, true, true}, {" :: ", false, false, true},   {"a:b:c", false, true, true},
        {"myhost", true, false, false},  {"", true, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string("'") + c.host + "' testing " + std::to_string(c.testing));
        const NewDevControlStates states = newDevControlStates(c.host, c.testing);
        EXPECT_EQ(states.okEnabled, c.usable);
        EXPECT_EQ(states.testEnabled, c.usable);
        EXPECT_EQ(states.deviceEnabled, c.usable);
        EXPECT_EQ(states.cancelEnabled, c.cancel);
    }
    EXPECT_EQ(newDevCaption(""), "Add a TCPIP resource");
    EXPECT_EQ(newDevCaption(" "), "Edit a TCPIP resource");
}

}  // namespace
}  // namespace braxcfg::tcpip
