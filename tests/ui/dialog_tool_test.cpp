// braxcfg dialog, run as a child process: the screenshot mode a script
// relies on, and the errors of use.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <QImage>
#include <filesystem>
#include <fstream>
#include <string>

#include "temp_store.h"

namespace {

TEST(DialogTool, ScreenshotModeSavesThePictureAndErrorsExitTwo) {
    const std::string dir = braxcfg::test::testOutputDir("dialog_tool");
    // The dialogs of an interface need a store holding it.
    const std::string store = " --store '" + dir + "/store.db'";
    std::filesystem::remove(dir + "/store.db");
    std::ofstream(dir + "/intf.reg") << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion"
                                        "\\INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n";
    ASSERT_EQ(std::system(("'" BRAXCFG_TOOL_PATH "'" + store + " import '" + dir + "/intf.reg'").c_str()), 0);
    const std::tuple<std::string, std::string, int> cases[] = {  // arguments, picture ("": none), exit code
        {"dialog new-device --prefix GPIB0::", dir + "/new_device.png", 0},
        {"dialog choice --intf GPIB0", dir + "/choice.png", 0},
        {"dialog ready --intf GPIB-VXI0", dir + "/ready.png", 0},
        {"dialog devices INTF0" + store, dir + "/devices.png", 0},
        {"dialog autoconfig INTF0 --list" + store, dir + "/autoconfig.png", 0},
        {"dialog devices INTF1" + store, "", 2},
        {"dialog devices" + store, "", 2},
        {"dialog devices INTF0 --list" + store, "", 2},
        {"dialog choice --prefix GPIB0::", "", 2},
        {"dialog new-device", "", 2},
        {"dialog device-list --intf GPIB0", "", 2},
        {"dialog ready --intf GPIB0 --screenshot '" + dir + "/missing/ready.png'", "", 2},
    };
    for (const auto& [arguments, picture, exitCode] : cases) {
        std::filesystem::remove(picture);
        const std::string shot = picture.empty() ? "" : " --screenshot '" + picture + "'";
        const int status = std::system(("'" BRAXCFG_TOOL_PATH "' " + arguments + shot + " >/dev/null 2>&1").c_str());
        EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, exitCode) << arguments;
        EXPECT_EQ(QImage(QString::fromStdString(picture)).isNull(), picture.empty()) << picture;
    }
    EXPECT_FALSE(std::filesystem::exists(dir + "/missing"));
}

}  // namespace
