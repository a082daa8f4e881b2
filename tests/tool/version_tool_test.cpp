// braxcfg --version: the version the project is configured with.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "braxcfg_version.h"
#include "tool_run.h"

namespace braxcfg::test {
namespace {

TEST(VersionTool, PrintsTheProjectVersion) {
    const struct { std::vector<std::string> args; std::string out; int exitCode; } cases[] = {
        {{"--version"}, "braxcfg " BRAXCFG_VERSION_TEXT "\n", 0},
        {{"--store", "/nonexistent/dir/store.db", "--version"}, "braxcfg " BRAXCFG_VERSION_TEXT "\n", 0},
        {{"--version", "interfaces"}, "", 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        const ToolRun run = runTool(c.args);
        EXPECT_EQ(run.out, c.out);
        EXPECT_EQ(run.exitCode, c.exitCode);
    }
}

}  // namespace
}  // namespace braxcfg::test
