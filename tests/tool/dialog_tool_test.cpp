// braxcfg dialog, run as a child process: the screenshot mode a script
// relies on, and the errors of use.
#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "temp_store.h"
#include "tool_run.h"

namespace {

TEST(DialogTool, ScreenshotModeSavesThePictureAndErrorsExitTwo) {
    const std::string dir = braxcfg::test::testOutputDir("dialog_tool");
    using Words = std::vector<std::string>;
    const std::tuple<Words, std::string, int> cases[] = {  // arguments, picture ("": none), exit code
        {{"dialog", "new-device", "--prefix", "GPIB0::"}, dir + "/new_device.png", 0},
        {{"dialog", "choice", "--intf", "GPIB0"}, dir + "/choice.png", 0},
        {{"dialog", "ready", "--intf", "GPIB-VXI0"}, dir + "/ready.png", 0},
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
