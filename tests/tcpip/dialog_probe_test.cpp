// Test buttons of both LAN dialogs against loopback servers: each outcome's
// box, every command button off while the probe runs and the window
// painting meanwhile, and a window closed during the probe cancelling it.
#include <QTimer>
#include <future>

#include "fake_servers.h"
#include "tcpip_dialog_support.h"

namespace braxcfg::tcpip {
namespace {

using namespace test;
using ui::kIdCancel;
using ui::ModalScript;

// The built-in VISA: a VISA library installed on the machine must not answer.
[[maybe_unused]] const bool kBuiltinVisa = setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1) == 0;

// A HiSLIP server that answers only once released, so the test decides
// when the probe may end.
class HeldHislip {
public:
    explicit HeldHislip(HislipScript script)
        : released_(release_.get_future().share()),
          server_([answer = hislipServer(script, std::make_shared<HislipRecord>()),
                   released = released_](Peer& peer) {
              released.wait();
              answer(peer);
          }) {}
    ~HeldHislip() { release(); }
    void release() {
        if (!done_) release_.set_value();
        done_ = true;
    }
    std::string resource() const { return "TCPIP0::127.0.0.1::hislip0," + std::to_string(server_.port()) + "::INSTR"; }

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

struct Outcome {
    HislipScript script;
    bool silent;  // a host that never answers
    const char* caption;
    ui::MessageIcon icon;
};

class DialogProbe : public testing::Test {
protected:
    void SetUp() override {
        putLanInterface();
        putDword(underProduct(), "ResourceTestTimeout", 300);
    }
    TempStore store_;
};

TEST_F(DialogProbe, ListTestShowsEachOutcomeWhileTheWindowPaints) {
    const Outcome outcomes[] = {
        {{HislipScript::Reply::InitializeResponse}, false, "Resource Found", ui::MessageIcon::Information},
        {{HislipScript::Reply::FatalError, 3}, false, "Host Located But Resource Not Found", ui::MessageIcon::Question},
        {{}, true, "Resource Not Found", ui::MessageIcon::Stop},
    };
    for (const Outcome& outcome : outcomes) {
        SCOPED_TRACE(outcome.caption);
        HeldHislip server(outcome.script);
        SilentListener silent;
        const std::string resource =
            outcome.silent ? "TCPIP0::127.0.0.1::hislip0," + std::to_string(silent.port()) + "::INSTR"
                           : server.resource();
        putTree("[-INTF2\\VISADev]\n[INTF2\\VISADev\\" + resource.substr(0, resource.size() - 7) + "\\" + resource +
                "]\n[-VISADevices]\n[VISADevices]\n\"scope\"=\"" + resource + "\"\n");
        ModalScript script;
        ui::MessageBoxCapture boxes;
        std::string duringProbe;
        int paintsDuringProbe = 0;
        const tcpipshowdev* list = nullptr;
        script.expect<tcpipshowdev>([&](tcpipshowdev& dialog) {
            list = &dialog;
            dialog.m_deviceList.setSel(0, true);
            std::unique_ptr<PaintWatch> watch;
            QTimer::singleShot(0, &dialog, [&] {
                // Inside the probe's event loop.
                duringProbe = enabledButtons(dialog);
                watch = std::make_unique<PaintWatch>(dialog, [&] { server.release(); });
                dialog.update();
            });
            press(dialog, "&Test device");
            paintsDuringProbe = watch ? watch->paints : 0;
            watch.reset();
            EXPECT_EQ(enabledButtons(dialog), "OCAETR");
            if (std::string(outcome.caption) == "Resource Found") screenshot(dialog, "tcpipshowdev_after_test");
            press(dialog, "&Cancel");
        });
        runLanList();
        EXPECT_EQ(duringProbe, "------");
        EXPECT_GE(paintsDuringProbe, 1);
        ASSERT_EQ(boxes.requests().size(), 1u);
        EXPECT_EQ(boxes.requests()[0].caption, outcome.caption);
        EXPECT_EQ(boxes.requests()[0].icon, outcome.icon);
        EXPECT_EQ(boxes.requests()[0].owner, list);
        const std::string found = "The resource 'scope' was found.\n\n(" + resource + ")";
        EXPECT_EQ(boxes.requests()[0].text,
                  outcome.icon == ui::MessageIcon::Information ? found
                                                                : "The resource '" + resource + "' was not found.");
        EXPECT_EQ(problems(script), "");
    }
}

TEST_F(DialogProbe, AddDialogTestUsesTheAliasOfTheLastFieldEditAndClosingCancels) {
    HeldHislip server({HislipScript::Reply::InitializeResponse});
    ModalScript script;
    ui::MessageBoxCapture boxes;
    std::string duringProbe;
    script.expect<tcpipshowdev>([&](tcpipshowdev& dialog) {
        script.expect<tcpipnewdev>([&](tcpipnewdev& child) {
            typeInto(child, "aliasEdit", "first");
            typeInto(child, "hostEdit", "127.0.0.1");
            typeInto(child, "deviceEdit", server.resource().substr(19, server.resource().size() - 19 - 7));
            typeInto(child, "aliasEdit", "typed later");  // exchanged by no edit of host or device
            QTimer::singleShot(0, &child, [&] {
                duringProbe = std::string(child.findChild<QPushButton*>("okButton")->isEnabled() ? "O" : "-") +
                              (child.findChild<QPushButton*>("cancelButton")->isEnabled() ? "C" : "-") +
                              (child.findChild<QPushButton*>("testButton")->isEnabled() ? "T" : "-") +
                              (field(child, "deviceEdit")->isEnabled() ? "D" : "-");
                screenshot(child, "tcpipnewdev_testing");
                server.release();
            });
            press(child, "&Test");
            ASSERT_EQ(boxes.requests().size(), 1u);
            EXPECT_EQ(boxes.requests()[0].text, "The resource 'first' was found.\n\n(" + server.resource() + ")");
            EXPECT_EQ(boxes.requests()[0].owner, &dialog);
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
    runLanList();
    EXPECT_EQ(duringProbe, "----");
    EXPECT_EQ(boxes.requests().size(), 1u);
    EXPECT_EQ(problems(script), "");
}

TEST_F(DialogProbe, ClosingTheListDuringItsTestCancelsAndCloses) {
    SilentListener silent;
    putDword(underProduct(), "ResourceTestTimeout", 60000);  // only the close can end it soon
    const std::string resource = "TCPIP0::127.0.0.1::hislip0," + std::to_string(silent.port()) + "::INSTR";
    putTree("[INTF2\\VISADev\\" + resource.substr(0, resource.size() - 7) + "\\" + resource + "]\n");
    ModalScript script;
    ui::MessageBoxCapture boxes;
    script.expect<tcpipshowdev>([&](tcpipshowdev& dialog) {
        dialog.m_deviceList.setSel(0, true);
        QTimer::singleShot(0, &dialog, [&] { dialog.close(); });
        press(dialog, "&Test device");
    });
    EXPECT_EQ(runLanList(), kIdCancel);
    EXPECT_EQ(boxes.requests().size(), 0u);
    EXPECT_EQ(problems(script), "");
}

}  // namespace
}  // namespace braxcfg::tcpip
