// The LAN resource list driven through its buttons: start-up from the store,
// Add, Edit, Remove, OK's rewrite of devices and aliases, Cancel, and a store
// that cannot be written.
#include "tcpip/tcpipshowdev.h"

#include <gtest/gtest.h>

#include "tcpip_dialog_support.h"
#include "tcpip/lan_device_writes.h"
#include "store_write_lock.h"

namespace braxcfg::tcpip {
namespace {

using namespace test;
using ui::kIdCancel;
using ui::kIdOk;
using ui::ModalScript;
using Entries = std::vector<std::string>;

struct ListRun {
    ModalScript script;
    ui::MessageBoxCapture boxes;
    int result = kIdCancel;
};

// Opens the list of INTF2 as the workflow does and runs `act` on it.
void openList(ListRun& run, std::function<void(tcpipshowdev&)> act, bool editable = true) {
    run.script.expect<tcpipshowdev>(std::move(act));
    run.result = runLanList(editable);
}

// Adds one resource through the add dialog.
ModalScript& addStep(ModalScript& script, const std::string& host, const std::string& device,
                     const std::optional<std::string>& alias = std::nullopt) {
    return script.expect<tcpipnewdev>([=](tcpipnewdev& child) {
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

class TcpipShowDev : public testing::Test {
protected:
    void SetUp() override { putLanInterface(); }
    TempStore store_;
};

TEST_F(TcpipShowDev, StartsWithHeadingAndEntriesAtTheirDeviceIndexThenButtonsFollowClicks) {
    putTree(
        "[INTF2\\VISADev\\TCPIP0::a::inst0\\TCPIP0::a::inst0::INSTR]\n"
        "[INTF2\\VISADev\\TCPIP0::a::inst0\\TCPIP0::a::inst0::SOCKET]\n"
        "[INTF2\\VISADev\\TCPIP0::b::5025\\TCPIP0::b::5025::SOCKET]\n"
        "[INTF2\\VISADev\\TCPIP0::c::inst0\\TCPIP0::c::inst0::INSTR]\n"
        "[VISADevices]\n\"Scope\"=\"tcpip0::A::INST0::instr\"\n");
    for (const bool editable : {true, false}) {
        ListRun run;
        openList(
            run,
            [&](tcpipshowdev& dialog) {
                EXPECT_EQ(shownText(dialog, "headingLabel"), "Manually configured devices on the TCPIP0 interface:");
                // Device 0's two resources land at index 0 one after the
                // other (the second first); device 1 at index 1, between.
                EXPECT_EQ(listEntries(dialog),
                          (Entries{"\tTCPIP0::a::inst0::SOCKET", "\tTCPIP0::b::5025::SOCKET",
                                   "\tTCPIP0::c::inst0::INSTR", "Scope\tTCPIP0::a::inst0::INSTR"}));
                EXPECT_EQ(enabledButtons(dialog), editable ? "OCA---" : "OC----");
                if (editable) screenshot(dialog, "tcpipshowdev_loaded");
                selectOnly(dialog, {3});
                EXPECT_EQ(enabledButtons(dialog), editable ? "OCAETR" : "OC-ETR");  // a click ignores editable
                if (editable) screenshot(dialog, "tcpipshowdev_selected");
                selectOnly(dialog, {0, 1});
                EXPECT_EQ(enabledButtons(dialog), editable ? "OCA-TR" : "OC--TR");  // two: no Edit
                press(dialog, "&Cancel");
            },
            editable);
        EXPECT_EQ(run.result, kIdCancel);
        EXPECT_EQ(problems(run.script), "");
    }
}

TEST_F(TcpipShowDev, AddWithAutomaticAliasThenOkWritesDevicesAndAliases) {
    putTree("[VISADevices]\n\"TcpipDevice1\"=\"TCPIP0::old::inst0::INSTR\"\n\"tcpipdevice2\"=\"TCPIP0::x::1::SOCKET\"\n");
    ListRun run;
    openList(run, [&](tcpipshowdev& dialog) {
        run.script.expect<tcpipnewdev>([&](tcpipnewdev& child) {
            EXPECT_EQ(ui::toStdString(child.windowTitle()), "Add a TCPIP resource");
            EXPECT_EQ(shownText(child, "prefixEdit"), "TCPIP0::");
            EXPECT_EQ(shownText(child, "aliasEdit"), "TcpipDevice3");
            EXPECT_EQ(enabledButtons(dialog), "------");  // the list is busy
            typeInto(child, "hostEdit", "127.0.0.1");
            typeInto(child, "deviceEdit", "5025");
            press(child, "&OK");
        });
        addStep(run.script, "myhost", "", std::string());  // no alias
        press(dialog, "&Add device");
        EXPECT_EQ(enabledButtons(dialog), "OCA---");
        press(dialog, "&Add device");
        EXPECT_EQ(listEntries(dialog), (Entries{"\tTCPIP0::myhost::inst0::INSTR",
                                                "TcpipDevice3\tTCPIP0::127.0.0.1::5025::SOCKET"}));
        press(dialog, "&OK");
    });
    EXPECT_EQ(run.result, kIdOk);
    EXPECT_EQ(problems(run.script), "");
    EXPECT_EQ(run.boxes.texts(), Entries{});
    EXPECT_EQ(treeText("INTF2\\VISADev"),
              "[]\n[TCPIP0::127.0.0.1::5025]\n[TCPIP0::127.0.0.1::5025\\TCPIP0::127.0.0.1::5025::SOCKET]\n"
              "\"Driver\"=\"sock\"\n\"Prefix\"=\"TCPIP\"\n"
              "[TCPIP0::myhost::inst0]\n[TCPIP0::myhost::inst0\\TCPIP0::myhost::inst0::INSTR]\n"
              "\"Driver\"=\"lan\"\n\"Prefix\"=\"TCPIP\"\n");
    EXPECT_EQ(treeText("VISADevices"), "[]\n\"TcpipDevice1\"=\"TCPIP0::old::inst0::INSTR\"\n"
                                       "\"tcpipdevice2\"=\"TCPIP0::x::1::SOCKET\"\n"
                                       "\"TcpipDevice3\"=\"TCPIP0::127.0.0.1::5025::SOCKET\"\n");
    EXPECT_EQ(treeText("Devices"), "[]\n\"TcpipDevice3\"=\"lan0,5025[127.0.0.1]\"\n");
}

TEST_F(TcpipShowDev, AddKeepsItsWeakDuplicateChecks) {
    putTree("[INTF2\\VISADev\\TCPIP0::h::inst0\\TCPIP0::h::inst0::INSTR]\n"
            "[VISADevices]\n\"Scope\"=\"TCPIP0::s::inst0::INSTR\"\n");
    ListRun run;
    openList(run, [&](tcpipshowdev& dialog) {
        addStep(run.script, "h", "inst0", "scope");  // same resource, same alias (other case)
        press(dialog, "&Add device");
        press(dialog, "&OK");
    });
    // No message: the device check compares whole entries with the bare
    // string, and the alias check the automatic name; the list gains the
    // entry, the aliases do not.
    EXPECT_EQ(run.boxes.texts(), Entries{});
    EXPECT_EQ(treeText("VISADevices"), "[]\n\"Scope\"=\"TCPIP0::s::inst0::INSTR\"\n");
    EXPECT_EQ(problems(run.script), "");
}

TEST_F(TcpipShowDev, EditRecordsEachAliasCase) {
    const struct {
        const char* name;
        const char* oldAlias;  // "" for none
        const char* newAlias;
        const char* visaDevices;  // after OK
        const char* devices;
    } cases[] = {
        {"none to none", "", "", "[]\n", "[]\n"},
        {"none to new", "", "bench", "[]\n\"bench\"=\"TCPIP0::h::5025::SOCKET\"\n", "[]\n"},
        {"old to none", "scope", "", "[]\n", "[]\n"},
        {"old renamed", "scope", "meter", "[]\n\"meter\"=\"TCPIP0::h::5025::SOCKET\"\n",
         "[]\n\"meter\"=\"lan0[h]:inst0\"\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TempStore store;
        putLanInterface();
        putTree("[INTF2\\VISADev\\TCPIP0::h::inst0\\TCPIP0::h::inst0::INSTR]\n[VISADevices]\n[Devices]\n");
        if (*c.oldAlias != '\0')
            putTree(std::string("[VISADevices]\n\"") + c.oldAlias + "\"=\"TCPIP0::h::inst0::INSTR\"\n[Devices]\n\"" +
                    c.oldAlias + "\"=\"lan0[h]:inst0\"\n");
        ListRun run;
        openList(run, [&](tcpipshowdev& dialog) {
            run.script.expect<tcpipnewdev>([&](tcpipnewdev& child) {
                EXPECT_EQ(ui::toStdString(child.windowTitle()), "Edit a TCPIP resource");
                EXPECT_EQ(shownText(child, "hostEdit"), "h");
                EXPECT_EQ(shownText(child, "deviceEdit"), "inst0");
                EXPECT_EQ(shownText(child, "aliasEdit"), c.oldAlias);
                if (std::string(c.name) == "old renamed") screenshot(child, "tcpipnewdev_edit");
                typeInto(child, "aliasEdit", c.newAlias);
                typeInto(child, "deviceEdit", "5025");
                press(child, "&OK");
            });
            selectOnly(dialog, {0});
            press(dialog, "&Edit device");
            EXPECT_EQ(listEntries(dialog), Entries{std::string(c.newAlias) + "\tTCPIP0::h::5025::SOCKET"});
            press(dialog, "&OK");
        });
        EXPECT_EQ(problems(run.script), "");
        EXPECT_EQ(treeText("VISADevices"), c.visaDevices);
        EXPECT_EQ(treeText("Devices"), c.devices);
        EXPECT_EQ(treeText("INTF2\\VISADev"), "[]\n[TCPIP0::h::5025]\n[TCPIP0::h::5025\\TCPIP0::h::5025::SOCKET]\n"
                                              "\"Driver\"=\"sock\"\n\"Prefix\"=\"TCPIP\"\n");
    }
}

TEST_F(TcpipShowDev, RemoveFromTheBottomUpAndCancelWritesNothing) {
    putTree(
        "[INTF2\\VISADev\\TCPIP0::a::inst0\\TCPIP0::a::inst0::INSTR]\n"
        "[INTF2\\VISADev\\TCPIP0::b::inst0\\TCPIP0::b::inst0::INSTR]\n"
        "[INTF2\\VISADev\\TCPIP0::c::inst0\\TCPIP0::c::inst0::INSTR]\n"
        "[INTF2\\VISADev\\TCPIP0::d::inst0\\TCPIP0::d::inst0::INSTR]\n"
        "[VISADevices]\n\"alpha\"=\"TCPIP0::a::inst0::INSTR\"\n\"gamma\"=\"TCPIP0::c::inst0::INSTR\"\n");
    const std::string before = treeText("");
    for (const int result : {kIdCancel, kIdOk}) {
        ListRun run;
        openList(run, [&](tcpipshowdev& dialog) {
            selectOnly(dialog, {0, 2, 3});
            press(dialog, "&Remove device");
            EXPECT_EQ(listEntries(dialog), Entries{"\tTCPIP0::b::inst0::INSTR"});
            press(dialog, result == kIdOk ? "&OK" : "&Cancel");
        });
        EXPECT_EQ(run.result, result);
        if (result == kIdCancel) {
            EXPECT_EQ(treeText(""), before);
        }
    }
    EXPECT_EQ(treeText("INTF2\\VISADev"), "[]\n[TCPIP0::b::inst0]\n[TCPIP0::b::inst0\\TCPIP0::b::inst0::INSTR]\n"
                                          "\"Driver\"=\"lan\"\n\"Prefix\"=\"TCPIP\"\n");
    EXPECT_EQ(treeText("VISADevices"), "[]\n");
}

TEST_F(TcpipShowDev, BusyStoreKeepsTheDialogOpenAndWritesNothing) {
    putTree("[INTF2\\VISADev\\TCPIP0::a::inst0\\TCPIP0::a::inst0::INSTR]\n");
    const std::string before = treeText("");
    std::optional<test::StoreWriteLock> other;  // taken once the list is open
    ListRun run;
    openList(run, [&](tcpipshowdev& dialog) {
        addStep(run.script, "n", "", std::string("new"));
        press(dialog, "&Add device");
        other.emplace(store_.path());
        ASSERT_TRUE(other->held());
        press(dialog, "&OK");  // waits out the store's bounded wait, then gives up
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(run.boxes.texts(), Entries{platform::storeFailureMessage(platform::StoreFailure::Busy)});
        other.reset();
        EXPECT_EQ(treeText(""), before);
        press(dialog, "&OK");  // the lock is gone: the same list is written
    });
    EXPECT_EQ(run.result, kIdOk);
    EXPECT_EQ(treeText("VISADevices"), "[]\n\"new\"=\"TCPIP0::n::inst0::INSTR\"\n");
    EXPECT_EQ(problems(run.script), "");
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

// Store text is cp1252: a typed "Bänch" is stored as the byte 0xE4, and a
// host name with 0xE9 shows as "é".
// Disabled until the Qt edge converts cp1252 (it still decodes UTF-8 here).
TEST_F(TcpipShowDev, NonAsciiAliasesAndHostsShowAndStoreAsCp1252) {
    putTree("[INTF2\\VISADev\\TCPIP0::caf\xe9::inst0\\TCPIP0::caf\xe9::inst0::INSTR]\n");
    ListRun run;
    openList(run, [&](tcpipshowdev& dialog) {
        EXPECT_EQ(dialog.m_deviceList.data(dialog.m_deviceList.index(0), Qt::DisplayRole).toString(),
                  QString::fromUtf8("\tTCPIP0::caf\u00e9::inst0::INSTR"));
        run.script.expect<tcpipnewdev>([](tcpipnewdev& child) {
            field(child, "aliasEdit")->clear();
            typeLetters(field(child, "aliasEdit"), QString::fromUtf8("B\u00e4nch"));
            typeLetters(field(child, "hostEdit"), QString::fromUtf8("h\u00f6st"));
            press(child, "&OK");
        });
        press(dialog, "&Add device");
        press(dialog, "&OK");
    });
    std::uint32_t type = 0;
    std::string bytes;
    ASSERT_TRUE(readValue(underProduct("VISADevices"), "B\xe4nch", type, bytes));
    EXPECT_EQ(bytes, std::string("TCPIP0::h\xf6st::inst0::INSTR") + '\0');
    EXPECT_EQ(problems(run.script), "");
}

}  // namespace
}  // namespace braxcfg::tcpip
