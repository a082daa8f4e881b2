// braxcfg dialog, run as a child process: the screenshot mode a script
// relies on, and the errors of use.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "temp_store.h"

namespace {

std::string quoted(const std::string& word) {
    std::string out = "'";
    for (char c : word) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

int runTool(const std::string& arguments) {
    const std::string command = quoted(BRAXCFG_TOOL_PATH) + " " + arguments + " >/dev/null 2>&1";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool isPng(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    char magic[8] = {};
    in.read(magic, sizeof magic);
    return in && std::string(magic, sizeof magic) == "\x89PNG\r\n\x1a\n";
}

TEST(DialogTool, ScreenshotModeSavesThePictureAndErrorsExitTwo) {
    const std::string dir = braxcfg::test::testOutputDir("dialog_tool");
    struct Case {
        std::string arguments;
        std::string picture;  // empty: none may be written
        int exitCode;
    };
    const Case cases[] = {
        {"dialog new-device --prefix GPIB0::", dir + "/new_device.png", 0},
        {"dialog choice --intf GPIB0", dir + "/choice.png", 0},
        {"dialog ready --intf GPIB-VXI0", dir + "/ready.png", 0},
        {"dialog choice --prefix GPIB0::", "", 2},
        {"dialog new-device", "", 2},
        {"dialog device-list --intf GPIB0", "", 2},
        {"dialog ready --intf GPIB0 --screenshot " + quoted(dir + "/missing/ready.png"), "", 2},
    };
    for (const Case& c : cases) {
        std::string arguments = c.arguments;
        if (!c.picture.empty()) {
            std::filesystem::remove(c.picture);
            arguments += " --screenshot " + quoted(c.picture);
        }
        EXPECT_EQ(runTool(arguments), c.exitCode) << arguments;
        if (!c.picture.empty()) {
            EXPECT_TRUE(isPng(c.picture)) << c.picture;
        }
    }
    EXPECT_FALSE(std::filesystem::exists(dir + "/missing"));
}

}  // namespace
