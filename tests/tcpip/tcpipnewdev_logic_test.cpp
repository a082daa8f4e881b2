// The add/edit dialog's rules: the resource string composed from the
// fields as typed, and which controls a host name allows.
#include "tcpip/tcpipnewdev_logic.h"

#include <gtest/gtest.h>

namespace braxcfg::tcpip {
namespace {

TEST(ComposeResource, FromHostAndDeviceAsTyped) {
    // host, device, class before, resource (the bare string is it without "::CLASS"), class after
    const std::array<std::array<const char*, 5>, 11> cases = {{
        {"", "inst1", "SOCKET", "", "SOCKET"},  // no host: empty, the class stays
        {"myhost", "", "", "TCPIP0::myhost::inst0::INSTR", "INSTR"},
        {"myhost", "inst1", "", "TCPIP0::myhost::inst1::INSTR", "INSTR"},
        {"myhost", "5025", "INSTR", "TCPIP0::myhost::5025::SOCKET", "SOCKET"},
        {"myhost", "gpib0,2", "SOCKET", "TCPIP0::myhost::gpib0,2::INSTR", "INSTR"},
        {"10.0.0.7", "   ", "SOCKET", "TCPIP0::10.0.0.7::::INSTR", "INSTR"},
        {" myhost ", "", "", "TCPIP0::myhost::inst0::INSTR", "INSTR"},
        {"myhost", " 7", "", "TCPIP0::myhost::7::SOCKET", "SOCKET"},
        {"myhost", "\t7", "", "TCPIP0::myhost::\t7::INSTR", "INSTR"},  // only spaces are stripped
        {"fe80::1", "inst0", "", "TCPIP0::fe80::1::inst0::INSTR", "INSTR"},
        {"  ", "", "", "TCPIP0::::inst0::INSTR", "INSTR"},  // blanks are a host as typed
    }};
    for (const auto& [host, device, before, resource, rsrcClass] : cases) {
        SCOPED_TRACE(std::string("'") + host + "' '" + device + "'");
        const ComposedResource composed = composeResource("TCPIP0::", host, device, before);
        EXPECT_EQ(composed.resource, resource);
        const std::string bare(resource);
        EXPECT_EQ(composed.bareResource, bare.empty() ? bare : bare.substr(0, bare.rfind("::")));
        EXPECT_EQ(composed.rsrcClass, rsrcClass);
    }
}

TEST(NewDevControlStates, HostAsTypedDecidesUnlessTesting) {
    // host, testing, OK/Test/device field, Cancel
    const std::tuple<const char*, bool, bool, bool> cases[] = {
        {"", false, false, true},         {"myhost", false, true, true}, {"fe80::1", false, false, true},
        {"host:5025", false, true, true}, {" :: ", false, false, true},  {"myhost", true, false, false},
    };
    for (const auto& [host, testing, usable, cancel] : cases) {
        const NewDevControlStates states = newDevControlStates(host, testing);
        EXPECT_EQ((std::array{states.okEnabled, states.testEnabled, states.deviceEnabled, states.cancelEnabled}),
                  (std::array{usable, usable, usable, cancel}))
            << host << " testing " << testing;
    }
}

}  // namespace
}  // namespace braxcfg::tcpip
