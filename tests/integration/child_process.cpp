#include "child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <thread>
#include <utility>

extern char** environ;

namespace braxcfg::test {
namespace {

using Clock = std::chrono::steady_clock;

// The longest any helper program may live.
constexpr unsigned kLifetimeSeconds = 60;

std::vector<char*> pointers(std::vector<std::string>& strings) {
    std::vector<char*> out;
    for (std::string& s : strings) out.push_back(s.data());
    out.push_back(nullptr);
    return out;
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& argv, const std::vector<std::string>& extraEnv) {
    std::vector<std::string> args = argv;
    std::vector<std::string> env;
    for (char** e = environ; *e != nullptr; ++e) env.emplace_back(*e);
    env.insert(env.end(), extraEnv.begin(), extraEnv.end());
    // Built before fork: the child may only make async-signal-safe calls.
    std::vector<char*> argp = pointers(args);
    std::vector<char*> envp = pointers(env);
    int pipeFds[2];
    if (pipe2(pipeFds, O_CLOEXEC) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        alarm(kLifetimeSeconds);  // survives exec
        dup2(pipeFds[1], STDOUT_FILENO);
        execve(argp[0], argp.data(), envp.data());
        _exit(127);
    }
    close(pipeFds[1]);
    outFd_ = pipeFds[0];
}

ChildProcess::~ChildProcess() {
    stop();
    if (outFd_ >= 0) close(outFd_);
}

bool ChildProcess::fill(std::chrono::milliseconds timeout) {
    const auto end = Clock::now() + timeout;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) return false;
        pollfd fd{outFd_, POLLIN, 0};
        const int ready = poll(&fd, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return false;
        char chunk[512];
        const ssize_t n = read(outFd_, chunk, sizeof chunk);
        if (n <= 0) return false;
        pending_.append(chunk, static_cast<std::size_t>(n));
        return true;
    }
}

bool ChildProcess::readLine(std::string& line, std::chrono::milliseconds timeout) {
    const auto end = Clock::now() + timeout;
    for (;;) {
        if (const auto newline = pending_.find('\n'); newline != std::string::npos) {
            line = pending_.substr(0, newline);
            pending_.erase(0, newline + 1);
            return true;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (outFd_ < 0 || !fill(left)) return false;
    }
}

std::string ChildProcess::readAll(std::chrono::milliseconds timeout) {
    const auto end = Clock::now() + timeout;
    while (outFd_ >= 0 && fill(std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()))) {
    }
    return std::exchange(pending_, {});
}

int ChildProcess::reap(int options) {
    int status = 0;
    const pid_t done = waitpid(pid_, &status, options);
    if (done != pid_) return -2;
    pid_ = -1;
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return status_;
}

int ChildProcess::wait(std::chrono::milliseconds timeout) {
    const auto end = Clock::now() + timeout;
    while (pid_ > 0) {
        if (reap(WNOHANG) != -2) break;
        if (Clock::now() >= end) return -1;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return status_;
}

int ChildProcess::stop() {
    if (pid_ <= 0) return status_;
    kill(pid_, SIGTERM);
    if (wait(std::chrono::milliseconds(1000)) == -1 && pid_ > 0) {
        kill(pid_, SIGKILL);
        reap(0);
    }
    return status_;
}

}  // namespace braxcfg::test
