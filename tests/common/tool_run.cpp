#include "tool_run.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace braxcfg::test {
namespace {

// Reads both pipes to their end, then waits for the child.
void collect(pid_t pid, int out, int err, ToolRun& result) {
    // Both pipes are drained together: a child that fills one while the
    // other is being read would otherwise never finish.
    pollfd fds[2] = {{out, POLLIN, 0}, {err, POLLIN, 0}};
    std::string* texts[2] = {&result.out, &result.err};
    for (int open = pid > 0 ? 2 : 0; open > 0 && poll(fds, 2, -1) > 0;) {
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0) continue;
            char chunk[4096];
            const ssize_t n = read(fds[i].fd, chunk, sizeof chunk);
            if (n > 0) {
                texts[i]->append(chunk, static_cast<std::size_t>(n));
            } else {
                fds[i].fd = -1;
                --open;
            }
        }
    }
    close(out), close(err);
    int status = 0;
    if (pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
}

}  // namespace

ToolRun runToolAs(const std::vector<std::string>& args, const ToolOptions& options) {
    ToolRun result;
    int out[2], err[2];
    if (pipe2(out, O_CLOEXEC) != 0) return result;
    if (pipe2(err, O_CLOEXEC) != 0) {
        close(out[0]), close(out[1]);
        return result;
    }
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        if (options.umask != static_cast<mode_t>(-1)) umask(options.umask);
        for (const auto& [name, value] : options.env) setenv(name.c_str(), value.c_str(), 1);
        if (options.uid != static_cast<uid_t>(-1) &&
            (setgroups(0, nullptr) != 0 || setgid(options.uid) != 0 || setuid(options.uid) != 0))
            _exit(126);
        std::vector<char*> argv{const_cast<char*>(BRAXCFG_TOOL_PATH)};
        for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
        argv.push_back(nullptr);
        execv(BRAXCFG_TOOL_PATH, argv.data());
        _exit(127);
    }
    close(out[1]), close(err[1]);
    collect(pid, out[0], err[0], result);
    return result;
}

ToolRun runTool(const std::vector<std::string>& args) { return runToolAs(args, ToolOptions{}); }

ToolRun runToolOn(const std::string& store, std::vector<std::string> args) {
    args.insert(args.begin(), {"--store", store});
    return runTool(args);
}

}  // namespace braxcfg::test
