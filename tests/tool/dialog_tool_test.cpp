// braxcfg dialog, run as a child process: each dialog's opener in the
// screenshot mode a script relies on, and the errors of use.
#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>
#include <string>
#include <vector>

#include "tool_folder.h"

namespace {

using DialogTool = braxcfg::test::ToolFolder;

TEST_F(DialogTool, ScreenshotModeSavesThePictureAndErrorsExitTwo) {
    const std::string product = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion";
    ASSERT_EQ(tool({"import", write("intf.reg", "REGEDIT4\n\n" + product + "\\INTF0]\n\"VISAName\"=\"GPIB0\"\n"
                                    "\"VISAIntfType\"=\"GPIB\"\n" + product + "\\INTF2]\n\"VISAName\"=\"TCPIP0\"\n"
                                    "\"VISAIntfType\"=\"TCPIP\"\n")}).exitCode, 0);
    const std::string shots = braxcfg::test::testOutputDir("dialog_tool");
    const struct { std::vector<std::string> args; const char* picture; int exitCode; } cases[] = {  // "": no picture
        {{"new-device", "--prefix", "GPIB0::"}, "new_device", 0},
        {{"choice", "--intf", "GPIB0"}, "choice", 0},
        {{"ready", "--intf", "GPIB-VXI0"}, "ready", 0},
        {{"devices", "INTF0"}, "devices", 0},
        {{"autoconfig", "INTF0", "--list"}, "autoconfig", 0},
        {{"tcpip", "INTF2"}, "tcpip", 0},
        {{"tcpip-resource", "--prefix", "TCPIP0::", "--host", "h", "--device", "5025", "--alias", "a"},
         "tcpip_resource", 0},
        {{"devices", "INTF1"}, "", 2},
        {{"tcpip", "INTF0"}, "", 2},  // not a TCPIP interface
        {{"new-device"}, "", 2},
        {{"device-list", "--intf", "GPIB0"}, "", 2},
        {{"ready", "--intf", "GPIB0", "--screenshot", path("missing/ready.png")}, "", 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        std::vector<std::string> args{"dialog"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const std::string picture = *c.picture ? shots + "/" + c.picture + ".png" : "";
        std::filesystem::remove(picture);
        if (!picture.empty()) args.insert(args.end(), {"--screenshot", picture});
        EXPECT_EQ(tool(args).exitCode, c.exitCode);
        EXPECT_EQ(QImage(QString::fromStdString(picture)).isNull(), picture.empty()) << picture;
    }
    EXPECT_FALSE(std::filesystem::exists(path("missing")));
}

}  // namespace
