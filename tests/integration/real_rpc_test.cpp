// The probe against Debian's rpcbind and a VXI-11 server built on rpcgen's
// XDR code, and against the real name service, inside the private network
// namespace: what the scripted servers cannot show is that the probe's
// calls read right to an encoder it does not share.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <thread>

#include "child_process.h"
#include "visacore/lan/lan_probe.h"

namespace braxcfg::visa {
namespace {

using test::Child;
using namespace std::chrono_literals;

constexpr const char* kRpcinfo = "/usr/sbin/rpcinfo";

// The system's resolver and the standard portmapper port.
ViStatus probe(const char* resource) { return lan::probeLanResource(resource, {.budget = 1500ms}); }

TEST(RealRpc, ProbeAgreesWithAForeignServer) {
    ASSERT_TRUE(std::filesystem::exists("/usr/sbin/rpcbind")) << "install the Debian package rpcbind";
    Child rpcbind({"/usr/sbin/rpcbind", "-f"});
    const auto portmapperAnswers = [] { return Child({kRpcinfo, "-p"}).wait() == 0; };
    for (int i = 0; i < 300 && !portmapperAnswers(); ++i) std::this_thread::sleep_for(10ms);
    ASSERT_TRUE(portmapperAnswers()) << "rpcbind did not start";
    // It prints its port once registered, then a line per call.
    Child server({VXI11_SERVER_PATH});
    ASSERT_FALSE(server.output(5s, true).empty()) << "the VXI-11 test server did not register";
    // By name: the system's resolver, and the device name left to its default.
    EXPECT_EQ(probe("TCPIP::localhost::INSTR"), VI_SUCCESS);
    EXPECT_EQ(server.output(200ms), "create_link inst0\ndestroy_link 1\n");
    EXPECT_EQ(probe("TCPIP0::127.0.0.1::inst9::INSTR"), VI_ERROR_RSRC_NFOUND);
    EXPECT_EQ(server.output(200ms), "create_link inst9\n");
    // Registration withdrawn: the portmapper answers port 0.
    EXPECT_EQ(Child({kRpcinfo, "-d", "395183", "1"}).wait(), 0);  // the device core program
    EXPECT_EQ(probe("TCPIP0::127.0.0.1::inst0::INSTR"), VI_ERROR_RSRC_NFOUND);
    EXPECT_EQ(server.output(200ms), "");
}

TEST(RealRpc, UnknownAndUnreachableHosts) {
    // The namespace has no route anywhere: the name server cannot be asked
    // and other networks cannot be reached.
    EXPECT_EQ(probe("TCPIP0::nohost.invalid::inst0::INSTR"), VI_ERROR_MACHINE_NAVAIL);
    EXPECT_EQ(probe("TCPIP0::192.0.2.1::inst0::INSTR"), VI_ERROR_MACHINE_NAVAIL);
}

}  // namespace
}  // namespace braxcfg::visa
