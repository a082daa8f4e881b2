#include "visacore/lan/tcp_link.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

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

namespace {

NetStatus connectFailure(int error) {
    return error == ECONNREFUSED ? NetStatus::Refused : NetStatus::Unreachable;
}

NetStatus ioFailure(int error) {
    return error == ECONNRESET || error == EPIPE ? NetStatus::Closed : NetStatus::Failed;
}

}  // namespace

TcpLink::~TcpLink() {
    if (fd_ >= 0) close(fd_);
}

NetStatus TcpLink::waitStatus(short events) const {
    switch (waitFor(fd_, events, deadline_, cancel_)) {
    case WaitResult::Ready: return NetStatus::Ok;
    case WaitResult::TimedOut: return NetStatus::TimedOut;
    case WaitResult::Cancelled: return NetStatus::Cancelled;
    case WaitResult::Failed: break;
    }
    return NetStatus::Failed;
}

NetStatus TcpLink::connect(const SocketAddress& address) {
    if (fd_ >= 0) close(fd_);
    fd_ = socket(address.family(), SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP);
    if (fd_ < 0) return NetStatus::Failed;
    const int one = 1;
    // The probe's messages are single small writes; waiting to coalesce them
    // would only add latency.
    setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    if (::connect(fd_, address.get(), address.length) == 0) return NetStatus::Ok;
    if (errno != EINPROGRESS) return connectFailure(errno);
    if (const NetStatus waited = waitStatus(POLLOUT); waited != NetStatus::Ok) return waited;
    int error = 0;
    socklen_t length = sizeof error;
    if (getsockopt(fd_, SOL_SOCKET, SO_ERROR, &error, &length) != 0) return NetStatus::Failed;
    return error == 0 ? NetStatus::Ok : connectFailure(error);
}

NetStatus TcpLink::sendAll(std::span<const std::uint8_t> bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t n = send(fd_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n > 0) {
            sent += static_cast<std::size_t>(n);
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK) return ioFailure(errno);
        if (const NetStatus waited = waitStatus(POLLOUT); waited != NetStatus::Ok) return waited;
    }
    return NetStatus::Ok;
}

NetStatus TcpLink::receiveSome(std::vector<std::uint8_t>& buffer, std::size_t limit) {
    if (limit == 0) return NetStatus::Ok;
    for (;;) {
        const std::size_t before = buffer.size();
        buffer.resize(before + limit);
        const ssize_t n = recv(fd_, buffer.data() + before, limit, 0);
        buffer.resize(before + (n > 0 ? static_cast<std::size_t>(n) : 0));
        if (n > 0) return NetStatus::Ok;
        if (n == 0) return NetStatus::Closed;
        if (errno == EINTR) continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK) return ioFailure(errno);
        if (const NetStatus waited = waitStatus(POLLIN); waited != NetStatus::Ok) return waited;
    }
}

NetStatus TcpLink::receiveUntil(std::vector<std::uint8_t>& buffer, std::size_t size) {
    while (buffer.size() < size) {
        if (const NetStatus got = receiveSome(buffer, size - buffer.size()); got != NetStatus::Ok) return got;
    }
    return NetStatus::Ok;
}

}  // namespace braxcfg::visa::lan
