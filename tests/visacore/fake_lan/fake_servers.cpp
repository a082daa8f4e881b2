#include "fake_servers.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

#include "visacore/lan/hislip_message.h"
#include "visacore/lan/onc_rpc.h"
#include "visacore/lan/sim/sim_site.h"

namespace braxcfg::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
namespace rpc = visa::lan::rpc;
namespace hislip = visa::lan::hislip;

sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

int listenOnLoopback(std::uint16_t& port, int backlog) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(0);
    socklen_t length = sizeof address;
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(fd, backlog) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("cannot listen on 127.0.0.1");
    port = ntohs(address.sin_port);
    return fd;
}

Bytes words(std::initializer_list<std::uint32_t> list) {
    rpc::XdrWriter out;
    for (std::uint32_t word : list) out.u32(word);
    return out.bytes();
}

}  // namespace

// One accepted connection: the simulator's stream, which the scripts
// drive wrongly on purpose. Reads fail at the end of the stream or when the
// server stops.
struct Peer : visa::lan::sim::Stream {
    // The next RPC call; false at the end of the stream or for a record
    // that is large or no call.
    bool readCall(Bytes& record, rpc::Call& call) const {
        return readRecord(record) && record.size() <= 4096 && rpc::parseCall(record, call);
    }
    void send(const Bytes& bytes) const { write(bytes); }
    // Stays silent until the client leaves or the server stops.
    std::size_t drain() const {
        std::size_t total = 0;
        std::uint8_t chunk[256];
        for (ssize_t n; (n = recv(fd, chunk, sizeof chunk, 0)) > 0;) total += static_cast<std::size_t>(n);
        return total;
    }
};

FakeServer::FakeServer(Handler handler) : handler_(std::move(handler)), listenFd_(listenOnLoopback(port_, SOMAXCONN)) {
    thread_ = std::thread([this] {
        for (;;) {
            const int fd = accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
            if (fd < 0 && (errno == EINTR || errno == ECONNABORTED)) continue;
            if (fd < 0) return;  // shut down
            {
                std::lock_guard lock(mutex_);
                current_ = fd;
                if (stopping_) shutdown(fd, SHUT_RDWR);
            }
            ++accepted_;
            Peer peer{{fd}};
            handler_(peer);
            std::lock_guard lock(mutex_);
            current_ = -1;
            close(fd);
        }
    });
}

FakeServer::~FakeServer() {
    {
        // Shutting the sockets down wakes a blocked accept or recv.
        std::lock_guard lock(mutex_);
        stopping_ = true;
        if (current_ >= 0) shutdown(current_, SHUT_RDWR);
        shutdown(listenFd_, SHUT_RDWR);
    }
    thread_.join();
    close(listenFd_);
}

SilentListener::SilentListener() : listenFd_(listenOnLoopback(port_, 0)) {
    const sockaddr_in address = loopback(port_);
    // The first connection fills the queue of a zero backlog; the others
    // make sure, whatever the kernel's rounding.
    for (int i = 0; i < 3; ++i) {
        const int fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        fillers_.push_back(fd);
        pollfd established{fd, POLLOUT, 0};
        if (i == 0) poll(&established, 1, 1000);
    }
}

SilentListener::~SilentListener() {
    for (int fd : fillers_) close(fd);
    close(listenFd_);
}

std::uint16_t closedPort() {
    std::uint16_t port = 0;
    close(listenOnLoopback(port, 1));
    return port;
}

FakeServer::Handler portmapper(PortmapScript script) {
    return [script](Peer& peer) {
        Bytes record;
        rpc::Call call;
        if (!peer.readCall(record, call)) return;
        switch (script.reply) {
        case PortmapScript::Reply::Port: return peer.send(rpc::acceptedReply(call.xid, 0, words({script.port})));
        case PortmapScript::Reply::ProgramUnavailable:
            return peer.send(rpc::acceptedReply(call.xid, rpc::kProgramUnavailable));
        // Record mark, xid, REPLY, MSG_DENIED, RPC_MISMATCH, versions 2 to 2.
        case PortmapScript::Reply::Denied: return peer.send(words({rpc::kLastFragment | 24, call.xid, 1, 1, 0, 2, 2}));
        case PortmapScript::Reply::Close: return;
        case PortmapScript::Reply::Silent: peer.drain();
        }
    };
}

FakeServer::Handler vxi11Core(CoreScript script, std::shared_ptr<CoreRecord> record) {
    return [script, record](Peer& peer) {
        Bytes bytes;
        for (rpc::Call call; peer.readCall(bytes, call);) {
            if (call.procedure == rpc::kCreateLink) {  // client id, lock, lock timeout, device name
                rpc::XdrReader arguments(call.arguments);
                std::uint32_t skipped = 0;
                std::span<const std::uint8_t> name;
                for (int i = 0; i < 3; ++i) arguments.u32(skipped);
                arguments.opaque(256, name);
                const std::string device(name.begin(), name.end());
                const auto listed = script.errors.find(device);
                const std::int32_t error = listed != script.errors.end() ? listed->second : script.unknownError;
                record->devices.push_back(device);
                peer.send(rpc::acceptedReply(call.xid, 0, words({static_cast<std::uint32_t>(error), 7, 0, 1024})));
            } else if (call.procedure == rpc::kDestroyLink) {
                ++record->destroyed;
                peer.send(rpc::acceptedReply(call.xid, 0, words({0})));
            } else {
                peer.send(rpc::acceptedReply(call.xid, rpc::kProcedureUnavailable));
            }
        }
    };
}

FakeServer::Handler hislipServer(HislipScript script, std::shared_ptr<HislipRecord> record) {
    return [script, record](Peer& peer) {
        Bytes header, payload;
        hislip::Header initialize;
        if (!peer.read(hislip::kHeaderSize, header) || !hislip::parseHeader(header, initialize) ||
            initialize.payloadLength > 4096 || !peer.read(initialize.payloadLength, payload))
            return;
        record->subAddresses.emplace_back(payload.begin(), payload.end());
        switch (script.reply) {
        case HislipScript::Reply::InitializeResponse:
            return peer.send(hislip::message(hislip::kInitializeResponse, 0, 0x01000001));
        case HislipScript::Reply::FatalError:
            return peer.send(hislip::message(hislip::kFatalError, script.fatalCode, 0));
        case HislipScript::Reply::Close: return;
        case HislipScript::Reply::OtherMessage: return peer.send(hislip::message(hislip::kDataEnd, 0, 0));
        }
    };
}

FakeServer::Handler rawListener(std::shared_ptr<std::atomic<std::size_t>> bytesReceived) {
    return [bytesReceived](Peer& peer) { *bytesReceived += peer.drain(); };
}

}  // namespace braxcfg::test
