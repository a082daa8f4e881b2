// The probe and the tool against Debian's rpcbind and a VXI-11 server built
// on rpcgen's XDR code, inside the private network namespace.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <thread>

#include "child_process.h"
#include "temp_store.h"
#include "visacore/visa_api.h"

namespace braxcfg::test {
namespace {

using namespace std::chrono_literals;
using visa::ViStatus;

constexpr const char* kRpcbind = "/usr/sbin/rpcbind";
constexpr const char* kRpcinfo = "/usr/sbin/rpcinfo";
constexpr const char* kDeviceCoreProgram = "395183";  // 0x0607AF

bool portAnswers(std::uint16_t port) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    const bool ok = connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(fd);
    return ok;
}

class RealRpcTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(std::filesystem::exists(kRpcbind)) << "install the Debian package rpcbind";
        setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1);
        visa::reselectVisaLibrary();
        rpcbind_ = std::make_unique<ChildProcess>(std::vector<std::string>{kRpcbind, "-f"});
        for (int i = 0; i < 300 && !portAnswers(111); ++i) std::this_thread::sleep_for(10ms);
        ASSERT_TRUE(portAnswers(111)) << "rpcbind did not start";
        server_ = std::make_unique<ChildProcess>(std::vector<std::string>{VXI11_SERVER_PATH});
        std::string port;
        ASSERT_TRUE(server_->readLine(port, 5s)) << "the VXI-11 test server did not register";
    }

    static ViStatus probe(const std::string& resource) {
        visa::ViSession rm = visa::VI_NULL;
        EXPECT_EQ(visa::viOpenDefaultRM(&rm), visa::VI_SUCCESS);
        const ViStatus status =
            visa::viProbeRsrc(rm, visa::kResourceProbeSelector, resource.c_str(), visa::ProbeControl{1500ms});
        visa::viClose(rm);
        return status;
    }

    // The calls the server logged since the last look.
    std::vector<std::string> serverCalls() {
        std::vector<std::string> calls;
        std::string line;
        while (server_->readLine(line, 200ms)) calls.push_back(line);
        return calls;
    }

    std::unique_ptr<ChildProcess> rpcbind_;
    std::unique_ptr<ChildProcess> server_;
};

TEST_F(RealRpcTest, DeviceNamesOnARegisteredServer) {
    struct Case {
        const char* resource;
        ViStatus expected;
        std::vector<std::string> calls;
    };
    const Case cases[] = {
        {"TCPIP0::127.0.0.1::inst0::INSTR", visa::VI_SUCCESS, {"create_link inst0", "destroy_link 1"}},
        {"TCPIP::localhost::INSTR", visa::VI_SUCCESS, {"create_link inst0", "destroy_link 2"}},
        {"TCPIP0::127.0.0.1::gpib0,2::INSTR", visa::VI_SUCCESS, {"create_link gpib0,2", "destroy_link 3"}},
        {"TCPIP0::127.0.0.1::inst9::INSTR", visa::VI_ERROR_RSRC_NFOUND, {"create_link inst9"}},
        {"TCPIP0::127.0.0.1::gpib0,5::INSTR", visa::VI_ERROR_RSRC_NFOUND, {"create_link gpib0,5"}},
        {"TCPIP0::127.0.0.1::locked0::INSTR", visa::VI_ERROR_RSRC_LOCKED, {"create_link locked0"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.resource);
        EXPECT_EQ(probe(c.resource), c.expected);
        EXPECT_EQ(serverCalls(), c.calls);
    }
}

TEST_F(RealRpcTest, HostLocatedWhenTheProgramIsGone) {
    // Registration withdrawn: the portmapper answers port 0.
    ChildProcess unregister({kRpcinfo, "-d", kDeviceCoreProgram, "1"});
    ASSERT_EQ(unregister.wait(5s), 0);
    EXPECT_EQ(probe("TCPIP0::127.0.0.1::inst0::INSTR"), visa::VI_ERROR_RSRC_NFOUND);
    EXPECT_TRUE(serverCalls().empty());
}

TEST_F(RealRpcTest, HostLocatedWhenTheServerDied) {
    // Still registered, but the port refuses.
    server_->stop();
    EXPECT_EQ(probe("TCPIP0::127.0.0.1::inst0::INSTR"), visa::VI_ERROR_RSRC_NFOUND);
    rpcbind_->stop();
    EXPECT_EQ(probe("TCPIP0::127.0.0.1::inst0::INSTR"), visa::VI_ERROR_RSRC_NFOUND) << "no portmapper at all";
}

TEST_F(RealRpcTest, UnknownAndUnreachableHosts) {
    // The namespace has no route anywhere: the name server cannot be asked
    // and other networks cannot be reached, both at once.
    for (const char* resource : {"TCPIP0::nohost.invalid::inst0::INSTR", "TCPIP0::192.0.2.1::inst0::INSTR"}) {
        SCOPED_TRACE(resource);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(probe(resource), visa::VI_ERROR_MACHINE_NAVAIL);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 1500ms);
    }
}

TEST_F(RealRpcTest, ToolPrintsTheThreeOutcomes) {
    const std::string store = testOutputDir("integration") + "/tool-store-" + std::to_string(getpid()) + ".db";
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string output;
    };
    const Case cases[] = {
        {{"TCPIP0::127.0.0.1::inst0::INSTR", "--alias", "scope1"},
         0,
         "Resource Found\nThe resource 'scope1' was found.\n\n(TCPIP0::127.0.0.1::inst0::INSTR)\n"},
        {{"TCPIP0::127.0.0.1::inst9::INSTR", "--alias", "scope1"},
         1,
         "Host Located But Resource Not Found\nThe resource 'TCPIP0::127.0.0.1::inst9::INSTR' was not found.\n"},
        {{"TCPIP0::nohost.invalid::inst0::INSTR", "--timeout", "1000"},
         1,
         "Resource Not Found\nThe resource 'TCPIP0::nohost.invalid::inst0::INSTR' was not found.\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args[0]);
        std::vector<std::string> argv{BRAXCFG_TOOL_PATH, "--store", store, "test"};
        argv.insert(argv.end(), c.args.begin(), c.args.end());
        ChildProcess tool(argv, {"BRAXCFG_VISA_LIBRARY=builtin"});
        EXPECT_EQ(tool.readAll(5s), c.output);
        EXPECT_EQ(tool.wait(5s), c.exitCode);
    }
    for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(store + suffix);
}

}  // namespace
}  // namespace braxcfg::test
