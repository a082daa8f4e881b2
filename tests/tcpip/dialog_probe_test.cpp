// Test buttons of both LAN dialogs against loopback servers: the box owned
// by the list, every command button off while the probe runs and the window
// painting meanwhile, and a window closed during the probe cancelling it.
// Which outcome gives which box is the probe's own test.
#include <QTimer>
#include <future>
#include <utility>

#include "fake_servers.h"
#include "tcpip_dialog_support.h"

namespace braxcfg::tcpip {
namespace {

using namespace test;

// The built-in VISA: a VISA library installed on the machine must not answer.
[[maybe_unused]] const bool kBuiltinVisa = setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1) == 0;

std::string hislipAt(std::uint16_t port) { return "hislip0," + std::to_string(port); }
std::string resourceOf(const std::string& device) { return "TCPIP0::127.0.0.1::" + device + "::INSTR"; }

// A HiSLIP server that answers only once released, so the test decides
// when the probe may end.
struct HeldHislip {
    std::promise<void> gate;
    FakeServer server{[answer = hislipServer({HislipScript::Reply::InitializeResponse},
                                             std::make_shared<HislipRecord>()),
                       opened = gate.get_future().share()](Peer& peer) {
        opened.wait();
        answer(peer);
    }};
    bool released = false;
    void release() {
        if (!std::exchange(released, true)) gate.set_value();
    }
    ~HeldHislip() { release(); }
};

// Calls `onPaint` at each paint event of the widget it watches.
struct PaintWatch : QObject {
    explicit PaintWatch(std::function<void()> onPaint) : onPaint(std::move(onPaint)) {}
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) onPaint();
        return false;
    }
    std::function<void()> onPaint;
};

class DialogProbe : public LanListTest {
protected:
    void SetUp() override {
        LanListTest::SetUp();
        putDword(underProduct(), "ResourceTestTimeout", 300);
    }
};

TEST_F(DialogProbe, TestButtonsProbeWhileTheWindowPaintsAndAClosedWindowCancels) {
    HeldHislip listed, typed;
    SilentListener silent;
    const std::string scope = resourceOf(hislipAt(listed.server.port()));
    for (const std::string& resource : {scope, resourceOf(hislipAt(silent.port()))})
        putTree("[INTF2\\VISADev\\" + resource.substr(0, resource.size() - 7) + "\\" + resource + "]\n");
    putTree("[VISADevices]\n\"scope\"=\"" + scope + "\"\n");
    std::string listDuringProbe, childDuringProbe;
    int paintsDuringProbe = 0;
    const tcpipshowdev* list = nullptr;
    const int result = runList([&](tcpipshowdev& dialog) {
        list = &dialog;
        const int scopeRow = dialog.m_deviceList.text(0).starts_with("scope") ? 0 : 1;
        dialog.m_deviceList.setSel(scopeRow, true);
        PaintWatch watch([&] {
            ++paintsDuringProbe;
            listed.release();
        });
        QTimer::singleShot(0, &dialog, [&] {  // inside the probe's event loop
            listDuringProbe = enabledButtons(dialog);
            dialog.installEventFilter(&watch);
            dialog.update();
        });
        press(dialog, "&Test device");
        dialog.removeEventFilter(&watch);
        EXPECT_EQ(enabledButtons(dialog), "OCAETR");
        screenshot(dialog, "tcpipshowdev_after_test");

        script_.expect<tcpipnewdev>([&](tcpipnewdev& child) {
            typeInto(child, "aliasEdit", "first");
            typeInto(child, "hostEdit", "127.0.0.1");
            typeInto(child, "deviceEdit", hislipAt(typed.server.port()));
            typeInto(child, "aliasEdit", "typed later");  // exchanged by no edit of host or device
            QTimer::singleShot(0, &child, [&] {
                for (const char* name : {"okButton", "cancelButton", "testButton", "deviceEdit"})
                    childDuringProbe += child.findChild<QWidget*>(name)->isEnabled() ? "+" : "-";
                screenshot(child, "tcpipnewdev_testing");
                typed.release();
            });
            press(child, "&Test");
            screenshot(child, "tcpipnewdev_add");
            // Escape while a probe runs against a silent host closes the dialog as cancelled.
            typeInto(child, "deviceEdit", hislipAt(silent.port()));
            QTimer::singleShot(0, &child, [&] { QTest::keyClick(field(child, "hostEdit"), Qt::Key_Escape); });
            press(child, "&Test");
            EXPECT_FALSE(child.isVisible());
        });
        press(dialog, "&Add device");
        EXPECT_EQ(dialog.m_deviceList.count(), 2);

        // Closing the list while it tests: the probe ends at once, no box.
        dialog.m_deviceList.setSel(-1, false);
        dialog.m_deviceList.setSel(1 - scopeRow, true);
        QTimer::singleShot(0, &dialog, [&] { dialog.close(); });
        press(dialog, "&Test device");
    });
    EXPECT_EQ(result, ui::kIdCancel);
    EXPECT_EQ(listDuringProbe + "|" + childDuringProbe, "------|----");
    EXPECT_GE(paintsDuringProbe, 1);
    ASSERT_EQ(boxes_.requests().size(), 2u);
    EXPECT_EQ(boxes_.requests()[0].text, "The resource 'scope' was found.\n\n(" + scope + ")");
    EXPECT_EQ(boxes_.requests()[1].text, "The resource 'first' was found.\n\n(" +
                                             resourceOf(hislipAt(typed.server.port())) + ")");
    for (const auto& box : boxes_.requests()) EXPECT_EQ(box.owner, list);
}

}  // namespace
}  // namespace braxcfg::tcpip
