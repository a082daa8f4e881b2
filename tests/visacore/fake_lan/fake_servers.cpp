#include "fake_servers.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

#include "visacore/lan/sim/sim_site.h"

namespace braxcfg::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::uint32_t kLastFragment = 0x80000000u;

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

void put(Bytes& out, std::uint32_t word) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(word >> shift));
}

std::uint32_t wordAt(const Bytes& bytes, std::size_t index) {
    if (bytes.size() < index * 4 + 4) return 0xFFFFFFFFu;
    const std::uint8_t* p = bytes.data() + index * 4;
    return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 | p[3];
}

// The words as one RPC record; with `split`, its first `split` words go in a
// fragment of their own.
Bytes rpcRecord(const std::vector<std::uint32_t>& body, std::size_t split = 0) {
    Bytes out;
    for (std::size_t i = 0; i < body.size(); ++i) {
        if (i == 0 && split > 0) put(out, static_cast<std::uint32_t>(split * 4));
        if (i == split) put(out, kLastFragment | static_cast<std::uint32_t>((body.size() - split) * 4));
        put(out, body[i]);
    }
    return out;
}

Bytes text(std::string_view s) { return {s.begin(), s.end()}; }

Bytes hislipHeader(std::uint8_t type, std::uint8_t control, std::uint32_t parameter) {
    Bytes out{'H', 'S', type, control};
    for (std::uint32_t word : {parameter, 0u, 0u}) put(out, word);
    return out;
}

}  // namespace

// One accepted connection: the simulator's stream, which the scripts
// drive wrongly on purpose. Reads fail at the end of the stream or when the
// server stops.
struct Peer : visa::lan::sim::Stream {
    // One RPC record, fragments joined; small ones only.
    bool readSmallRecord(Bytes& record) const { return readRecord(record) && record.size() <= 4096; }
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
        Bytes call;
        if (!peer.readSmallRecord(call)) return;
        const std::uint32_t xid = wordAt(call, 0);
        switch (script.reply) {
        case PortmapScript::Reply::Port: return peer.send(rpcRecord({xid, 1, 0, 0, 0, 0, script.port}));
        case PortmapScript::Reply::ProgramUnavailable: return peer.send(rpcRecord({xid, 1, 0, 0, 0, 1}));
        case PortmapScript::Reply::Denied: return peer.send(rpcRecord({xid, 1, 1, 0, 2, 2}));
        case PortmapScript::Reply::WrongXid: return peer.send(rpcRecord({xid + 1, 1, 0, 0, 0, 0, script.port}));
        case PortmapScript::Reply::Garbage: return peer.send(text("HTTP/1.0 400 Bad Request\r\n\r\n"));
        case PortmapScript::Reply::Close: return;
        case PortmapScript::Reply::Silent: peer.drain();
        }
    };
}

FakeServer::Handler vxi11Core(CoreScript script, std::shared_ptr<CoreRecord> record) {
    return [script, record](Peer& peer) {
        for (Bytes call; peer.readSmallRecord(call);) {
            if (script.silent) {
                peer.drain();
                return;
            }
            // Accepted, SUCCESS; the verifier either empty or eight bytes.
            std::vector<std::uint32_t> reply{wordAt(call, 0), 1, 0, 0, 0, 0};
            if (script.fragmentedReply) reply = {wordAt(call, 0), 1, 0, 1, 8, 0xAAAAAAAA, 0xBBBBBBBB, 0};
            if (const std::uint32_t procedure = wordAt(call, 5); procedure == 10) {  // create_link
                const std::size_t length = std::min<std::size_t>(wordAt(call, 13), call.size() - 56);
                const std::string device(call.begin() + 56, call.begin() + 56 + static_cast<std::ptrdiff_t>(length));
                const auto listed = script.errors.find(device);
                const std::int32_t error = listed != script.errors.end() ? listed->second : script.unknownError;
                record->devices.push_back(device);
                record->lockRequested = record->lockRequested || wordAt(call, 11) != 0;
                reply.insert(reply.end(), {static_cast<std::uint32_t>(error), 7, 0, 1024});
            } else if (procedure == 23) {  // destroy_link
                ++record->destroyed;
                reply.push_back(0);
            } else {
                reply.back() = 3;  // PROC_UNAVAIL
            }
            peer.send(rpcRecord(reply, script.fragmentedReply ? 3 : 0));
        }
    };
}

FakeServer::Handler hislipServer(HislipScript script, std::shared_ptr<HislipRecord> record) {
    return [script, record](Peer& peer) {
        Bytes header, payload;
        if (!peer.read(16, header) || wordAt(header, 2) != 0 || wordAt(header, 3) > 4096 ||
            !peer.read(wordAt(header, 3), payload))
            return;
        record->subAddresses.emplace_back(payload.begin(), payload.end());
        switch (script.reply) {
        case HislipScript::Reply::InitializeResponse: return peer.send(hislipHeader(1, 0, 0x01000001));
        case HislipScript::Reply::FatalError: return peer.send(hislipHeader(2, script.fatalCode, 0));
        case HislipScript::Reply::Close: return;
        case HislipScript::Reply::Garbage: return peer.send(text("220 service ready\r\n"));
        case HislipScript::Reply::OtherMessage: return peer.send(hislipHeader(7, 0, 0));
        case HislipScript::Reply::Silent: peer.drain();
        }
    };
}

FakeServer::Handler rawListener(std::shared_ptr<std::atomic<std::size_t>> bytesReceived) {
    return [bytesReceived](Peer& peer) { *bytesReceived += peer.drain(); };
}

}  // namespace braxcfg::test
