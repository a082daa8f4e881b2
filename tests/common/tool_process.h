#pragma once
// Runs the built braxcfg tool as a child process: as another user, with
// another umask or environment when asked.
#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace braxcfg::test {

struct ToolOptions {
    uid_t uid = static_cast<uid_t>(-1);  // -1: this process's user
    mode_t umask = 022;
    std::vector<std::pair<std::string, std::string>> env;  // set before exec (empty values too)
};

struct ToolRun {
    int exit = -1;       // exit code, -1 when the tool did not end normally
    std::string output;  // stdout and stderr together
};

ToolRun runTool(const std::vector<std::string>& args, const ToolOptions& options = {});

}  // namespace braxcfg::test
