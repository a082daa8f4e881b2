#pragma once
// Runs the built braxcfg tool as a child process. Arguments go to it as they
// are, one word each (no shell), so quotes, blanks and a leading "-" need no
// care.
#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace braxcfg::test {

struct ToolRun {
    int exitCode = -1;  // -1: it did not exit (killed by a signal) or could not start
    std::string out;
    std::string err;
};

// The tool's standard output, standard error and exit code.
ToolRun runTool(const std::vector<std::string>& args);
// The same, with "--store `store`" in front of `args`.
ToolRun runToolOn(const std::string& store, std::vector<std::string> args);

// How runToolAs starts the tool: as another user, with another umask, with
// environment variables set (empty values too).
struct ToolOptions {
    uid_t uid = static_cast<uid_t>(-1);  // -1: this process's user
    mode_t umask = static_cast<mode_t>(-1);  // -1: this process's umask
    std::vector<std::pair<std::string, std::string>> env;
};

ToolRun runToolAs(const std::vector<std::string>& args, const ToolOptions& options);

}  // namespace braxcfg::test
