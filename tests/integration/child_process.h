#pragma once
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

namespace braxcfg::test {

// A program the tests start, its stdout on a pipe. It dies with the test
// process, by an alarm after a minute at the latest, or with its object.
class Child {
public:
    explicit Child(std::vector<std::string> argv) {
        std::vector<char*> args;
        for (std::string& arg : argv) args.push_back(arg.data());
        args.push_back(nullptr);  // built before fork: the child may only make async-signal-safe calls
        int fds[2];
        if (pipe2(fds, O_CLOEXEC) != 0) return;
        if ((pid_ = fork()) == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            alarm(60);  // survives exec
            dup2(fds[1], STDOUT_FILENO);
            execv(args[0], args.data());
            _exit(127);
        }
        close(fds[1]);
        out_ = fds[0];
    }
    ~Child() {
        stop();
        close(out_);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Output until it ends, a line is complete (with `oneLine`), or none
    // comes for `quiet`.
    std::string output(std::chrono::milliseconds quiet, bool oneLine = false) {
        std::string text;
        pollfd fd{out_, POLLIN, 0};
        for (char c; poll(&fd, 1, static_cast<int>(quiet.count())) > 0 && read(out_, &c, 1) == 1;) {
            text += c;
            if (oneLine && c == '\n') break;
        }
        return text;
    }
    // Asks it to end (SIGTERM) and waits: its exit code, -1 when a signal ended it.
    int stop() {
        if (pid_ > 0) kill(pid_, SIGTERM);
        return wait();
    }
    int wait() {
        int status = 0;
        const bool reaped = pid_ > 0 && waitpid(pid_, &status, 0) == pid_;
        pid_ = -1;
        return reaped && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t pid_ = -1;
    int out_ = -1;
};

}  // namespace braxcfg::test
