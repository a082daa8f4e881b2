// The configuration window under a real X server, driven as a person
// drives it: key presses go through the X server (XTEST, by xdotool) to
// whichever window has the focus. Skipped where Xvfb or xdotool is missing.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/store.h"
#include "temp_store.h"
#include "x_session.h"

namespace {

// Starts `argv` with `env` added to this process's environment; the child
// dies with the test.
pid_t spawn(const std::vector<std::string>& argv, const std::vector<std::string>& env) {
    const pid_t pid = fork();
    if (pid != 0) return pid;
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    for (const std::string& assignment : env) putenv(const_cast<char*>(assignment.c_str()));
    std::vector<char*> args;
    for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    execvp(args[0], args.data());
    _exit(127);
}

class WindowUnderX : public ::testing::Test {
protected:
    void SetUp() override {
        if (!x_.unavailable().empty()) GTEST_SKIP() << x_.unavailable();
        // In a sanitizer build the platform libraries' own allocations are not ours to report.
        env_ = {"DISPLAY=" + x_.display(), "QT_QPA_PLATFORM=xcb", "BRAXCFG_STORE=" + store_,
                "LSAN_OPTIONS=suppressions=" BRAXCFG_SOURCE_DIR "/tests/tool/lsan_x11.supp"};
        for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(store_ + suffix);
    }

    // Types `keys` into the window titled `title` while the tool runs.
    // False when the tool ended before the window came.
    bool inWindow(const std::string& title, const std::string& keys) {
        return x_.typeInto(title, keys, [this] {
            if (tool_ > 0 && waitpid(tool_, &status_, WNOHANG) == tool_) tool_ = -1;
            return tool_ > 0;
        });
    }

    braxcfg::test::XSession x_;
    std::string store_ = braxcfg::test::testOutputDir("e2e") + "/store-" + std::to_string(getpid()) + ".db";
    std::vector<std::string> env_;
    pid_t tool_ = -1;
    int status_ = 0;
};

TEST_F(WindowUnderX, AddAGpibInterfaceEditItAndCloseTheWindow) {
    tool_ = spawn({BRAXCFG_TOOL_PATH}, env_);  // no command: the window, since there is a display
    ASSERT_TRUE(inWindow("braxcfg - VISA interfaces", "ctrl+n"));
    // GPIB is the first type, the board the lowest free one.
    ASSERT_TRUE(inWindow("Add interface", "Return"));
    ASSERT_TRUE(inWindow("braxcfg - VISA interfaces", "ctrl+e"));
#if __has_include("dialogs/show_devices.h")
    ASSERT_TRUE(inWindow("Show Devices", "alt+a"));
    ASSERT_TRUE(inWindow("New Device", "2 4 Return"));
    // The check box twice (its value kept, the focus on it), then Tab to
    // OK, each click seen through before the next key.
    for (const char* keys : {"alt+i", "alt+i"}) {
        ASSERT_TRUE(inWindow("Show Devices", keys));
        braxcfg::test::XSession::waitForAnimatedClick();
    }
    ASSERT_TRUE(inWindow("Show Devices", "Tab Return"));
#endif
    ASSERT_TRUE(inWindow("braxcfg - VISA interfaces", "ctrl+q"));
    if (tool_ > 0) waitpid(tool_, &status_, 0);
    ASSERT_TRUE(WIFEXITED(status_)) << "the tool did not end normally";
    EXPECT_EQ(WEXITSTATUS(status_), 0);

    ASSERT_EQ(braxcfg::platform::openStore(store_).state, braxcfg::platform::StoreOpenState::Open);
    const braxcfg::platform::Registry intf("INTF0", braxcfg::platform::kRegOpenExisting);
    EXPECT_EQ(intf.getString("VISAName"), "GPIB0");
    EXPECT_EQ(intf.getString("VISAAutoConfigDriver"), "AUTOCF");
    EXPECT_TRUE(braxcfg::platform::Registry("VISAInfo", braxcfg::platform::kRegOpenExisting).isOpen());
#if __has_include("dialogs/show_devices.h")
    EXPECT_TRUE(braxcfg::platform::Registry("INTF0\\VISADev\\GPIB0::24", braxcfg::platform::kRegOpenExisting).isOpen());
#endif
    braxcfg::platform::closeStore();
}

}  // namespace
