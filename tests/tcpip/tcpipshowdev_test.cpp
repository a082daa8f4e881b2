// The LAN resource list driven through its buttons: start-up from the store,
// Add, Edit, Remove, Test, OK's rewrite of devices and aliases, Cancel, and a
// store that cannot be written. Tests run against loopback servers; which
// outcome gives which box is the probe's own test.
#include "tcpip/tcpipshowdev.h"

#include <gtest/gtest.h>

#include <QTimer>
#include <utility>

#include "dialog_test_support.h"
#include "fake_servers.h"
#include "store_builder.h"
#include "store_write_lock.h"
#include "tcpip/tcpipnewdev.h"
#include "tree_text.h"
#include "ui/testing/message_box_capture.h"

namespace braxcfg::tcpip {
namespace {

using namespace test;
using ui::kIdCancel;
using ui::kIdOk;
using Entries = std::vector<std::string>;

// The built-in VISA: a VISA library installed on the machine must not answer.
[[maybe_unused]] const bool kBuiltinVisa = setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1) == 0;

// INTF2 is TCPIP0 with INSTR and SOCKET resources, KORL name "lan0"; `act`
// drives its list, opened as the workflow opens it.
class TcpipShowDev : public testing::Test {
protected:
    void SetUp() override {
        putTree("[INTF2]\n\"VISAName\"=\"TCPIP0\"\n\"VISAIntfType\"=\"TCPIP\"\n\"VISAKorlIntfName\"=\"lan0\"\n"
                "[INTF2\\VISADev]\n"
                "[VISAInfo\\DefaultRsrcs\\INSTR]\n\"DrvrName\"=\"lan\"\n\"PrefixName\"=\"TCPIP\"\n\"TCPIP\"=hex:01\n"
                "[VISAInfo\\DefaultRsrcs\\SOCKET]\n\"DrvrName\"=\"sock\"\n\"PrefixName\"=\"TCPIP\"\n\"TCPIP\"=hex:01\n");
        putDword(underProduct(), "ResourceTestTimeout", 300);
    }
    int runList(std::function<void(tcpipshowdev&)> act, bool editable = true) {
        script_.expect<tcpipshowdev>(std::move(act));
        const store::ConfigStore config;
        tcpipshowdev dialog(nullptr);
        dialog.Init(&config, "INTF2", "TCPIP0", editable, 1);
        const int result = dialog.doModal();
        EXPECT_EQ(problems(script_), "");
        return result;
    }
    TempStore store_;
    ui::ModalScript script_;
    ui::MessageBoxCapture boxes_;
};

std::vector<std::string> listEntries(const tcpipshowdev& dialog) { return dialog.m_deviceList.items(); }

// Which of OK, Cancel, Add, Edit, Test, Remove are enabled, as "OCAETR"
// with '-' for a disabled one.
std::string enabledButtons(QWidget& dialog) {
    std::string states;
    const std::pair<const char*, char> buttons[] = {{"&OK", 'O'},          {"&Cancel", 'C'},      {"&Add device", 'A'},
                                                    {"&Edit device", 'E'}, {"&Test device", 'T'}, {"&Remove device", 'R'}};
    for (const auto& [text, letter] : buttons) states += buttonsLabelled(dialog, text).at(0)->isEnabled() ? letter : '-';
    return states;
}

QLineEdit* field(QWidget& dialog, const char* name) { return dialog.findChild<QLineEdit*>(name); }

// Replaces a field's text as a person would: select all, delete, type.
void typeInto(QWidget& dialog, const char* name, const std::string& text) {
    QLineEdit* edit = field(dialog, name);
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, ui::toQString(text));
}

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

