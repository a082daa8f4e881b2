#include "visacore/lan/wait.h"

#include <poll.h>

#include <cerrno>

namespace braxcfg::visa::lan {

WaitResult waitFor(int fd, short events, const Deadline& deadline, const CancelToken* cancel) {
    for (;;) {
        if (cancel != nullptr && cancel->cancelled()) return WaitResult::Cancelled;
        pollfd fds[2] = {{fd, events, 0}, {cancel != nullptr ? cancel->fd() : -1, POLLIN, 0}};
        const int count = poll(fds, 2, deadline.pollTimeoutMs());
        if (count < 0) {
            if (errno == EINTR) continue;
            return WaitResult::Failed;
        }
        if (fds[1].revents != 0) return WaitResult::Cancelled;
        if (fds[0].revents != 0) return WaitResult::Ready;
        if (deadline.expired()) return WaitResult::TimedOut;
    }
}

}  // namespace braxcfg::visa::lan
