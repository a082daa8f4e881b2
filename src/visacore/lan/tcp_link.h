#pragma once
// One TCP connection of a probe: non-blocking socket, every wait bounded by
// the probe's deadline and cancel token. The connection closes with the
// object.
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "visacore/cancel_token.h"
#include "visacore/lan/deadline.h"
#include "visacore/lan/socket_address.h"

namespace braxcfg::visa::lan {

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
