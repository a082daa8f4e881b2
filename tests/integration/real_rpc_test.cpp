// The probe and the tool against Debian's rpcbind and a VXI-11 server built
// on rpcgen's XDR code, inside the private network namespace.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <thread>

#include "temp_store.h"
#include "tool_run.h"
#include "visacore/visa_api.h"

namespace braxcfg::visa {
namespace {

using namespace std::chrono_literals;

constexpr const char* kRpcbind = "/usr/sbin/rpcbind";
constexpr const char* kRpcinfo = "/usr/sbin/rpcinfo";

// A program the tests start, its stdout on a pipe. It dies with the test
// process, by an alarm after a minute at the latest, or with its object.
class Child {
public:
    explicit Child(std::vector<std::string> argv) {
        std::vector<char*> args;
        for (std::string& arg : argv) args.push_back(arg.data());
        args.push_back(nullptr);  // built before fork: the child may only make async-signal-safe calls
        int fds[2];
        if (pipe2(fds, O_CLOEXEC) != 0) return;
        if ((pid_ = fork()) == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            alarm(60);  // survives exec
            dup2(fds[1], STDOUT_FILENO);
            execv(args[0], args.data());
            _exit(127);
        }
        close(fds[1]);
        out_ = fds[0];
    }
    ~Child() {
        if (pid_ > 0) kill(pid_, SIGTERM);
        wait();
        close(out_);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Output until it ends, a line is complete (with `oneLine`), or none
    // comes for `quiet`.
    std::string output(std::chrono::milliseconds quiet, bool oneLine = false) {
        std::string text;
        pollfd fd{out_, POLLIN, 0};
        for (char c; poll(&fd, 1, static_cast<int>(quiet.count())) > 0 && read(out_, &c, 1) == 1;) {
            text += c;
            if (oneLine && c == '\n') break;
        }
        return text;
    }
    // The exit code once the program has ended; -1 when a signal ended it.
    int wait() {
        int status = 0;
        const bool reaped = pid_ > 0 && waitpid(pid_, &status, 0) == pid_;
        pid_ = -1;
        return reaped && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t pid_ = -1;
    int out_ = -1;
};

ViStatus probe(const char* resource) {
    ViSession rm = VI_NULL;
    EXPECT_EQ(viOpenDefaultRM(&rm), VI_SUCCESS);
    const ViStatus status = viProbeRsrc(rm, kResourceProbeSelector, resource, ProbeControl{1500ms});
    viClose(rm);
    return status;
}

class RealRpcTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(std::filesystem::exists(kRpcbind)) << "install the Debian package rpcbind";
        rpcbind_ = std::make_unique<Child>(std::vector<std::string>{kRpcbind, "-f"});
        const auto portmapperAnswers = [] { return Child({kRpcinfo, "-p"}).wait() == 0; };
        for (int i = 0; i < 300 && !portmapperAnswers(); ++i) std::this_thread::sleep_for(10ms);
        ASSERT_TRUE(portmapperAnswers()) << "rpcbind did not start";
        // It prints its port once registered, then a line per call.
        server_ = std::make_unique<Child>(std::vector<std::string>{VXI11_SERVER_PATH});
        ASSERT_FALSE(server_->output(5s, true).empty()) << "the VXI-11 test server did not register";
    }
    std::string serverCalls() { return server_->output(200ms); }

    std::unique_ptr<Child> rpcbind_, server_;
};

TEST_F(RealRpcTest, DeviceNamesOnARegisteredServer) {
    const struct { const char* resource; ViStatus expected; const char* calls; } cases[] = {
        {"TCPIP0::127.0.0.1::inst0::INSTR", VI_SUCCESS, "create_link inst0\ndestroy_link 1\n"},
        {"TCPIP::localhost::INSTR", VI_SUCCESS, "create_link inst0\ndestroy_link 2\n"},
        {"TCPIP0::127.0.0.1::gpib0,2::INSTR", VI_SUCCESS, "create_link gpib0,2\ndestroy_link 3\n"},
        {"TCPIP0::127.0.0.1::inst9::INSTR", VI_ERROR_RSRC_NFOUND, "create_link inst9\n"},
        {"TCPIP0::127.0.0.1::gpib0,5::INSTR", VI_ERROR_RSRC_NFOUND, "create_link gpib0,5\n"},
        {"TCPIP0::127.0.0.1::locked0::INSTR", VI_ERROR_RSRC_LOCKED, "create_link locked0\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.resource);
        EXPECT_EQ(probe(c.resource), c.expected);
        EXPECT_EQ(serverCalls(), c.calls);
    }
}

TEST_F(RealRpcTest, HostLocatedWithoutTheProgram) {
    // Registration withdrawn: the portmapper answers port 0.
    EXPECT_EQ(Child({kRpcinfo, "-d", "395183", "1"}).wait(), 0);  // the device core program
    EXPECT_EQ(probe("TCPIP0::127.0.0.1::inst0::INSTR"), VI_ERROR_RSRC_NFOUND);
    EXPECT_EQ(serverCalls(), "");
    // Still registered, but the server is gone and its port refuses.
    server_.reset();
    EXPECT_EQ(probe("TCPIP0::127.0.0.1::inst0::INSTR"), VI_ERROR_RSRC_NFOUND);
    rpcbind_.reset();
    EXPECT_EQ(probe("TCPIP0::127.0.0.1::inst0::INSTR"), VI_ERROR_RSRC_NFOUND) << "no portmapper at all";
}

TEST_F(RealRpcTest, UnknownAndUnreachableHosts) {
    // The namespace has no route anywhere: the name server cannot be asked
    // and other networks cannot be reached.
    for (const char* resource : {"TCPIP0::nohost.invalid::inst0::INSTR", "TCPIP0::192.0.2.1::inst0::INSTR"}) {
        SCOPED_TRACE(resource);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(probe(resource), VI_ERROR_MACHINE_NAVAIL);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 1500ms);
    }
}

TEST_F(RealRpcTest, ToolPrintsTheThreeOutcomes) {
    const test::ScratchStoreFiles store(test::testOutputDir("integration") + "/tool-store-" +
                                        std::to_string(getpid()) + ".db");
    const struct { std::vector<std::string> args; int exitCode; const char* output; } cases[] = {
        {{"TCPIP0::127.0.0.1::inst0::INSTR", "--alias", "scope1"}, 0,
         "Resource Found\nThe resource 'scope1' was found.\n\n(TCPIP0::127.0.0.1::inst0::INSTR)\n"
         "VI_SUCCESS (0x00000000): Operation completed successfully.\n"},
        {{"TCPIP0::127.0.0.1::inst9::INSTR", "--alias", "scope1"}, 1,
         "Host Located But Resource Not Found\nThe resource 'TCPIP0::127.0.0.1::inst9::INSTR' was not found.\n"
         "VI_ERROR_RSRC_NFOUND (0xBFFF0011): Insufficient location information or the requested device or "
         "resource is not present in the system.\n"},
        {{"TCPIP0::nohost.invalid::inst0::INSTR", "--timeout", "1000"}, 1,
         "Resource Not Found\nThe resource 'TCPIP0::nohost.invalid::inst0::INSTR' was not found.\n"
         "VI_ERROR_MACHINE_NAVAIL (0xBFFF00A7): The remote machine does not exist or is not accepting any "
         "connections.\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args[0]);
        std::vector<std::string> args{"--store", store.path(), "test"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const test::ToolRun tool = test::runTool(args);
        EXPECT_EQ(tool.out, c.output);
        EXPECT_EQ(tool.exitCode, c.exitCode);
    }
}

}  // namespace
}  // namespace braxcfg::visa
