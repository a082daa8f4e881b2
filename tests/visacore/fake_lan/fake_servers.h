#pragma once
// Scripted TCP servers on 127.0.0.1 for the LAN probe's tests and
// benchmarks: each listens on an ephemeral port and serves every accepted
// connection with a handler on its own thread. Everything stops and is
// joined when the server object goes away.
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace braxcfg::test {

// One accepted connection, as a handler sees it. Reads give up when the
// server is stopping, so no handler outlives its server.
class Peer {
public:
    Peer(int fd, int stopFd) : fd_(fd), stopFd_(stopFd) {}
    // Exactly `size` more bytes; false on end of stream or stop.
    bool read(std::size_t size, std::vector<std::uint8_t>& out);
    // One RPC record (fragments joined, marks removed).
    bool readRecord(std::vector<std::uint8_t>& record);
    void write(const std::vector<std::uint8_t>& bytes);
    // Keeps the connection open and silent until the server stops.
    void waitForStop();
    // Bytes that arrive before the peer closes or the server stops.
    std::size_t drain();

private:
    bool waitReadable();
    int fd_;
    int stopFd_;
};

class FakeServer {
public:
    using Handler = std::function<void(Peer&)>;
    explicit FakeServer(Handler handler);
    ~FakeServer();
    FakeServer(const FakeServer&) = delete;
    FakeServer& operator=(const FakeServer&) = delete;

    std::uint16_t port() const { return port_; }
    int accepted() const { return accepted_.load(); }

private:
    void acceptLoop();
    // Joins the workers whose connection has ended (a benchmark makes
    // thousands of connections).
    void joinFinishedWorkers();

    struct Worker {
        std::thread thread;
        std::shared_ptr<std::atomic<bool>> done;
    };

    Handler handler_;
    int listenFd_ = -1;
    int stopFd_ = -1;
    std::uint16_t port_ = 0;
    std::atomic<int> accepted_{0};
    std::thread acceptor_;
    std::vector<Worker> workers_;
};

// A port that accepts no connection attempt at all: its accept queue is
// full, so further SYNs are dropped and a connect hangs as with a host that
// has gone silent.
class SilentListener {
public:
    SilentListener();
    ~SilentListener();
    SilentListener(const SilentListener&) = delete;
    SilentListener& operator=(const SilentListener&) = delete;
    std::uint16_t port() const { return port_; }

private:
    int listenFd_ = -1;
    std::vector<int> fillers_;
    std::uint16_t port_ = 0;
};

// A loopback port with nothing listening: connects are refused.
std::uint16_t closedPort();

// Big-endian words as an RPC record with one last fragment.
std::vector<std::uint8_t> rpcRecord(const std::vector<std::uint32_t>& words);
std::uint32_t wordAt(const std::vector<std::uint8_t>& bytes, std::size_t index);

// What the portmapper answers a GETPORT call with.
struct PortmapScript {
    enum class Reply { Port, ProgramUnavailable, Denied, WrongXid, Garbage, Close, Silent };
    Reply reply = Reply::Port;
    std::uint16_t port = 0;
};
FakeServer::Handler portmapper(PortmapScript script);

// A VXI-11 core channel: create_link answers the error listed for the
// device name (0 for a name not listed, unless `unknownError` says
// otherwise); the record notes each name asked for and each destroy_link.
struct CoreRecord {
    std::mutex mutex;
    std::vector<std::string> devices;
    int destroyed = 0;
    bool lockRequested = false;
};
struct CoreScript {
    std::map<std::string, std::int32_t> errors;
    std::int32_t unknownError = 0;
    bool silent = false;
    bool fragmentedReply = false;  // the reply in two fragments, with a non-empty verifier
};
FakeServer::Handler vxi11Core(CoreScript script, std::shared_ptr<CoreRecord> record);

// A HiSLIP server's answer to Initialize; the record keeps the sub-address.
struct HislipScript {
    enum class Reply { InitializeResponse, FatalError, Close, Garbage, OtherMessage, Silent };
    Reply reply = Reply::InitializeResponse;
    std::uint8_t fatalCode = 0;
};
struct HislipRecord {
    std::mutex mutex;
    std::vector<std::string> subAddresses;
    std::vector<std::uint8_t> firstHeader;
};
FakeServer::Handler hislipServer(HislipScript script, std::shared_ptr<HislipRecord> record);

// A raw socket server that only counts what it is sent.
FakeServer::Handler rawListener(std::shared_ptr<std::atomic<std::size_t>> bytesReceived);

}  // namespace braxcfg::test
