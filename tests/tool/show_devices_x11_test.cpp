// The device list as a person uses it, under a real X server: the tool
// opens it, keystrokes go through the X server to the windows (xdotool),
// and the store is read back afterwards.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "file_bytes.h"
#include "temp_store.h"
#include "tool_run.h"

namespace {

using namespace std::chrono_literals;
std::string shellQuoted(const std::string& word) {
    std::string out = "'";
    for (char c : word) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

// The tool on `store`: its exit code, with stdout and stderr in `output`.
int runTool(const std::string& store, std::vector<std::string> args, std::string* output = nullptr) {
    args.insert(args.begin(), {"--store", store});
    const auto result = braxcfg::test::runTool(args);
    if (output) *output = result.out + result.err;
    return result.exitCode;
}

const std::string kProduct = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion";

// An Xvfb server on a free display number for the life of the object.
class VirtualDisplay {
public:
    VirtualDisplay() {
        if (std::system("command -v Xvfb >/dev/null && command -v xdotool >/dev/null") != 0) {
            reason_ = "Xvfb or xdotool is not installed";
            return;
        }
        for (int number = 90 + getpid() % 50; number < 200 && pid_ <= 0; ++number) {
            const std::string socket = "/tmp/.X11-unix/X" + std::to_string(number);
            if (std::filesystem::exists(socket) || std::filesystem::exists("/tmp/.X" + std::to_string(number) + "-lock"))
                continue;
            name_ = ":" + std::to_string(number);
            pid_ = fork();
            if (pid_ == 0) {
                execlp("Xvfb", "Xvfb", name_.c_str(), "-screen", "0", "1024x768x24", "-nolisten", "tcp", nullptr);
                _exit(127);
            }
            for (int i = 0; i < 100 && !std::filesystem::exists(socket); ++i) std::this_thread::sleep_for(50ms);
            if (!std::filesystem::exists(socket)) stop();
        }
        if (pid_ <= 0) reason_ = "Xvfb did not start";
    }
    ~VirtualDisplay() { stop(); }
    const std::string& name() const { return name_; }
    const std::string& unavailable() const { return reason_; }

private:
    void stop() {
        if (pid_ > 0) {
            kill(pid_, SIGTERM);
            waitpid(pid_, nullptr, 0);
        }
        pid_ = 0;
    }
    pid_t pid_ = 0;
    std::string name_;
    std::string reason_;
};

TEST(ShowDevicesUnderX, AddAutoAddAndOkReachTheStore) {
    const VirtualDisplay display;
    if (!display.unavailable().empty()) GTEST_SKIP() << display.unavailable();
    const std::string dir = braxcfg::test::testOutputDir("show_devices_x11/" + std::to_string(getpid()));
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    const std::string store = dir + "/store.db";
    std::ofstream(dir + "/start.reg") << "REGEDIT4\n\n[" << kProduct
                                      << "\\INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n"
                                         "\"VISAAutoConfig\"=hex:01\n\n["
                                      << kProduct << "\\INTF0\\VISADev]\n\n[" << kProduct
                                      << "\\VISAInfo\\DefaultRsrcs\\INSTR]\n\"DrvrName\"=\"INSTR\"\n"
                                         "\"PrefixName\"=\"INSTR\"\n\"GPIB\"=hex:01\n";
    std::string output;
    ASSERT_EQ(runTool(store, {"import", dir + "/start.reg"}, &output), 0) << output;

    const std::string env = "DISPLAY=" + display.name() + " QT_QPA_PLATFORM=xcb BRAXCFG_VISA_LIBRARY=builtin "
                            "BRAXCFG_LAB=" BRAXCFG_SOURCE_DIR "/examples/lab.ini "
                            "LSAN_OPTIONS=suppressions=" BRAXCFG_SOURCE_DIR "/tests/tool/lsan_x11.supp ";
    // The dialog runs in the background; the person's keys follow it.
    const std::string tool = env + shellQuoted(BRAXCFG_TOOL_PATH) + " --store " + shellQuoted(store) +
                             " dialog devices INTF0 > " + shellQuoted(dir + "/tool.out") + " 2>&1; echo $? > " +
                             shellQuoted(dir + "/tool.rc");
    ASSERT_EQ(std::system(("(" + tool + ") &").c_str()), 0);
    const std::string x = "DISPLAY=" + display.name() + " timeout 20 xdotool ";
    auto keysTo = [&](const std::string& title, const std::string& keys) {
        // Focus the window, then type as a keyboard does (XTEST), not as
        // events sent to one window, which may be gone after the last key.
        const std::string focus =
            x + "search --sync --onlyvisible --name " + shellQuoted("^" + title + "$") + " windowfocus --sync";
        if (const int rc = std::system(focus.c_str()); rc != 0) return rc;
        return std::system((x + "key --delay 40 " + keys).c_str());
    };
    // Add device (Alt+A), address 24, OK by Enter.
    ASSERT_EQ(keysTo("Show Devices", "alt+a"), 0);
    ASSERT_EQ(keysTo("New Device", "2 4 Return"), 0);
    // Auto Add (Alt+U), Continue, then OK in the result.
    ASSERT_EQ(keysTo("Show Devices", "alt+u"), 0);
    ASSERT_EQ(keysTo("Auto Configuration", "Return"), 0);
    ASSERT_EQ(keysTo("Auto Configuration Complete!", "Return"), 0);
    // Clear "Identify devices at run-time" (Alt+I), Tab to OK, Enter. A
    // mnemonic clicks its button a moment later (an animated click), so the
    // person waits for the tick to go before pressing OK.
    ASSERT_EQ(keysTo("Show Devices", "alt+i"), 0);
    std::this_thread::sleep_for(1s);
    ASSERT_EQ(keysTo("Show Devices", "Tab Return"), 0);
    for (int i = 0; i < 200 && !std::filesystem::exists(dir + "/tool.rc"); ++i) std::this_thread::sleep_for(50ms);
    std::ifstream rc(dir + "/tool.rc");
    int code = -1;
    rc >> code;
    const std::string toolText = braxcfg::test::readFile(dir + "/tool.out");
    ASSERT_EQ(code, 0) << toolText;

    ASSERT_EQ(runTool(store, {"interfaces"}, &output), 0);
    ASSERT_EQ(runTool(store, {"devices", "INTF0"}, &output), 0);
    EXPECT_EQ(output,
              "GPIB0::22\n  GPIB0::22::INSTR\n    Driver = \"INSTR\"\n    Prefix = \"INSTR\"\n"
              "GPIB0::24\n  GPIB0::24::INSTR\n    Driver = \"INSTR\"\n    Prefix = \"INSTR\"\n"
              "GPIB0::5::3\n  GPIB0::5::3::INSTR\n    Driver = \"INSTR\"\n    Prefix = \"INSTR\"\n"
              "GPIB0::9\n  GPIB0::9::INSTR\n    Driver = \"INSTR\"\n    Prefix = \"INSTR\"\n");
    ASSERT_EQ(runTool(store, {"export", "--utf8", "--key", kProduct + "\\INTF0", dir + "/intf.reg"}), 0);
    const std::string reg = braxcfg::test::readFile(dir + "/intf.reg");
    EXPECT_NE(reg.find("\"VISAAutoConfig\"=hex:00"), std::string::npos) << reg;
    std::filesystem::remove_all(dir);
}

}  // namespace
