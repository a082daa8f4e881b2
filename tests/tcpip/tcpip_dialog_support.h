#pragma once
// What the LAN dialog tests share: a store with one TCPIP interface and the
// default resource classes, the list run under a script, its entries, its
// buttons and typing into a field.
#include <string>
#include <vector>

#include "dialog_test_support.h"
#include "store_builder.h"
#include "tcpip/tcpipnewdev.h"
#include "tcpip/tcpipshowdev.h"
#include "tree_text.h"
#include "ui/testing/message_box_capture.h"

namespace braxcfg::test {

// INTF2 is TCPIP0 with INSTR and SOCKET resources, KORL name "lan0"; `act`
// drives its list, opened as the workflow opens it.
class LanListTest : public testing::Test {
protected:
    void SetUp() override {
        putTree("[INTF2]\n\"VISAName\"=\"TCPIP0\"\n\"VISAIntfType\"=\"TCPIP\"\n\"VISAKorlIntfName\"=\"lan0\"\n"
                "[INTF2\\VISADev]\n"
                "[VISAInfo\\DefaultRsrcs\\INSTR]\n\"DrvrName\"=\"lan\"\n\"PrefixName\"=\"TCPIP\"\n\"TCPIP\"=hex:01\n"
                "[VISAInfo\\DefaultRsrcs\\SOCKET]\n\"DrvrName\"=\"sock\"\n\"PrefixName\"=\"TCPIP\"\n\"TCPIP\"=hex:01\n");
    }
    int runList(std::function<void(tcpip::tcpipshowdev&)> act, bool editable = true) {
        script_.expect<tcpip::tcpipshowdev>(std::move(act));
        const store::ConfigStore config;
        tcpip::tcpipshowdev dialog(nullptr);
        dialog.Init(&config, "INTF2", "TCPIP0", editable, 1);
        const int result = dialog.doModal();
        EXPECT_EQ(problems(script_), "");
        return result;
    }
    TempStore store_;
    ui::ModalScript script_;
    ui::MessageBoxCapture boxes_;
};

inline std::vector<std::string> listEntries(const tcpip::tcpipshowdev& dialog) { return dialog.m_deviceList.items(); }

// Which of OK, Cancel, Add, Edit, Test, Remove are enabled, as "OCAETR"
// with '-' for a disabled one.
inline std::string enabledButtons(QWidget& dialog) {
    std::string states;
    const std::pair<const char*, char> buttons[] = {{"&OK", 'O'},          {"&Cancel", 'C'},      {"&Add device", 'A'},
                                                    {"&Edit device", 'E'}, {"&Test device", 'T'}, {"&Remove device", 'R'}};
    for (const auto& [text, letter] : buttons) states += buttonsLabelled(dialog, text).at(0)->isEnabled() ? letter : '-';
    return states;
}

inline QLineEdit* field(QWidget& dialog, const char* name) { return dialog.findChild<QLineEdit*>(name); }

// Replaces a field's text as a person would: select all, type.
inline void typeInto(QWidget& dialog, const char* name, const std::string& text) {
    QLineEdit* edit = field(dialog, name);
    edit->selectAll();
    if (text.empty())
        QTest::keyClick(edit, Qt::Key_Delete);
    else
        QTest::keyClicks(edit, ui::toQString(text));
}

}  // namespace braxcfg::test
