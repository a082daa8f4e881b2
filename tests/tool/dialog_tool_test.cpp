// braxcfg dialog, run as a child process: the screenshot mode a script
// relies on, through an opener given an interface key and one given the
// dialog's fields as options, and the errors of use. Every dialog's own
// picture is its dialog test's.
#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>
#include <string>
#include <vector>

#include "tool_folder.h"

namespace {

using DialogTool = braxcfg::test::ToolFolder;

TEST_F(DialogTool, ScreenshotModeSavesThePictureAndErrorsExitTwo) {
    ASSERT_EQ(tool({"interfaces", "add", "GPIB"}).exitCode, 0);  // INTF0, GPIB0
    const std::string shots = braxcfg::test::testOutputDir("dialog_tool");
    const struct { std::vector<std::string> args; const char* picture; int exitCode; } cases[] = {  // "": no picture
        {{"devices", "INTF0"}, "devices", 0},
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
