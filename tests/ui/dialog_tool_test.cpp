// braxcfg dialog, run as a child process: the screenshot mode a script
// relies on, and the errors of use.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <QImage>
#include <filesystem>
#include <string>

#include "store_builder.h"
#include "temp_store.h"

namespace {

TEST(DialogTool, ScreenshotModeSavesThePictureAndErrorsExitTwo) {
    const std::string dir = braxcfg::test::testOutputDir("dialog_tool");
    const braxcfg::test::TempStore store;
    braxcfg::test::putInterface("INTF2", "TCPIP0", "TCPIP");
    braxcfg::test::putInterface("INTF3", "GPIB0", "GPIB");
    const std::string onStore = "--store '" + store.path() + "' ";
    const std::tuple<std::string, std::string, int> cases[] = {  // arguments, picture ("": none), exit code
        {"dialog new-device --prefix GPIB0::", dir + "/new_device.png", 0},
        {"dialog choice --intf GPIB0", dir + "/choice.png", 0},
        {"dialog ready --intf GPIB-VXI0", dir + "/ready.png", 0},
        {onStore + "dialog tcpip INTF2", dir + "/tcpip.png", 0},
        {"dialog tcpip-resource --prefix TCPIP0:: --host h --device 5025 --alias a", dir + "/tcpip_resource.png", 0},
        {onStore + "dialog tcpip INTF3", "", 2},  // not a TCPIP interface
        {onStore + "dialog tcpip", "", 2},
        {"dialog tcpip-resource --host h", "", 2},
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
