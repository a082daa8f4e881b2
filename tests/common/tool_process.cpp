#include "tool_process.h"

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace braxcfg::test {

ToolRun runTool(const std::vector<std::string>& args, const ToolOptions& options) {
    int fds[2];
    if (::pipe(fds) != 0) return {};
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(fds[1], 1);
        ::dup2(fds[1], 2);
        ::close(fds[0]);
        ::close(fds[1]);
        ::umask(options.umask);
        for (const auto& [name, value] : options.env) ::setenv(name.c_str(), value.c_str(), 1);
        if (options.uid != static_cast<uid_t>(-1) &&
            (::setgroups(0, nullptr) != 0 || ::setgid(options.uid) != 0 || ::setuid(options.uid) != 0))
            ::_exit(126);
        std::vector<char*> argv{const_cast<char*>(BRAXCFG_TOOL_PATH)};
        for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
        argv.push_back(nullptr);
        ::execv(BRAXCFG_TOOL_PATH, argv.data());
        ::_exit(127);
    }
    ::close(fds[1]);
    ToolRun run;
    char buffer[4096];
    for (ssize_t n; (n = ::read(fds[0], buffer, sizeof buffer)) > 0;) run.output.append(buffer, static_cast<std::size_t>(n));
    ::close(fds[0]);
    int status = 0;
    if (pid > 0 && ::waitpid(pid, &status, 0) == pid && WIFEXITED(status)) run.exit = WEXITSTATUS(status);
    return run;
}

}  // namespace braxcfg::test
