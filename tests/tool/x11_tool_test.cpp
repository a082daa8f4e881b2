// The tool's windows under a real X server, driven as a person drives
// them: key presses go through the X server (XTEST, by xdotool) to whichever
// window has the focus, so focus, default buttons and mnemonics take part.
// The store is read back through the tool afterwards. Skipped where Xvfb
// or xdotool is missing.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tool_folder.h"
#include "x_session.h"

namespace {

class ToolUnderX : public braxcfg::test::ToolFolder {
protected:
    void SetUp() override {
        ToolFolder::SetUp();
        if (!x_.unavailable().empty()) GTEST_SKIP() << x_.unavailable();
    }

    // Starts the tool with `args` on this test's store and display, with the
    // example lab and no system VISA library; it dies with the test.
    void start(std::vector<std::string> args) {
        args.insert(args.begin(), {BRAXCFG_TOOL_PATH, "--store", store()});
        pid_ = fork();
        if (pid_ != 0) return;
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        setenv("DISPLAY", x_.display().c_str(), 1);
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1);
        setenv("BRAXCFG_LAB", BRAXCFG_SOURCE_DIR "/examples/lab.ini", 1);
        // In a sanitizer build the platform libraries' own allocations are not ours to report.
        setenv("LSAN_OPTIONS", "suppressions=" BRAXCFG_SOURCE_DIR "/tests/tool/lsan_x11.supp", 1);
        std::vector<char*> argv;
        for (std::string& arg : args) argv.push_back(arg.data());
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }
    // Whether the tool is still running, after waiting for its end when `wait`.
    bool running(bool wait = false) {
        if (!ended_ && waitpid(pid_, &status_, wait ? 0 : WNOHANG) == pid_) ended_ = true;
        return !ended_;
    }
    // Types `keys` into the window titled `title`; false when the tool ended before the window came.
    bool inWindow(const std::string& title, const std::string& keys) {
        return x_.typeInto(title, keys, [this] { return running(); });
    }
    // The tool's exit code once it has ended; -1 when it did not end normally.
    int exitCode() { return !running(true) && WIFEXITED(status_) ? WEXITSTATUS(status_) : -1; }
    // The interface's row in `braxcfg interfaces`, then its devices.
    std::string intf0() const {
        std::string interfaces, devices;
        run({"interfaces"}, &interfaces);
        run({"devices", "INTF0"}, &devices);
        return interfaces.substr(interfaces.find('\n') + 1) + devices;
    }

    const braxcfg::test::XSession x_;
    pid_t pid_ = -1;
    int status_ = 0;
    bool ended_ = false;
};

TEST_F(ToolUnderX, AddAGpibInterfaceEditItAndCloseTheWindow) {
    start({});  // no command: the window, since there is a display
    ASSERT_TRUE(inWindow("braxcfg - VISA interfaces", "ctrl+n"));
    ASSERT_TRUE(inWindow("Add interface", "Return"));  // GPIB, the first type, on the lowest free board
    ASSERT_TRUE(inWindow("braxcfg - VISA interfaces", "ctrl+e"));
    ASSERT_TRUE(inWindow("Show Devices", "alt+a"));
    ASSERT_TRUE(inWindow("New Device", "2 4 Return"));
    // The check box twice (its value kept, the focus on it), then Tab to
    // OK, each click seen through before the next key.
    for (const char* keys : {"alt+i", "alt+i"}) {
        ASSERT_TRUE(inWindow("Show Devices", keys));
        braxcfg::test::XSession::waitForAnimatedClick();
    }
    ASSERT_TRUE(inWindow("Show Devices", "Tab Return"));
    ASSERT_TRUE(inWindow("braxcfg - VISA interfaces", "ctrl+q"));
    EXPECT_EQ(exitCode(), 0);
    EXPECT_EQ(intf0(), "INTF0    GPIB0        GPIB      set-up     1          1\n"
                       "GPIB0::24\n  GPIB0::24::INSTR\n    Driver = \"INSTR\"\n    Prefix = \"INSTR\"\n");
}

// Add device by keyboard is the window test's.
TEST_F(ToolUnderX, TheDeviceListsAutoAddAndOkReachTheStore) {
    ASSERT_EQ(run({"interfaces", "add", "GPIB"}), 0);
    start({"dialog", "devices", "INTF0"});
    ASSERT_TRUE(inWindow("Show Devices", "alt+u"));  // Auto Add, Continue, then OK in the result
    ASSERT_TRUE(inWindow("Auto Configuration", "Return"));
    ASSERT_TRUE(inWindow("Auto Configuration Complete!", "Return"));
    // Clear "Identify devices at run-time", wait for the tick to go, Tab to OK, Enter.
    ASSERT_TRUE(inWindow("Show Devices", "alt+i"));
    braxcfg::test::XSession::waitForAnimatedClick();
    ASSERT_TRUE(inWindow("Show Devices", "Tab Return"));
    EXPECT_EQ(exitCode(), 0);
    const std::string found = intf0();  // the example lab's three instruments on GPIB0, not identified at run time
    EXPECT_EQ(found.substr(0, found.find('\n') + 1), "INTF0    GPIB0        GPIB      set-up     0          3\n");
}

}  // namespace
