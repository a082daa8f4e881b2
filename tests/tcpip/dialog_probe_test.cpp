// Test buttons of both LAN dialogs against loopback servers: the box owned
// by the list, every command button off while the probe runs and the window
// painting meanwhile, and a window closed during the probe cancelling it.
// Which outcome gives which box is the probe's own test.
#include <QTimer>
#include <future>

#include "fake_servers.h"
#include "tcpip_dialog_support.h"

namespace braxcfg::tcpip {
namespace {

using namespace test;

// The built-in VISA: a VISA library installed on the machine must not answer.
[[maybe_unused]] const bool kBuiltinVisa = setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1) == 0;

// A HiSLIP server that answers only once released, so the test decides
// when the probe may end.
class HeldHislip {
public:
    HeldHislip()
        : released_(release_.get_future().share()),
          server_([answer = hislipServer({HislipScript::Reply::InitializeResponse}, std::make_shared<HislipRecord>()),
                   released = released_](Peer& peer) {
              released.wait();
              answer(peer);
          }) {}
    ~HeldHislip() { release(); }
    void release() {
        if (!done_) release_.set_value();
        done_ = true;
    }
    std::string device() const { return "hislip0," + std::to_string(server_.port()); }
    std::string resource() const { return "TCPIP0::127.0.0.1::" + device() + "::INSTR"; }

private:
    std::promise<void> release_;
    std::shared_future<void> released_;
    bool done_ = false;
    FakeServer server_;
};

// Counts the paint events `widget` gets and calls `onFirst` at the first.
class PaintWatch : public QObject {
public:
    PaintWatch(QWidget& widget, std::function<void()> onFirst) : onFirst_(std::move(onFirst)) {
        widget.installEventFilter(this);
    }
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint && paints++ == 0) onFirst_();
        return false;
    }

private:
    std::function<void()> onFirst_;
};

class DialogProbe : public LanListTest {
protected:
    void SetUp() override {
        LanListTest::SetUp();
        putDword(underProduct(), "ResourceTestTimeout", 300);
    }
    // One device of INTF2 with the alias "scope" when given.
    static void putDevice(const std::string& resource, const char* alias = nullptr) {
        putTree("[INTF2\\VISADev\\" + resource.substr(0, resource.size() - 7) + "\\" + resource + "]\n" +
                (alias ? "[VISADevices]\n\"" + std::string(alias) + "\"=\"" + resource + "\"\n" : ""));
    }
};

TEST_F(DialogProbe, ListTestShowsItsBoxOwnedByTheListWhileTheWindowPaints) {
    HeldHislip server;
    putDevice(server.resource(), "scope");
    std::string duringProbe;
    int paintsDuringProbe = 0;
    const tcpipshowdev* list = nullptr;
    runList([&](tcpipshowdev& dialog) {
        list = &dialog;
        dialog.m_deviceList.setSel(0, true);
        std::unique_ptr<PaintWatch> watch;
        QTimer::singleShot(0, &dialog, [&] {  // inside the probe's event loop
            duringProbe = enabledButtons(dialog);
            watch = std::make_unique<PaintWatch>(dialog, [&] { server.release(); });
            dialog.update();
        });
        press(dialog, "&Test device");
        paintsDuringProbe = watch ? watch->paints : 0;
        watch.reset();
        EXPECT_EQ(enabledButtons(dialog), "OCAETR");
        screenshot(dialog, "tcpipshowdev_after_test");
        press(dialog, "&Cancel");
    });
    EXPECT_EQ(duringProbe, "------");
    EXPECT_GE(paintsDuringProbe, 1);
    ASSERT_EQ(boxes_.requests().size(), 1u);
    EXPECT_EQ(boxes_.requests()[0].owner, list);
    EXPECT_EQ(boxes_.requests()[0].text, "The resource 'scope' was found.\n\n(" + server.resource() + ")");
}

TEST_F(DialogProbe, AddDialogTestUsesTheAliasOfTheLastFieldEditAndClosingCancels) {
    HeldHislip server;
    std::string duringProbe;
    runList([&](tcpipshowdev& dialog) {
        script_.expect<tcpipnewdev>([&](tcpipnewdev& child) {
            typeInto(child, "aliasEdit", "first");
            typeInto(child, "hostEdit", "127.0.0.1");
            typeInto(child, "deviceEdit", server.device());
            typeInto(child, "aliasEdit", "typed later");  // exchanged by no edit of host or device
            QTimer::singleShot(0, &child, [&] {
                for (const char* name : {"okButton", "cancelButton", "testButton", "deviceEdit"})
                    duringProbe += child.findChild<QWidget*>(name)->isEnabled() ? "+" : "-";
                screenshot(child, "tcpipnewdev_testing");
                server.release();
            });
            press(child, "&Test");
            ASSERT_EQ(boxes_.requests().size(), 1u);
            EXPECT_EQ(boxes_.requests()[0].text, "The resource 'first' was found.\n\n(" + server.resource() + ")");
            EXPECT_EQ(boxes_.requests()[0].owner, &dialog);
            screenshot(child, "tcpipnewdev_add");

            // Escape while a probe runs against a silent host: the probe
            // ends at once, no box, and the dialog closes as cancelled.
            SilentListener silent;
            typeInto(child, "deviceEdit", "hislip0," + std::to_string(silent.port()));
            QTimer::singleShot(0, &child, [&] { QTest::keyClick(field(child, "hostEdit"), Qt::Key_Escape); });
            press(child, "&Test");
            EXPECT_FALSE(child.isVisible());
        });
        press(dialog, "&Add device");
        EXPECT_EQ(listEntries(dialog), std::vector<std::string>{});
        press(dialog, "&Cancel");
    });
    EXPECT_EQ(duringProbe, "----");
    EXPECT_EQ(boxes_.requests().size(), 1u);
}

TEST_F(DialogProbe, ClosingTheListDuringItsTestCancelsAndCloses) {
    SilentListener silent;
    putDword(underProduct(), "ResourceTestTimeout", 60000);  // only the close can end it soon
    putDevice("TCPIP0::127.0.0.1::hislip0," + std::to_string(silent.port()) + "::INSTR");
    EXPECT_EQ(runList([&](tcpipshowdev& dialog) {
        dialog.m_deviceList.setSel(0, true);
        QTimer::singleShot(0, &dialog, [&] { dialog.close(); });
        press(dialog, "&Test device");
    }), ui::kIdCancel);
    EXPECT_EQ(boxes_.requests().size(), 0u);
}

}  // namespace
}  // namespace braxcfg::tcpip
