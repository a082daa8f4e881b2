// The LAN resource list's decisions: entries, button states, automatic
// aliases, KORL addresses, Edit's taking apart and OK's plan of writes.
#include "tcpip/tcpipshowdev_logic.h"

#include <gtest/gtest.h>

#include "store_builder.h"
#include "temp_store.h"

namespace braxcfg::tcpip {
namespace {

TEST(ListEntry, SplitsAtTheFirstTabAndJoinsWithOne) {
    const struct { const char* entry; const char* alias; const char* resource; } cases[] = {
        {"scope\tTCPIP0::h::inst0::INSTR", "scope", "TCPIP0::h::inst0::INSTR"},
        {"\tTCPIP0::h::5025::SOCKET", "", "TCPIP0::h::5025::SOCKET"},
        {"TCPIP0::h::inst0::INSTR", "", "TCPIP0::h::inst0::INSTR"},
        {"a\tb\tc", "a", "b\tc"},
        {"", "", ""},
    };
    for (const auto& c : cases) {
        const EntryParts parts = splitEntry(c.entry);
        EXPECT_EQ(parts.alias, c.alias) << c.entry;
        EXPECT_EQ(parts.resource, c.resource) << c.entry;
    }
    EXPECT_EQ(makeEntry("", "TCPIP0::h::inst0::INSTR"), "\tTCPIP0::h::inst0::INSTR");
}

TEST(ShowDevButtons, BusyEditableAndSelection) {
    // ok, cancel, add, edit, test, remove
    using B = std::array<bool, 6>;
    const struct { bool busy, editable, selected; B states; } cases[] = {
        {true, true, true, {false, false, false, false, false, false}},
        {false, true, false, {true, true, true, false, false, false}},
        {false, true, true, {true, true, true, true, true, true}},
        {false, false, true, {true, true, false, false, false, false}},
    };
    for (const auto& c : cases) {
        const ShowDevButtonStates s = showDevButtonStates(c.busy, c.editable, c.selected);
        EXPECT_EQ((B{s.okEnabled, s.cancelEnabled, s.addEnabled, s.editEnabled, s.testEnabled, s.removeEnabled}),
                  c.states)
            << c.busy << c.editable << c.selected;
    }
    // A click in the list: edit for one, remove for any, test always.
    const struct { int count; bool edit, test, remove; } clicks[] = {
        {0, false, true, false}, {1, true, true, true}, {3, false, true, true}};
    for (const auto& c : clicks) {
        const SelectionButtonStates s = selectionButtonStates(c.count);
        EXPECT_EQ((std::array{s.editEnabled, s.testEnabled, s.removeEnabled}), (std::array{c.edit, c.test, c.remove}))
            << c.count;
    }
}

TEST(AutomaticAlias, FirstFreeNumberIgnoringCaseAndDeletedEntries) {
    AliasEntry first("TcpipDevice1", std::nullopt, std::nullopt), second("tcpipdevice2", std::nullopt, std::nullopt),
        deleted("TCPIPDEVICE3", std::nullopt, std::nullopt);
    AList aliases;
    aliases.addRecord(&first);
    aliases.addRecord(&second);
    aliases.addRecord(&deleted);
    aliases.markDeleted(&deleted);
    AliasEntry entry(std::nullopt, std::nullopt, std::nullopt);
    EXPECT_TRUE(findAutomaticAlias(aliases, entry));
    EXPECT_EQ(entry.name(), "TcpipDevice3");

    std::vector<std::unique_ptr<AliasEntry>> taken;
    for (int n = 3; n <= 999; ++n) {
        taken.push_back(std::make_unique<AliasEntry>("TcpipDevice" + std::to_string(n), std::nullopt, std::nullopt));
        aliases.addRecord(taken.back().get());
    }
    EXPECT_FALSE(findAutomaticAlias(aliases, entry));
    EXPECT_EQ(entry.name(), "TcpipDevice999");  // the last name tried stays
}

TEST(DuplicateDevice, OnlyAnEntryThatIsTheBareStringItself) {
    const std::vector<std::string> entries = {"\tTCPIP0::h::inst0::INSTR", "TCPIP0::h::5025"};
    EXPECT_EQ(duplicateDevice(entries, "TCPIP0::h::inst0"), std::nullopt);
    EXPECT_EQ(duplicateDevice(entries, "TCPIP0::h::5025"), "TCPIP0::h::5025");
    EXPECT_EQ(duplicateDevice(entries, "tcpip0::h::5025"), std::nullopt);  // case counts
    EXPECT_EQ(duplicateDeviceMessage("x"), "x is a duplicate device name.");
    EXPECT_EQ(duplicateAliasMessage("y"), "y is a duplicate alias name.");
}

TEST(KorlAddress, InstrumentAndSocketFormats) {
    EXPECT_EQ(formatKorlAddress("lan", "INSTR", "myhost", "inst0"), "lan[myhost]:inst0");
    EXPECT_EQ(formatKorlAddress("lan", "SOCKET", "myhost", "5025"), "lan,5025[myhost]");
    EXPECT_EQ(formatKorlAddress("", "INSTR", "myhost", "inst0"), std::nullopt);
    EXPECT_EQ(formatKorlAddress("lan", "INSTR", std::string(300, 'h'), "inst0")->size(), 255u);

    const test::TempStore store;
    test::putInterface("INTF3", "TCPIP0", "TCPIP");
    test::putString(test::underProduct("INTF3"), "VISAKorlIntfName", "lan7");
    EXPECT_EQ(korlAddressOf("TCPIP0::myhost::inst1::INSTR"), "lan7[myhost]:inst1");
    EXPECT_EQ(korlAddressOf("TCPIP0::myhost::5025::SOCKET"), "lan7,5025[myhost]");
    EXPECT_EQ(korlAddressOf("TCPIP1::myhost::5025::SOCKET"), std::nullopt);  // no KORL name for TCPIP1
}

TEST(TakeApartResource, ByPositionSilentlyRefusingShortParts) {
    const struct { const char* resource; const char* prefix; const char* host; const char* device; } cases[] = {
        {"TCPIP0::myhost::inst0::INSTR", "TCPIP0::", "myhost", "inst0"},
        {"TCPIP0::10.0.0.7::5025::SOCKET", "TCPIP0::", "10.0.0.7", "5025"},
        {"TCPIP0::10.0.0.7::::INSTR", "TCPIP0::", "10.0.0.7", ""},
        {"TCPIP0::[fe80::1]::inst0::INSTR", "TCPIP0::", "[fe80", "1]::inst0"},  // cut by position
        {"TCPIP0::ab::c::X", "TCPIP0::", "ab", "c"},
        {"TCPIP0::h::", nullptr, nullptr, nullptr},   // the host part is too short
        {"TCPIP::a", nullptr, nullptr, nullptr},      // under 10 characters
        {"TCPIP0abcdefgh", nullptr, nullptr, nullptr},  // no ':'
        {"TCPIP0:abc::x", nullptr, nullptr, nullptr},   // the host part is too short
        {"abc::xy::Z", nullptr, nullptr, nullptr},      // what is left is too short
        {"TCPIP0::myhostinst0::INSTR", nullptr, nullptr, nullptr},  // no ':' after the host
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.resource);
        const auto parts = takeApartResource(c.resource);
        ASSERT_EQ(parts.has_value(), c.prefix != nullptr);
        if (!parts) continue;
        EXPECT_EQ(parts->prefix, c.prefix);
        EXPECT_EQ(parts->host, c.host);
        EXPECT_EQ(parts->device, c.device);
    }
}

TEST(PlanDeviceWrites, BareStringClassAndAliasPerEntryInListOrder) {
    const auto writes = planDeviceWrites(
        {"scope\tTCPIP0::h::inst0::INSTR", "\tTCPIP0::h::5025::SOCKET", "x\tTCPIP0::h::y::"});
    ASSERT_EQ(writes.size(), 3u);
    EXPECT_EQ((std::array{writes[0].device, writes[0].rsrcClass, writes[0].alias}),
              (std::array<std::string, 3>{"TCPIP0::h::inst0", "INSTR", "scope"}));
    EXPECT_EQ((std::array{writes[1].device, writes[1].rsrcClass, writes[1].alias}),
              (std::array<std::string, 3>{"TCPIP0::h::5025", "SOCKET", ""}));
    EXPECT_EQ((std::array{writes[2].device, writes[2].rsrcClass}), (std::array<std::string, 2>{"TCPIP0::h::y", ""}));
}

TEST(RecordEditedAlias, TheFourCases) {
    AliasEntry scope("scope", "TCPIP0::a::inst0::INSTR", "lan[a]:inst0"), meter("meter", "TCPIP0::m::inst0::INSTR", std::nullopt);
    AList aliases;
    aliases.addRecord(&scope);
    aliases.addRecord(&meter);
    scope.setState(AliasState::Unchanged);
    meter.setState(AliasState::Unchanged);

    EXPECT_EQ(recordEditedAlias(aliases, nullptr, "", "TCPIP0::b::inst0::INSTR"), nullptr);  // nothing
    EXPECT_EQ(aliases.count(), 2u);
    EXPECT_EQ(recordEditedAlias(aliases, nullptr, "newer", "TCPIP0::b::inst0::INSTR"), nullptr);  // added
    AliasEntry* added = aliases.findByRsrcString("tcpip0::B::INST0::INSTR");
    ASSERT_NE(added, nullptr);
    EXPECT_EQ(added->name(), "newer");
    EXPECT_EQ(added->state(), AliasState::Added);
    EXPECT_EQ(added->korlAddress(), std::nullopt);  // no address on this path
    std::unique_ptr<AliasEntry> refused(recordEditedAlias(aliases, nullptr, "SCOPE", "TCPIP0::c::inst0::INSTR"));
    EXPECT_NE(refused, nullptr);  // a live entry has the name: not taken, no message

    recordEditedAlias(aliases, &scope, "renamed", "TCPIP0::a::5025::SOCKET");  // changed
    EXPECT_EQ(scope.state(), AliasState::Changed);
    EXPECT_EQ(scope.name(), "renamed");
    EXPECT_EQ(scope.loadedName(), "scope");
    EXPECT_EQ(scope.rsrcString(), "TCPIP0::a::5025::SOCKET");
    EXPECT_EQ(scope.korlAddress(), "lan[a]:inst0");  // left as it was
    recordEditedAlias(aliases, &meter, "", "TCPIP0::m::inst0::INSTR");  // deleted
    EXPECT_EQ(meter.state(), AliasState::Deleted);
    delete added;
}

}  // namespace
}  // namespace braxcfg::tcpip