// Read-only, the list is cancelled and writes nothing; editable, OK first
// meets another process holding the store's write lock for longer than the
// bounded wait: it writes nothing, says so, and the user keeps the list.
TEST_F(TcpipShowDev, StartsFromTheStoreButtonsFollowClicksRemoveGoesBottomUpAndOkWaitsForAFreeStore) {
    putTree("[INTF2\\VISADev\\TCPIP0::a::inst0\\TCPIP0::a::inst0::INSTR]\n"
            "[INTF2\\VISADev\\TCPIP0::a::inst0\\TCPIP0::a::inst0::SOCKET]\n"
            "[INTF2\\VISADev\\TCPIP0::b::5025\\TCPIP0::b::5025::SOCKET]\n"
            "[INTF2\\VISADev\\TCPIP0::c::inst0\\TCPIP0::c::inst0::INSTR]\n"
            "[VISADevices]\n\"Scope\"=\"tcpip0::A::INST0::instr\"\n");
    const std::string before = treeText("");
    for (const bool editable : {false, true}) {
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
                selectOnly(dialog, {0, 3});
                EXPECT_EQ(enabledButtons(dialog), editable ? "OCA-TR" : "OC--TR");  // two: no Edit
                press(dialog, "&Remove device");
                EXPECT_EQ(listEntries(dialog), (Entries{"\tTCPIP0::b::5025::SOCKET", "\tTCPIP0::c::inst0::INSTR"}));
                if (!editable) return press(dialog, "&Cancel");
                StoreWriteLock other(store_.path());
                ASSERT_TRUE(other.held());
                press(dialog, "&OK");
                EXPECT_TRUE(dialog.isVisible());
                EXPECT_EQ(boxes_.texts(), Entries{platform::storeFailureMessage(platform::StoreFailure::Busy)});
                other.release();
                EXPECT_EQ(treeText(""), before);  // nor did the cancelled read-only run
                press(dialog, "&OK");  // the lock is gone: the same list is written
            },
            editable);
        EXPECT_EQ(result, editable ? kIdOk : kIdCancel);
    }
    EXPECT_EQ(treeText("INTF2\\VISADev"),
              "[]\n[TCPIP0::b::5025]\n[TCPIP0::b::5025\\TCPIP0::b::5025::SOCKET]\n\"Driver\"=\"sock\"\n"
              "\"Prefix\"=\"TCPIP\"\n[TCPIP0::c::inst0]\n[TCPIP0::c::inst0\\TCPIP0::c::inst0::INSTR]\n"
              "\"Driver\"=\"lan\"\n\"Prefix\"=\"TCPIP\"\n");
    EXPECT_EQ(treeText("VISADevices"), "[]\n");  // the removed device's alias goes with it
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
    putTree("[INTF2\\VISADev\\TCPIP0::a::inst0\\TCPIP0::a::inst0::INSTR]\n"
            "[INTF2\\VISADev\\TCPIP0::b::inst0\\TCPIP0::b::inst0::INSTR]\n"
            "[INTF2\\VISADev\\TCPIP0::c::inst0\\TCPIP0::c::inst0::INSTR]\n"
            "[INTF2\\VISADev\\TCPIP0::d::inst0\\TCPIP0::d::inst0::INSTR]\n"
            "[VISADevices]\n\"gamma\"=\"TCPIP0::c::inst0::INSTR\"\n\"delta\"=\"TCPIP0::d::inst0::INSTR\"\n"
            "[Devices]\n\"gamma\"=\"lan0[c]:inst0\"\n\"delta\"=\"lan0[d]:inst0\"\n");
    // host, alias before ("" none), alias typed: none to none, none to new, old to none, old renamed
    const std::array<std::array<const char*, 3>, 4> edits = {
        {{"a", "", ""}, {"b", "", "bench"}, {"c", "gamma", ""}, {"d", "delta", "meter"}}};
    runList([&](tcpipshowdev& dialog) {
        for (const auto& [host, oldAlias, newAlias] : edits) {
            script_.expect<tcpipnewdev>([&](tcpipnewdev& child) {
                EXPECT_EQ(ui::toStdString(child.windowTitle()), "Edit a TCPIP resource");
                EXPECT_EQ(shownText(child, "hostEdit") + "|" + shownText(child, "deviceEdit") + "|" +
                              shownText(child, "aliasEdit"),
                          std::string(host) + "|inst0|" + oldAlias);
                typeInto(child, "aliasEdit", newAlias);
                typeInto(child, "deviceEdit", "5025");
                press(child, "&OK");
            });
            const Entries entries = listEntries(dialog);
            const std::string resource = std::string("TCPIP0::") + host + "::inst0::INSTR";
            for (int row = 0; row < static_cast<int>(entries.size()); ++row)
                if (entries[row].ends_with(resource)) selectOnly(dialog, {row});
            press(dialog, "&Edit device");
        }
        EXPECT_EQ(listEntries(dialog), (Entries{"\tTCPIP0::a::5025::SOCKET", "\tTCPIP0::c::5025::SOCKET",
                                                "bench\tTCPIP0::b::5025::SOCKET", "meter\tTCPIP0::d::5025::SOCKET"}));
        press(dialog, "&OK");
    });
    EXPECT_EQ(treeText("VISADevices"),
              "[]\n\"meter\"=\"TCPIP0::d::5025::SOCKET\"\n\"bench\"=\"TCPIP0::b::5025::SOCKET\"\n");
    EXPECT_EQ(treeText("Devices"), "[]\n\"meter\"=\"lan0[d]:inst0\"\n");
}

