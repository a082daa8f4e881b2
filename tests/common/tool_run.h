#pragma once
// Runs the built braxcfg tool as a child process. Arguments go to it as they
// are, one word each (no shell), so quotes, blanks and a leading "-" need no
// care.
#include <string>
#include <vector>

namespace braxcfg::test {

struct ToolRun {
    int exitCode = -1;  // -1: it did not exit (killed by a signal) or could not start
    std::string out;
    std::string err;
};

// The tool's standard output, standard error and exit code.
ToolRun runTool(const std::vector<std::string>& args);

}  // namespace braxcfg::test
