#include "tool_run.h"

#include <sys/wait.h>

#include <cstdio>

namespace braxcfg::test {

std::string shellQuoted(const std::string& word) {
    std::string out = "'";
    for (char c : word) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

int runTool(const std::string& store, const std::vector<std::string>& args, std::string* output,
            const std::vector<std::string>& env) {
    std::string command = "env";
    for (const std::string& assignment : env) command += " " + shellQuoted(assignment);
    command += " " + shellQuoted(BRAXCFG_TOOL_PATH) + " --store " + shellQuoted(store);
    for (const std::string& arg : args) command += " " + shellQuoted(arg);
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) return -1;
    std::string text;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, n);
    const int status = ::pclose(pipe);
    if (output) *output = text;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace braxcfg::test
