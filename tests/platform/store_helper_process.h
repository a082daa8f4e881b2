#pragma once
// Runs the store_helper program as a separate process and collects what it
// prints.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

extern char** environ;

namespace braxcfg::test {

struct HelperRun {
    pid_t pid = -1;
    int output = -1;  // read end of its stdout
};

struct HelperResult {
    int exitCode = -1;
    std::string output;
};

inline HelperRun startHelper(const std::vector<std::string>& args) {
    std::vector<std::string> all = {BRAXCFG_STORE_HELPER};
    all.insert(all.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (auto& arg : all) argv.push_back(arg.data());
    argv.push_back(nullptr);
    int pipeFds[2];
    HelperRun run;
    if (::pipe(pipeFds) != 0) return run;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
    if (posix_spawn(&run.pid, argv[0], &actions, nullptr, argv.data(), environ) != 0) run.pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipeFds[1]);
    run.output = pipeFds[0];
    return run;
}

inline HelperResult finishHelper(const HelperRun& run) {
    HelperResult result;
    char buffer[256];
    for (ssize_t n; run.output >= 0 && (n = ::read(run.output, buffer, sizeof buffer)) > 0;)
        result.output.append(buffer, static_cast<std::size_t>(n));
    if (run.output >= 0) ::close(run.output);
    int status = 0;
    if (run.pid > 0 && ::waitpid(run.pid, &status, 0) == run.pid && WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    return result;
}

inline HelperResult runHelper(const std::vector<std::string>& args) { return finishHelper(startHelper(args)); }

}  // namespace braxcfg::test
