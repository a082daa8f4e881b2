#pragma once
// Running a second process against the same store file, for the store
// tests that need one (the key and value helpers are in store_access.h).
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "store_access.h"

namespace braxcfg::test {

// Another process: forked while this one has no store open; what the body
// returns comes back as its report.
struct Child {
    pid_t pid = -1;
    int report = -1;
};

inline Child startChild(const std::function<std::string()>& body) {
    int fds[2];
    if (::pipe(fds) != 0) return {};
    const pid_t pid = ::fork();
    if (pid == 0) {
        const std::string report = body();
        const bool sent = ::write(fds[1], report.data(), report.size()) == static_cast<ssize_t>(report.size());
        ::_exit(sent ? 0 : 1);
    }
    ::close(fds[1]);
    return {pid, fds[0]};
}

inline std::string finishChild(const Child& child) {
    std::string report;
    char buffer[256];
    for (ssize_t n; child.report >= 0 && (n = ::read(child.report, buffer, sizeof buffer)) > 0;)
        report.append(buffer, static_cast<std::size_t>(n));
    if (child.report >= 0) ::close(child.report);
    int status = -1;
    if (child.pid <= 0 || ::waitpid(child.pid, &status, 0) != child.pid || !WIFEXITED(status) || WEXITSTATUS(status))
        report += "<child failed>";
    return report;
}

}  // namespace braxcfg::test
