// braxcfg dialog, run as a child process: the screenshot mode a script
// relies on, and the errors of use.
#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include "temp_store.h"
#include "tool_run.h"

namespace {

TEST(DialogTool, ScreenshotModeSavesThePictureAndErrorsExitTwo) {
    const std::string dir = braxcfg::test::testOutputDir("dialog_tool");
    using Words = std::vector<std::string>;
    // The dialogs of an interface need a store holding it.
    const std::string store = dir + "/store.db";
    std::filesystem::remove(store);
    std::ofstream(dir + "/intf.reg") << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion"
                                        "\\INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n"
                                        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion"
                                        "\\INTF2]\n\"VISAName\"=\"TCPIP0\"\n\"VISAIntfType\"=\"TCPIP\"\n";
    ASSERT_EQ(braxcfg::test::runTool({"--store", store, "import", dir + "/intf.reg"}).exitCode, 0);
    const std::tuple<Words, std::string, int> cases[] = {  // arguments, picture ("": none), exit code
        {{"dialog", "new-device", "--prefix", "GPIB0::"}, dir + "/new_device.png", 0},
        {{"dialog", "choice", "--intf", "GPIB0"}, dir + "/choice.png", 0},
        {{"dialog", "ready", "--intf", "GPIB-VXI0"}, dir + "/ready.png", 0},
        {{"--store", store, "dialog", "devices", "INTF0"}, dir + "/devices.png", 0},
        {{"--store", store, "dialog", "autoconfig", "INTF0", "--list"}, dir + "/autoconfig.png", 0},
        {{"--store", store, "dialog", "devices", "INTF1"}, "", 2},
        {{"--store", store, "dialog", "devices"}, "", 2},
        {{"--store", store, "dialog", "devices", "INTF0", "--list"}, "", 2},
        {{"--store", store, "dialog", "tcpip", "INTF2"}, dir + "/tcpip.png", 0},
        {{"dialog", "tcpip-resource", "--prefix", "TCPIP0::", "--host", "h", "--device", "5025", "--alias", "a"},
         dir + "/tcpip_resource.png", 0},
        {{"--store", store, "dialog", "tcpip", "INTF0"}, "", 2},  // not a TCPIP interface
        {{"--store", store, "dialog", "tcpip-resource", "--host", "h"}, "", 2},
        {{"dialog", "choice", "--prefix", "GPIB0::"}, "", 2},
        {{"dialog", "new-device"}, "", 2},
        {{"dialog", "device-list", "--intf", "GPIB0"}, "", 2},
        {{"dialog", "ready", "--intf", "GPIB0", "--screenshot", dir + "/missing/ready.png"}, "", 2},
    };
    for (auto [arguments, picture, exitCode] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        std::filesystem::remove(picture);
        if (!picture.empty()) arguments.insert(arguments.end(), {"--screenshot", picture});
        EXPECT_EQ(braxcfg::test::runTool(arguments).exitCode, exitCode);
        EXPECT_EQ(QImage(QString::fromStdString(picture)).isNull(), picture.empty()) << picture;
    }
    EXPECT_FALSE(std::filesystem::exists(dir + "/missing"));
}

}  // namespace
