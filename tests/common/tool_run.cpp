#include "tool_run.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace braxcfg::test {

ToolRun runTool(const std::vector<std::string>& args) {
    std::vector<std::string> words = {BRAXCFG_TOOL_PATH};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);

    ToolRun result;
    int out[2], err[2];
    if (pipe2(out, O_CLOEXEC) != 0) return result;
    if (pipe2(err, O_CLOEXEC) != 0) {
        close(out[0]), close(out[1]);
        return result;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
    pid_t pid = -1;
    const bool started = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]), close(err[1]);

    // Both pipes are drained together: a child that fills one while the
    // other is being read would otherwise never finish.
    pollfd fds[2] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}};
    std::string* texts[2] = {&result.out, &result.err};
    for (int open = started ? 2 : 0; open > 0 && poll(fds, 2, -1) > 0;) {
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
    close(out[0]), close(err[0]);
    int status = 0;
    if (started && waitpid(pid, &status, 0) == pid && WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
    return result;
}

}  // namespace braxcfg::test
