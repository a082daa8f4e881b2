// The LAN dialogs' rules without a window. The list: entries without a
// TAB, automatic aliases running out, the KORL formats' bounds and Edit's
// taking apart by position. The add/edit dialog: the resource string
// composed from the fields as typed, and which controls a host allows.
#include <gtest/gtest.h>

#include "tcpip/tcpipnewdev_logic.h"
#include "tcpip/tcpipshowdev_logic.h"

#include <memory>

namespace braxcfg::tcpip {
namespace {

TEST(ListEntry, SplitsAtTheFirstTab) {
    const std::array<std::array<const char*, 3>, 2> cases = {{
        {"TCPIP0::h::inst0::INSTR", "", "TCPIP0::h::inst0::INSTR"},  // no TAB: all resource
        {"a\tb\tc", "a", "b\tc"},
    }};
    for (const auto& [entry, alias, resource] : cases) {
        EXPECT_EQ(splitEntry(entry).alias, alias) << entry;
        EXPECT_EQ(splitEntry(entry).resource, resource) << entry;
    }
}

TEST(AutomaticAlias, SkipsDeletedNamesAndKeepsTheLastTriedWhenAllAreTaken) {
    std::vector<std::unique_ptr<AliasEntry>> taken;
    AList aliases;
    for (int n = 1; n <= 999; ++n) {
        taken.push_back(std::make_unique<AliasEntry>("TCPIPDEVICE" + std::to_string(n), std::nullopt, std::nullopt));
        aliases.addRecord(taken.back().get());
    }
    aliases.markDeleted(taken[41].get());
    AliasEntry entry(std::nullopt, std::nullopt, std::nullopt);
    EXPECT_TRUE(findAutomaticAlias(aliases, entry));
    EXPECT_EQ(entry.name(), "TcpipDevice42");
    aliases.markChanged(taken[41].get());
    EXPECT_FALSE(findAutomaticAlias(aliases, entry));
    EXPECT_EQ(entry.name(), "TcpipDevice999");
}

// The socket format is the Add scenario's store value.
TEST(KorlAddress, InstrumentFormatWithinItsBuffer) {
    EXPECT_EQ(formatKorlAddress("lan", "INSTR", "myhost", "inst0"), "lan[myhost]:inst0");
    EXPECT_EQ(formatKorlAddress("", "INSTR", "myhost", "inst0"), std::nullopt);
    EXPECT_EQ(formatKorlAddress("lan", "INSTR", std::string(300, 'h'), "inst0")->size(), 255u);
}

TEST(TakeApartResource, ByPositionSilentlyRefusingShortParts) {
    const std::array<std::array<const char*, 4>, 9> cases = {{
        {"TCPIP0::myhost::inst0::INSTR", "TCPIP0::", "myhost", "inst0"},
        {"TCPIP0::10.0.0.7::::INSTR", "TCPIP0::", "10.0.0.7", ""},
        {"TCPIP0::[fe80::1]::inst0::INSTR", "TCPIP0::", "[fe80", "1]::inst0"},  // cut by position
        {"TCPIP0::ab::c::X", "TCPIP0::", "ab", "c"},
        {"TCPIP::a"},                    // under 10 characters
        {"TCPIP0abcdefgh"},              // no ':'
        {"abc::xy::Z"},                  // under 7 once the class is cut
        {"TCPIP0::h::"},                 // host and device under 4
        {"TCPIP0::myhostinst0::INSTR"},  // no ':' after the host
    }};
    for (const auto& [resource, prefix, host, device] : cases) {
        const auto parts = takeApartResource(resource);
        ASSERT_EQ(parts.has_value(), prefix != nullptr) << resource;
        if (parts) {
            EXPECT_EQ((std::array{parts->prefix, parts->host, parts->device}),
                      (std::array<std::string, 3>{prefix, host, device}))
                << resource;
        }
    }
}

TEST(ComposeResource, FromHostAndDeviceAsTyped) {
    // host, device, class before, resource (the bare string is it without "::CLASS"), class after
    const std::array<std::array<const char*, 5>, 9> cases = {{
        {"", "inst1", "SOCKET", "", "SOCKET"},  // no host: empty, the class stays
        {"myhost", "", "", "TCPIP0::myhost::inst0::INSTR", "INSTR"},
        {"myhost", "5025", "INSTR", "TCPIP0::myhost::5025::SOCKET", "SOCKET"},
        {"myhost", "gpib0,2", "SOCKET", "TCPIP0::myhost::gpib0,2::INSTR", "INSTR"},
        {"10.0.0.7", "   ", "SOCKET", "TCPIP0::10.0.0.7::::INSTR", "INSTR"},
        {" myhost ", "", "", "TCPIP0::myhost::inst0::INSTR", "INSTR"},
        {"myhost", " 7", "", "TCPIP0::myhost::7::SOCKET", "SOCKET"},
        {"myhost", "\t7", "", "TCPIP0::myhost::\t7::INSTR", "INSTR"},  // only spaces are stripped
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
        {"", false, false, true},         {"myhost", false, true, true},  {"fe80::1", false, false, true},
        {"host:5025", false, true, true}, {"myhost", true, false, false},
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
