// The configuration window under a real X server, driven as a person
// drives it: key presses go through the X server (XTEST, by xdotool) to
// whichever window has the focus. Skipped where Xvfb or xdotool is missing.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/store.h"
#include "temp_store.h"

namespace {

bool onPath(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

// Starts `argv` with `env` added to this process's environment; the child
// dies with the test. `stdoutFd` >= 0 becomes the child's fd 3.
pid_t spawn(const std::vector<std::string>& argv, const std::vector<std::string>& env, int extraFd = -1) {
    const pid_t pid = fork();
    if (pid != 0) return pid;
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (extraFd >= 0) dup2(extraFd, 3);
    for (const std::string& assignment : env) putenv(const_cast<char*>(assignment.c_str()));
    std::vector<char*> args;
    for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    execvp(args[0], args.data());
    _exit(127);
}

// A private X server on a display number it picks itself.
class Xvfb {
public:
    Xvfb() {
        int fds[2];
        if (pipe(fds) != 0) return;
        pid_ = spawn({"Xvfb", "-displayfd", "3", "-screen", "0", "1024x768x24", "-nolisten", "tcp"}, {}, fds[1]);
        close(fds[1]);
        char number[16] = {};
        const ssize_t n = read(fds[0], number, sizeof number - 1);
        close(fds[0]);
        if (n > 0) display_ = ":" + std::string(number, static_cast<std::size_t>(n - (number[n - 1] == '\n')));
    }
    ~Xvfb() {
        if (pid_ > 0) {
            kill(pid_, SIGTERM);
            waitpid(pid_, nullptr, 0);
        }
    }
    const std::string& display() const { return display_; }  // empty: it did not start

private:
    pid_t pid_ = -1;
    std::string display_;
};

class WindowUnderX : public ::testing::Test {
protected:
    void SetUp() override {
        if (!onPath("Xvfb")) GTEST_SKIP() << "Xvfb is not installed (Debian package xvfb)";
        if (!onPath("xdotool")) GTEST_SKIP() << "xdotool is not installed (Debian package xdotool)";
        if (x_.display().empty()) GTEST_SKIP() << "Xvfb did not start";
        // In a sanitizer build the platform libraries' own allocations are not ours to report.
        env_ = {"DISPLAY=" + x_.display(), "QT_QPA_PLATFORM=xcb", "BRAXCFG_STORE=" + store_,
                "LSAN_OPTIONS=suppressions=" BRAXCFG_SOURCE_DIR "/tests/tool/lsan_x11.supp"};
        for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(store_ + suffix);
    }

    std::string xdotool(const std::string& args) const {
        const std::string command = "DISPLAY=" + x_.display() + " xdotool " + args + " 2>/dev/null";
        FILE* pipe = popen(command.c_str(), "r");
        std::string out;
        char buffer[256];
        while (pipe && fgets(buffer, sizeof buffer, pipe)) out += buffer;
        if (pipe) pclose(pipe);
        while (!out.empty() && out.back() == '\n') out.pop_back();
        return out;
    }

    // Waits for the window titled `title` while the tool runs, gives it the
    // keyboard and types `keys` (xdotool key names). False when the tool
    // ended before the window came.
    bool inWindow(const std::string& title, const std::string& keys) {
        for (std::string id;;) {
            id = xdotool("search --onlyvisible --name '^" + title + "$'");
            if (!id.empty()) {
                id = id.substr(0, id.find('\n'));
                xdotool("windowfocus --sync " + id);
                xdotool("key --delay 50 " + keys);
                return true;
            }
            if (waitpid(tool_, &status_, WNOHANG) == tool_) {
                tool_ = -1;
                return false;
            }
            usleep(50'000);
        }
    }

    Xvfb x_;
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
    // The check box twice (its value kept, the focus on it), then Tab to OK.
    ASSERT_TRUE(inWindow("Show Devices", "alt+i alt+i Tab Return"));
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
