#pragma once
// Programs the integration tests start: each is bounded in time (killed
// with the test process, and by an alarm after a minute at the latest) and
// stopped when its object goes away.
#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace braxcfg::test {

class ChildProcess {
public:
    // Starts argv[0] (an absolute path) with the test's environment plus
    // `extraEnv` ("NAME=value"); its stdout comes to readLine().
    explicit ChildProcess(const std::vector<std::string>& argv, const std::vector<std::string>& extraEnv = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool started() const { return pid_ > 0; }
    // The next line of output, without its line end; false when none came
    // within `timeout` or the output ended.
    bool readLine(std::string& line, std::chrono::milliseconds timeout);
    // Everything up to the end of the output, waiting at most `timeout`.
    std::string readAll(std::chrono::milliseconds timeout);
    // Terminates the program (SIGTERM, then SIGKILL) and returns its exit
    // status, or -1 when it was killed by a signal.
    int stop();
    // Waits for the program to end by itself; -1 when it did not in time.
    int wait(std::chrono::milliseconds timeout);

private:
    bool fill(std::chrono::milliseconds timeout);
    int reap(int options);

    pid_t pid_ = -1;
    int outFd_ = -1;
    int status_ = -1;
    std::string pending_;
};

}  // namespace braxcfg::test
