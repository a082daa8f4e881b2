#include "x_session.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace braxcfg::test {
namespace {

bool onPath(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

}  // namespace

XSession::XSession() {
    for (const char* program : {"Xvfb", "xdotool"}) {
        if (!onPath(program)) {
            reason_ = std::string(program) + " is not installed (Debian packages xvfb and xdotool)";
            return;
        }
    }
    int fds[2];
    if (pipe(fds) != 0) {
        reason_ = "no pipe for Xvfb's display number";
        return;
    }
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);  // the server dies with the test
        close(fds[0]);
        dup2(fds[1], 3);
        // Without -noreset the server resets whenever its last client leaves
        // (an xdotool call) and refuses connections meanwhile.
        execlp("Xvfb", "Xvfb", "-displayfd", "3", "-noreset", "-screen", "0", "1024x768x24", "-nolisten", "tcp",
               nullptr);
        _exit(127);
    }
    close(fds[1]);
    // The server writes the number and its newline separately and gives up
    // when the pipe is gone before the newline, so read up to the newline.
    std::string number;
    for (char c = 0; pid_ > 0 && read(fds[0], &c, 1) == 1 && c != '\n';) number += c;
    close(fds[0]);
    if (!number.empty()) display_ = ":" + number;
    if (display_.empty()) reason_ = "Xvfb did not start";
}

XSession::~XSession() {
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
    }
}

std::string XSession::xdotool(const std::string& args) const {
    const std::string command = "DISPLAY=" + display_ + " xdotool " + args + " 2>/dev/null";
    FILE* pipe = popen(command.c_str(), "r");
    std::string out;
    char buffer[256];
    while (pipe && fgets(buffer, sizeof buffer, pipe)) out += buffer;
    if (pipe) pclose(pipe);
    return out;
}

bool XSession::typeInto(const std::string& title, const std::string& keys, const std::function<bool()>& stillWaiting,
                        std::chrono::seconds patience) const {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (std::chrono::steady_clock::now() < deadline && stillWaiting()) {
        const std::string found = xdotool("search --onlyvisible --name '^" + title + "$'");
        if (!found.empty()) {
            xdotool("windowfocus --sync " + found.substr(0, found.find('\n')));
            xdotool("key --delay 50 " + keys);
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

void XSession::waitForAnimatedClick() { std::this_thread::sleep_for(std::chrono::seconds(1)); }

}  // namespace braxcfg::test
