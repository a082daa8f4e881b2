// The probe and the tool against Debian's rpcbind and a VXI-11 server built
// on rpcgen's XDR code, inside the private network namespace.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <thread>

#include "child_process.h"
#include "store_files.h"
#include "temp_store.h"
#include "tool_run.h"
#include "visacore/visa_api.h"

namespace braxcfg::visa {
namespace {

using test::Child;

using namespace std::chrono_literals;

constexpr const char* kRpcbind = "/usr/sbin/rpcbind";
constexpr const char* kRpcinfo = "/usr/sbin/rpcinfo";

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
