#pragma once
// One TCP connection of a probe: non-blocking socket, every wait bounded by
// the probe's deadline and cancel token. The connection closes with the
// object. The deadline and the bounded wait are here too: every socket wait
// of a probe (name look-up included) is one of these.
#include <algorithm>
#include <chrono>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "visacore/cancel_token.h"
#include "visacore/lan/socket_address.h"

namespace braxcfg::visa::lan {

// One overall time budget shared by every step of a probe: each wait gets
// what is left, so the sum of the steps can never exceed the budget.
class Deadline {
public:
    using Clock = std::chrono::steady_clock;

    explicit Deadline(std::chrono::milliseconds budget) : end_(Clock::now() + budget) {}

    bool expired() const { return Clock::now() >= end_; }

    // Milliseconds left for poll(), rounded up so a wait never wakes early
    // and spins; 0 once the deadline has passed.
    int pollTimeoutMs() const {
        const auto left = end_ - Clock::now();
        if (left <= Clock::duration::zero()) return 0;
        const auto ms = std::chrono::ceil<std::chrono::milliseconds>(left).count();
        return static_cast<int>(std::min<long long>(ms, INT_MAX));
    }

private:
    Clock::time_point end_;
};

enum class WaitResult { Ready, TimedOut, Cancelled, Failed };

// Waits until `fd` reports one of `events` (POLLIN, POLLOUT), the deadline
// passes or `cancel` (may be null) is triggered. Error and hang-up
// conditions count as Ready: the next call on the socket tells which.
WaitResult waitFor(int fd, short events, const Deadline& deadline, const CancelToken* cancel);

enum class NetStatus {
    Ok,
    Refused,      // the host answered the connect with a reset: it is there, the port is not
    Unreachable,  // no route, host down, or any other connect failure
    TimedOut,
    Cancelled,
    Closed,       // the peer ended or reset the connection
    Failed,       // a local socket error
};

class TcpLink {
public:
    TcpLink(const Deadline& deadline, const CancelToken* cancel) : deadline_(deadline), cancel_(cancel) {}
    ~TcpLink();
    TcpLink(const TcpLink&) = delete;
    TcpLink& operator=(const TcpLink&) = delete;

    NetStatus connect(const SocketAddress& address);
    NetStatus sendAll(std::span<const std::uint8_t> bytes);
    // Appends what arrives, at least one byte and at most `limit`, to `buffer`.
    NetStatus receiveSome(std::vector<std::uint8_t>& buffer, std::size_t limit);
    // Reads until `buffer` holds `size` bytes.
    NetStatus receiveUntil(std::vector<std::uint8_t>& buffer, std::size_t size);

private:
    NetStatus waitStatus(short events) const;

    const Deadline& deadline_;
    const CancelToken* cancel_;
    int fd_ = -1;
};

}  // namespace braxcfg::visa::lan
