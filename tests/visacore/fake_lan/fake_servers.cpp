#include "fake_servers.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

namespace braxcfg::test {
namespace {

constexpr std::uint32_t kLastFragment = 0x80000000u;

int loopbackSocket(std::uint16_t& port, int backlog) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) throw std::runtime_error("socket failed");
    const int one = 1;
    setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(fd, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(fd, backlog) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        close(fd);
        throw std::runtime_error("cannot listen on 127.0.0.1");
    }
    port = ntohs(address.sin_port);
    return fd;
}

void appendWord(std::vector<std::uint8_t>& out, std::uint32_t word) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(word >> shift));
}

std::vector<std::uint8_t> bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

std::vector<std::uint8_t> hislipHeader(std::uint8_t type, std::uint8_t control, std::uint32_t parameter) {
    std::vector<std::uint8_t> header{'H', 'S', type, control};
    appendWord(header, parameter);
    appendWord(header, 0);
    appendWord(header, 0);
    return header;
}

}  // namespace

bool Peer::waitReadable() {
    pollfd fds[2] = {{fd_, POLLIN, 0}, {stopFd_, POLLIN, 0}};
    while (poll(fds, 2, -1) < 0) {
        if (errno != EINTR) return false;
    }
    return fds[1].revents == 0;
}

bool Peer::read(std::size_t size, std::vector<std::uint8_t>& out) {
    const std::size_t target = out.size() + size;
    while (out.size() < target) {
        if (!waitReadable()) return false;
        std::uint8_t chunk[4096];
        const ssize_t n = recv(fd_, chunk, std::min(sizeof chunk, target - out.size()), 0);
        if (n <= 0) return false;
        out.insert(out.end(), chunk, chunk + n);
    }
    return true;
}

bool Peer::readRecord(std::vector<std::uint8_t>& record) {
    record.clear();
    for (;;) {
        std::vector<std::uint8_t> mark;
        if (!read(4, mark)) return false;
        const std::uint32_t word = wordAt(mark, 0);
        if (!read(word & ~kLastFragment, record)) return false;
        if ((word & kLastFragment) != 0) return true;
    }
}

void Peer::write(const std::vector<std::uint8_t>& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t n = send(fd_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n <= 0) return;
        sent += static_cast<std::size_t>(n);
    }
}

void Peer::waitForStop() {
    while (waitReadable()) {
        std::uint8_t chunk[256];
        if (recv(fd_, chunk, sizeof chunk, 0) <= 0) {
            // The client left; stay until the server stops, as a hung host would.
            pollfd stop{stopFd_, POLLIN, 0};
            poll(&stop, 1, -1);
            return;
        }
    }
}

std::size_t Peer::drain() {
    std::size_t total = 0;
    while (waitReadable()) {
        std::uint8_t chunk[256];
        const ssize_t n = recv(fd_, chunk, sizeof chunk, 0);
        if (n <= 0) break;
        total += static_cast<std::size_t>(n);
    }
    return total;
}

FakeServer::FakeServer(Handler handler) : handler_(std::move(handler)) {
    listenFd_ = loopbackSocket(port_, SOMAXCONN);
    stopFd_ = eventfd(0, EFD_CLOEXEC);
    acceptor_ = std::thread([this] { acceptLoop(); });
}

FakeServer::~FakeServer() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(stopFd_, &one, sizeof one);
    acceptor_.join();
    for (Worker& worker : workers_) worker.thread.join();
    close(listenFd_);
    close(stopFd_);
}

void FakeServer::acceptLoop() {
    for (;;) {
        pollfd fds[2] = {{listenFd_, POLLIN, 0}, {stopFd_, POLLIN, 0}};
        if (poll(fds, 2, -1) < 0 && errno != EINTR) return;
        if (fds[1].revents != 0) return;
        if (fds[0].revents == 0) continue;
        const int fd = accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd < 0) continue;
        ++accepted_;
        joinFinishedWorkers();
        auto done = std::make_shared<std::atomic<bool>>(false);
        workers_.push_back({std::thread([this, fd, done] {
                                Peer peer(fd, stopFd_);
                                handler_(peer);
                                close(fd);
                                done->store(true);
                            }),
                            done});
    }
}

void FakeServer::joinFinishedWorkers() {
    for (auto it = workers_.begin(); it != workers_.end();) {
        if (it->done->load()) {
            it->thread.join();
            it = workers_.erase(it);
        } else {
            ++it;
        }
    }
}

SilentListener::SilentListener() {
    listenFd_ = loopbackSocket(port_, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port_);
    // The first connection fills the queue of a zero backlog; the others
    // make sure, whatever the kernel's rounding.
    for (int i = 0; i < 3; ++i) {
        const int fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
        fillers_.push_back(fd);
        if (i == 0) {
            pollfd established{fd, POLLOUT, 0};
            poll(&established, 1, 1000);
        }
    }
}

SilentListener::~SilentListener() {
    for (int fd : fillers_) close(fd);
    close(listenFd_);
}

std::uint16_t closedPort() {
    std::uint16_t port = 0;
    close(loopbackSocket(port, 1));
    return port;
}

