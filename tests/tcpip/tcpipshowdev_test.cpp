// The LAN resource list driven through its buttons: start-up from the store,
// Add, Edit, Remove, OK's rewrite of devices and aliases, Cancel, and a store
// that cannot be written.
#include "tcpip/tcpipshowdev.h"

#include <gtest/gtest.h>

#include "store_write_lock.h"
#include "tcpip_dialog_support.h"

namespace braxcfg::tcpip {
namespace {

using namespace test;
using ui::kIdCancel;
using ui::kIdOk;
using Entries = std::vector<std::string>;
using TcpipShowDev = LanListTest;

// Scripts the add dialog: host and device typed, the alias too when given, OK.
void expectAdd(ui::ModalScript& script, const std::string& host, const std::string& device,
               const std::optional<std::string>& alias = std::nullopt) {
    script.expect<tcpipnewdev>([=](tcpipnewdev& child) {
        typeInto(child, "hostEdit", host);
        typeInto(child, "deviceEdit", device);
        if (alias) typeInto(child, "aliasEdit", *alias);
        press(child, "&OK");
    });
}

void selectOnly(tcpipshowdev& dialog, std::initializer_list<int> rows) {
    dialog.m_deviceList.setSel(-1, false);
    for (int row : rows) dialog.m_deviceList.setSel(row, true);
}

TEST_F(TcpipShowDev, StartsWithHeadingAndEntriesAtTheirDeviceIndexButtonsFollowClicksAndCancelWritesNothing) {
    putTree("[INTF2\\VISADev\\TCPIP0::a::inst0\\TCPIP0::a::inst0::INSTR]\n"
            "[INTF2\\VISADev\\TCPIP0::a::inst0\\TCPIP0::a::inst0::SOCKET]\n"
            "[INTF2\\VISADev\\TCPIP0::b::5025\\TCPIP0::b::5025::SOCKET]\n"
            "[INTF2\\VISADev\\TCPIP0::c::inst0\\TCPIP0::c::inst0::INSTR]\n"
            "[VISADevices]\n\"Scope\"=\"tcpip0::A::INST0::instr\"\n");
    const std::string before = treeText("");
    for (const bool editable : {true, false}) {
        const int result = runList(
            [&](tcpipshowdev& dialog) {
                EXPECT_EQ(shownText(dialog, "headingLabel"), "Manually configured devices on the TCPIP0 interface:");
                // Device 0's two resources land at index 0 one after the
                // other (the second first); device 1 at index 1, between.
                EXPECT_EQ(listEntries(dialog), (Entries{"\tTCPIP0::a::inst0::SOCKET", "\tTCPIP0::b::5025::SOCKET",
                                                        "\tTCPIP0::c::inst0::INSTR", "Scope\tTCPIP0::a::inst0::INSTR"}));
                EXPECT_EQ(enabledButtons(dialog), editable ? "OCA---" : "OC----");
                if (editable) screenshot(dialog, "tcpipshowdev_loaded");
                selectOnly(dialog, {3});
                EXPECT_EQ(enabledButtons(dialog), editable ? "OCAETR" : "OC-ETR");  // a click ignores editable
                if (editable) screenshot(dialog, "tcpipshowdev_selected");
                selectOnly(dialog, {0, 1});
                EXPECT_EQ(enabledButtons(dialog), editable ? "OCA-TR" : "OC--TR");  // two: no Edit
                press(dialog, "&Remove device");
                EXPECT_EQ(listEntries(dialog),
                          (Entries{"\tTCPIP0::c::inst0::INSTR", "Scope\tTCPIP0::a::inst0::INSTR"}));
                press(dialog, "&Cancel");
            },
            editable);
        EXPECT_EQ(result, kIdCancel);
        EXPECT_EQ(treeText(""), before);
    }
}

TEST_F(TcpipShowDev, AddWithAutomaticAliasKeepsItsWeakDuplicateChecksThenOkWrites) {
    putTree("[VISADevices]\n\"TcpipDevice1\"=\"TCPIP0::old::inst0::INSTR\"\n\"tcpipdevice2\"=\"TCPIP0::x::1::SOCKET\"\n");
    EXPECT_EQ(runList([&](tcpipshowdev& dialog) {
        script_.expect<tcpipnewdev>([&](tcpipnewdev& child) {
            EXPECT_EQ(ui::toStdString(child.windowTitle()), "Add a TCPIP resource");
            EXPECT_EQ(shownText(child, "prefixEdit"), "TCPIP0::");
            EXPECT_EQ(shownText(child, "aliasEdit"), "TcpipDevice3");
            EXPECT_EQ(enabledButtons(dialog), "------");  // the list is busy
            typeInto(child, "hostEdit", "127.0.0.1");
            typeInto(child, "deviceEdit", "5025");
            press(child, "&OK");
        });
        expectAdd(script_, "myhost", "", std::string());  // no alias
        expectAdd(script_, "myhost", "", "TCPIPDEVICE1");  // the same resource; a taken alias in other case
        press(dialog, "&Add device");
        EXPECT_EQ(enabledButtons(dialog), "OCA---");
        press(dialog, "&Add device");
        press(dialog, "&Add device");
        EXPECT_EQ(listEntries(dialog),
                  (Entries{"\tTCPIP0::myhost::inst0::INSTR", "TCPIPDEVICE1\tTCPIP0::myhost::inst0::INSTR",
                           "TcpipDevice3\tTCPIP0::127.0.0.1::5025::SOCKET"}));
        press(dialog, "&OK");
    }), kIdOk);
    // No message for the third: the device check compares whole entries with
    // the bare string, and the alias check the automatic name; the list
    // gains the entry, the aliases do not.
    EXPECT_EQ(boxes_.texts(), Entries{});
    EXPECT_EQ(treeText("INTF2\\VISADev"),
              "[]\n[TCPIP0::127.0.0.1::5025]\n[TCPIP0::127.0.0.1::5025\\TCPIP0::127.0.0.1::5025::SOCKET]\n"
              "\"Driver\"=\"sock\"\n\"Prefix\"=\"TCPIP\"\n[TCPIP0::myhost::inst0]\n"
              "[TCPIP0::myhost::inst0\\TCPIP0::myhost::inst0::INSTR]\n\"Driver\"=\"lan\"\n\"Prefix\"=\"TCPIP\"\n");
    EXPECT_EQ(treeText("VISADevices"), "[]\n\"TcpipDevice1\"=\"TCPIP0::old::inst0::INSTR\"\n"
                                       "\"tcpipdevice2\"=\"TCPIP0::x::1::SOCKET\"\n"
                                       "\"TcpipDevice3\"=\"TCPIP0::127.0.0.1::5025::SOCKET\"\n");
    EXPECT_EQ(treeText("Devices"), "[]\n\"TcpipDevice3\"=\"lan0,5025[127.0.0.1]\"\n");
}

TEST_F(TcpipShowDev, EditRecordsEachAliasCase) {
    const std::array<std::array<const char*, 4>, 4> cases = {{
        // alias before ("" none), alias typed, VISADevices and Devices after OK
        {"", "", "[]\n", "[]\n"},
        {"", "bench", "[]\n\"bench\"=\"TCPIP0::h::5025::SOCKET\"\n", "[]\n"},
        {"scope", "", "[]\n", "[]\n"},
        {"scope", "meter", "[]\n\"meter\"=\"TCPIP0::h::5025::SOCKET\"\n", "[]\n\"meter\"=\"lan0[h]:inst0\"\n"},
    }};
    for (const auto& [oldAlias, newAlias, visaDevices, devices] : cases) {
        SCOPED_TRACE(std::string(oldAlias) + " to " + newAlias);
        const std::string old = oldAlias;
        putTree("[-INTF2\\VISADev]\n[INTF2\\VISADev\\TCPIP0::h::inst0\\TCPIP0::h::inst0::INSTR]\n[-VISADevices]\n"
                "[VISADevices]\n[-Devices]\n[Devices]\n" +
                (old.empty() ? "" : "[VISADevices]\n\"" + old + "\"=\"TCPIP0::h::inst0::INSTR\"\n[Devices]\n\"" + old +
                                        "\"=\"lan0[h]:inst0\"\n"));
        runList([&](tcpipshowdev& dialog) {
            script_.expect<tcpipnewdev>([&](tcpipnewdev& child) {
                EXPECT_EQ(ui::toStdString(child.windowTitle()), "Edit a TCPIP resource");
                EXPECT_EQ(shownText(child, "hostEdit") + "|" + shownText(child, "deviceEdit") + "|" +
                              shownText(child, "aliasEdit"),
                          "h|inst0|" + old);
                if (*newAlias == 'm') screenshot(child, "tcpipnewdev_edit");
                typeInto(child, "aliasEdit", newAlias);
                typeInto(child, "deviceEdit", "5025");
                press(child, "&OK");
            });
            selectOnly(dialog, {0});
            press(dialog, "&Edit device");
            EXPECT_EQ(listEntries(dialog), Entries{std::string(newAlias) + "\tTCPIP0::h::5025::SOCKET"});
            press(dialog, "&OK");
        });
        EXPECT_EQ(treeText("VISADevices"), visaDevices);
        EXPECT_EQ(treeText("Devices"), devices);
        EXPECT_EQ(treeText("INTF2\\VISADev"), "[]\n[TCPIP0::h::5025]\n[TCPIP0::h::5025\\TCPIP0::h::5025::SOCKET]\n"
                                              "\"Driver\"=\"sock\"\n\"Prefix\"=\"TCPIP\"\n");
    }
}

// Another process holds the store's write lock for longer than the bounded
// wait: OK writes nothing, says so, and the user keeps the list.
TEST_F(TcpipShowDev, RemoveFromTheBottomUpThenOkOnceTheStoreIsFree) {
    putTree("[INTF2\\VISADev\\TCPIP0::a::inst0\\TCPIP0::a::inst0::INSTR]\n"
            "[INTF2\\VISADev\\TCPIP0::b::inst0\\TCPIP0::b::inst0::INSTR]\n"
            "[INTF2\\VISADev\\TCPIP0::c::inst0\\TCPIP0::c::inst0::INSTR]\n"
            "[INTF2\\VISADev\\TCPIP0::d::inst0\\TCPIP0::d::inst0::INSTR]\n"
            "[VISADevices]\n\"alpha\"=\"TCPIP0::a::inst0::INSTR\"\n\"gamma\"=\"TCPIP0::c::inst0::INSTR\"\n");
    const std::string before = treeText("");
    EXPECT_EQ(runList([&](tcpipshowdev& dialog) {
        selectOnly(dialog, {0, 2, 3});
        press(dialog, "&Remove device");
        EXPECT_EQ(listEntries(dialog), Entries{"\tTCPIP0::b::inst0::INSTR"});
        StoreWriteLock other(store_.path());
        ASSERT_TRUE(other.held());
        press(dialog, "&OK");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(boxes_.texts(), Entries{platform::storeFailureMessage(platform::StoreFailure::Busy)});
        other.release();
        EXPECT_EQ(treeText(""), before);
        press(dialog, "&OK");  // the lock is gone: the same list is written
    }), kIdOk);
    EXPECT_EQ(treeText("INTF2\\VISADev"), "[]\n[TCPIP0::b::inst0]\n[TCPIP0::b::inst0\\TCPIP0::b::inst0::INSTR]\n"
                                          "\"Driver\"=\"lan\"\n\"Prefix\"=\"TCPIP\"\n");
    EXPECT_EQ(treeText("VISADevices"), "[]\n");
}

TEST(TcpipTemplates, CaptionsTextsAndButtons) {
    tcpipshowdev list(nullptr), owner(nullptr);  // the resource dialog apart, so it adds nothing to the list's
    tcpipnewdev resource(&owner);
    const std::tuple<QDialog*, const char*, Entries, Entries> templates[] = {
        {&list, "TCPIP devices", {" <intf> <type> devices present:", "Alias", "VISA Resource String"},
         {"&OK*", "&Cancel", "&Help (hidden)", "&Add device", "&Edit device", "&Remove device", "&Test device"}},
        {&resource, "Add a TCPIP device",
         {"Optional Alias Name:", "Machine Name/IP", "Device Name/Port #", "::", "Resulting VISA Resource String"},
         {"&OK*", "&Cancel", "&Help (hidden)", "&Test"}},
    };
    for (const auto& [dialog, caption, labels, buttons] : templates) {
        EXPECT_EQ(ui::toStdString(dialog->windowTitle()), caption);
        EXPECT_EQ(templateLabels(*dialog), labels);
        EXPECT_EQ(templateButtons(*dialog), buttons);
    }
}

}  // namespace
}  // namespace braxcfg::tcpip
