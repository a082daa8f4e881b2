#pragma once
// Scripted TCP servers on 127.0.0.1 for the LAN probe's tests and benchmark.
// Each listens on an ephemeral port and serves one connection at a time on
// its own thread (the probe never holds two to the same server). Destroying
// a server ends the connection in progress and joins the thread, so a test
// reads a record only after its server is gone.
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

struct Peer;  // one accepted connection

class FakeServer {
public:
    using Handler = std::function<void(Peer&)>;
    explicit FakeServer(Handler handler);
    ~FakeServer();
    std::uint16_t port() const { return port_; }
    int accepted() const { return accepted_; }

private:
    Handler handler_;
    std::uint16_t port_ = 0;
    int listenFd_;
    std::atomic<int> accepted_{0};
    std::mutex mutex_;
    int current_ = -1;  // the connection being served, shut down on stop
    bool stopping_ = false;
    std::thread thread_;
};

// A port whose accept queue is full: further connection attempts are
// dropped, as by a host that has gone silent.
class SilentListener {
public:
    SilentListener();
    ~SilentListener();
    SilentListener(const SilentListener&) = delete;
    SilentListener& operator=(const SilentListener&) = delete;
    std::uint16_t port() const { return port_; }

private:
    std::uint16_t port_ = 0;
    int listenFd_;
    std::vector<int> fillers_;
};

// A loopback port with nothing listening: connects are refused.
std::uint16_t closedPort();

// A portmapper's answer to GETPORT.
struct PortmapScript {
    enum class Reply { Port, ProgramUnavailable, Denied, Close, Silent };
    Reply reply = Reply::Port;
    std::uint16_t port = 0;
};
FakeServer::Handler portmapper(PortmapScript script);

// A VXI-11 core channel: create_link answers the error listed for the
// device name, `unknownError` for names not listed.
struct CoreScript {
    std::map<std::string, std::int32_t> errors{};
    std::int32_t unknownError = 0;
};
struct CoreRecord {
    std::vector<std::string> devices;  // each create_link's device name
    int destroyed = 0;                 // destroy_link calls
};
FakeServer::Handler vxi11Core(CoreScript script, std::shared_ptr<CoreRecord> record);

// A HiSLIP server's answer to Initialize; the record keeps each sub-address.
struct HislipScript {
    enum class Reply { InitializeResponse, FatalError, Close, OtherMessage };
    Reply reply = Reply::InitializeResponse;
    std::uint8_t fatalCode = 0;
};
struct HislipRecord {
    std::vector<std::string> subAddresses;
};
FakeServer::Handler hislipServer(HislipScript script, std::shared_ptr<HislipRecord> record);

// Counts the bytes it is sent and never answers.
FakeServer::Handler rawListener(std::shared_ptr<std::atomic<std::size_t>> bytesReceived);

}  // namespace braxcfg::test