std::vector<std::uint8_t> rpcRecord(const std::vector<std::uint32_t>& words) {
    std::vector<std::uint8_t> out;
    appendWord(out, kLastFragment | static_cast<std::uint32_t>(words.size() * 4));
    for (std::uint32_t word : words) appendWord(out, word);
    return out;
}

std::uint32_t wordAt(const std::vector<std::uint8_t>& bytes, std::size_t index) {
    if (bytes.size() < index * 4 + 4) return 0xFFFFFFFFu;
    const std::uint8_t* p = bytes.data() + index * 4;
    return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 | p[3];
}

FakeServer::Handler portmapper(PortmapScript script) {
    return [script](Peer& peer) {
        std::vector<std::uint8_t> call;
        if (!peer.readRecord(call)) return;
        const std::uint32_t xid = wordAt(call, 0);
        using Reply = PortmapScript::Reply;
        switch (script.reply) {
        case Reply::Port: peer.write(rpcRecord({xid, 1, 0, 0, 0, 0, script.port})); break;
        case Reply::ProgramUnavailable: peer.write(rpcRecord({xid, 1, 0, 0, 0, 1})); break;
        case Reply::Denied: peer.write(rpcRecord({xid, 1, 1, 0, 2, 2})); break;
        case Reply::WrongXid: peer.write(rpcRecord({xid + 1, 1, 0, 0, 0, 0, script.port})); break;
        case Reply::Garbage: peer.write(bytesOf("HTTP/1.0 400 Bad Request\r\n\r\n")); break;
        case Reply::Close: break;
        case Reply::Silent: peer.waitForStop(); break;
        }
    };
}

FakeServer::Handler vxi11Core(CoreScript script, std::shared_ptr<CoreRecord> record) {
    return [script, record](Peer& peer) {
        std::vector<std::uint8_t> call;
        while (peer.readRecord(call)) {
            if (script.silent) return peer.waitForStop();
            const std::uint32_t xid = wordAt(call, 0);
            const std::uint32_t procedure = wordAt(call, 5);
            std::vector<std::uint32_t> reply{xid, 1, 0};
            if (script.fragmentedReply) {
                reply.insert(reply.end(), {1, 8, 0xAAAAAAAA, 0xBBBBBBBB});
            } else {
                reply.insert(reply.end(), {0, 0});
            }
            reply.push_back(0);  // accept_stat SUCCESS
            if (procedure == 10) {
                const std::uint32_t length = wordAt(call, 13);
                const std::string device(call.begin() + 56, call.begin() + 56 + std::min<std::size_t>(length, call.size() - 56));
                std::int32_t error = script.unknownError;
                if (const auto it = script.errors.find(device); it != script.errors.end()) error = it->second;
                {
                    std::lock_guard lock(record->mutex);
                    record->devices.push_back(device);
                    record->lockRequested = record->lockRequested || wordAt(call, 11) != 0;
                }
                reply.insert(reply.end(), {static_cast<std::uint32_t>(error), 7, 0, 1024});
            } else if (procedure == 23) {
                std::lock_guard lock(record->mutex);
                ++record->destroyed;
                reply.push_back(0);
            } else {
                reply.back() = 3;  // PROC_UNAVAIL
            }
            std::vector<std::uint8_t> bytes = rpcRecord(reply);
            if (script.fragmentedReply) {
                // Split after the first 12 bytes of the body into two fragments.
                const std::uint32_t body = static_cast<std::uint32_t>(bytes.size() - 4);
                std::vector<std::uint8_t> split;
                appendWord(split, 12);
                split.insert(split.end(), bytes.begin() + 4, bytes.begin() + 16);
                appendWord(split, kLastFragment | (body - 12));
                split.insert(split.end(), bytes.begin() + 16, bytes.end());
                bytes = std::move(split);
            }
            peer.write(bytes);
        }
    };
}

FakeServer::Handler hislipServer(HislipScript script, std::shared_ptr<HislipRecord> record) {
    return [script, record](Peer& peer) {
        std::vector<std::uint8_t> header;
        if (!peer.read(16, header)) return;
        const std::uint64_t length = std::uint64_t{wordAt(header, 2)} << 32 | wordAt(header, 3);
        std::vector<std::uint8_t> payload;
        if (length > 4096 || !peer.read(static_cast<std::size_t>(length), payload)) return;
        {
            std::lock_guard lock(record->mutex);
            record->subAddresses.emplace_back(payload.begin(), payload.end());
            if (record->firstHeader.empty()) record->firstHeader = header;
        }
        using Reply = HislipScript::Reply;
        switch (script.reply) {
        case Reply::InitializeResponse: peer.write(hislipHeader(1, 0, 0x01000001)); break;
        case Reply::FatalError: peer.write(hislipHeader(2, script.fatalCode, 0)); break;
        case Reply::Close: break;
        case Reply::Garbage: peer.write(bytesOf("220 service ready\r\n")); break;
        case Reply::OtherMessage: peer.write(hislipHeader(7, 0, 0)); break;
        case Reply::Silent: peer.waitForStop(); break;
        }
    };
}

FakeServer::Handler rawListener(std::shared_ptr<std::atomic<std::size_t>> bytesReceived) {
    return [bytesReceived](Peer& peer) { *bytesReceived += peer.drain(); };
}

}  // namespace braxcfg::test