// Captions and fixed texts; the buttons' labels are what the scenarios press.
TEST(TcpipTemplates, CaptionsAndTexts) {
    tcpipshowdev list(nullptr), owner(nullptr);  // the resource dialog apart, so it adds nothing to the list's
    tcpipnewdev resource(&owner);
    const std::tuple<QDialog*, const char*, Entries> templates[] = {
        {&list, "TCPIP devices", {" <intf> <type> devices present:", "Alias", "VISA Resource String"}},
        {&resource, "Add a TCPIP device",
         {"Optional Alias Name:", "Machine Name/IP", "Device Name/Port #", "::", "Resulting VISA Resource String"}},
    };
    for (const auto& [dialog, caption, labels] : templates) {
        EXPECT_EQ(ui::toStdString(dialog->windowTitle()), caption);
        EXPECT_EQ(templateLabels(*dialog), labels);
    }
}

std::string hislipAt(std::uint16_t port) { return "hislip0," + std::to_string(port); }
std::string resourceOf(const std::string& device) { return "TCPIP0::127.0.0.1::" + device + "::INSTR"; }

TEST_F(TcpipShowDev, TestProbesWithTheAliasOfTheLastEditAndClosingTheBusyListCancels) {
    FakeServer found(hislipServer({HislipScript::Reply::InitializeResponse}, std::make_shared<HislipRecord>()));
    SilentListener silent;
    const std::string quiet = resourceOf(hislipAt(silent.port()));
    putTree("[INTF2\\VISADev\\" + quiet.substr(0, quiet.size() - 7) + "\\" + quiet + "]\n");
    std::string listDuringProbe;
    const int result = runList([&](tcpipshowdev& dialog) {
        script_.expect<tcpipnewdev>([&](tcpipnewdev& child) {
            typeInto(child, "aliasEdit", "first");
            typeInto(child, "hostEdit", "127.0.0.1");
            typeInto(child, "deviceEdit", hislipAt(found.port()));
            typeInto(child, "aliasEdit", "typed later");  // exchanged by no edit of host or device
            press(child, "&Test");
            screenshot(child, "tcpipnewdev_add");
            press(child, "&Cancel");
        });
        press(dialog, "&Add device");
        // Closing the list while it tests a silent host: the probe ends at once, no box.
        dialog.m_deviceList.setSel(0, true);
        QTimer::singleShot(0, &dialog, [&] {  // inside the probe's event loop
            listDuringProbe = enabledButtons(dialog);
            dialog.close();
        });
        press(dialog, "&Test device");
    });
    EXPECT_EQ(result, ui::kIdCancel);
    EXPECT_EQ(listDuringProbe, "------");
    EXPECT_EQ(boxes_.texts(), Entries{"The resource 'first' was found.\n\n(" + resourceOf(hislipAt(found.port())) + ")"});
}

}  // namespace
}  // namespace braxcfg::tcpip
