// The simulator's reading of a lab file: defaults taken from the resource
// string, every key, and each refusal naming the file and line.
#include "visacore/lan/sim/lab_instruments.h"

#include <gtest/gtest.h>

namespace braxcfg::visa::lan::sim {
namespace {

TEST(LabFile, KeysAndDefaultsFromTheResourceString) {
    const Lab lab = parseLab("; a lab\n# by hand\n"
                             "[GPIB0::22::INSTR]\n"
                             "Identification = Tolvane,DMM 7,1001,1.2\n"
                             "[TCPIP0::127.0.0.1::gpib0,5::INSTR]\n"
                             "Identification = Tolvane,Scope 4,4004,5.5\n"
                             "[TCPIP0::10.0.0.2::hislip1,4881::INSTR]\n"
                             "identification = \"Tolvane,Analyzer 2,2,1\"\r\n"
                             "PROTOCOLS = hislip, socket\n"
                             "SocketPort = 5026\n"
                             "MdnsName = Bench\n"
                             "Reply.MEAS:VOLT? = 1.25\n"
                             "# written by hand\n"
                             "[TCPIP::[::1]::5025::SOCKET]\n"
                             "Identification = Tolvane,Meter,3,1\n"
                             "Protocols = VXI-11 SOCKET\n"
                             "DeviceNames = inst0 inst1\n"
                             "CorePort = 0\n"
                             "PortmapperPort = 11111\n",
                             "lab.ini");
    ASSERT_EQ(lab.error, "");
    ASSERT_EQ(lab.instruments.size(), 3u) << "the GPIB section is the auto-configuration's";
    const LabInstrument& vxi = lab.instruments[0];
    EXPECT_EQ(vxi.address, "127.0.0.1");
    EXPECT_EQ(vxi.line, 5);
    EXPECT_TRUE(vxi.vxi11 && !vxi.hislip && !vxi.socket);
    EXPECT_EQ(vxi.deviceNames, (std::vector<std::string>{"inst0", "gpib0,5"}));
    EXPECT_EQ(vxi.mdnsName, "Scope 4") << "the model field";

    const LabInstrument& hislip = lab.instruments[1];
    EXPECT_EQ(hislip.identification, "Tolvane,Analyzer 2,2,1");
    EXPECT_TRUE(!hislip.vxi11 && hislip.hislip && hislip.socket);
    EXPECT_EQ(hislip.hislipSubAddress, "hislip1");
    EXPECT_EQ(hislip.hislipPort, 4881);
    EXPECT_EQ(hislip.socketPort, 5026);
    EXPECT_EQ(hislip.mdnsName, "Bench");
    std::string answer;
    EXPECT_TRUE(answerQuery(hislip, " meas:volt?", answer));
    EXPECT_EQ(answer, "1.25");
    EXPECT_TRUE(answerQuery(hislip, "*idn?", answer));
    EXPECT_EQ(answer, "Tolvane,Analyzer 2,2,1");
    EXPECT_FALSE(answerQuery(hislip, "*OPC?", answer));

    const LabInstrument& socket = lab.instruments[2];
    EXPECT_EQ(socket.address, "::1");
    EXPECT_TRUE(socket.vxi11 && socket.socket);
    EXPECT_EQ(socket.socketPort, 5025);
    EXPECT_EQ(socket.deviceNames, (std::vector<std::string>{"inst0", "inst1"}));
    EXPECT_EQ(socket.portmapperPort, 11111);
}

TEST(LabFile, RefusalsNameFileAndLine) {
    const std::string good = "[TCPIP0::127.0.0.1::INSTR]\nIdentification = A,B,C,D\n";
    const struct { std::string text; std::string error; } cases[] = {
        {"Identification = A\n" + good, "lab.ini:1: a line before the first [RESOURCE]"},
        {good + "Protocols = VXI-11 USBTMC\n", "lab.ini:3: unknown protocol \"USBTMC\" (VXI-11, HiSLIP or SOCKET)"},
        {good + "HislipPort = 70000\n", "lab.ini:3: HislipPort needs a port number, not \"70000\""},
        {good + "SocketPort = 0\n", "lab.ini:3: SocketPort needs a port number, not \"0\""},
        {good + "CorePort = -1\n", "lab.ini:3: CorePort needs a port number, not \"-1\""},
        {good + "just words\n", "lab.ini:3: expected NAME = VALUE"},
        {good + "\n[tcpip0::127.0.0.1::instr]\nIdentification = x\n",
         "lab.ini:4: [tcpip0::127.0.0.1::instr] appears twice"},
        {"[TCPIP0::no host::INSTR]\nIdentification = x\n",
         "lab.ini:1: \"TCPIP0::no host::INSTR\" is not a resource string"},
        {"\n[TCPIP0::127.0.0.1::INSTR]\nDeviceNames = inst0\n",
         "lab.ini:2: [TCPIP0::127.0.0.1::INSTR] has no Identification"},
        {good + "Protocols =\n", "lab.ini:1: [TCPIP0::127.0.0.1::INSTR] serves no protocol"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const Lab lab = parseLab(c.text, "lab.ini");
        EXPECT_EQ(lab.error, c.error);
        EXPECT_TRUE(lab.instruments.empty()) << "a refused file serves nothing";
    }
}

TEST(LabFile, MissingFileIsAnError) {
    EXPECT_EQ(readLab("/nonexistent/lab.ini").error, "/nonexistent/lab.ini: cannot read the file");
    const Lab example = readLab(BRAXCFG_SOURCE_DIR "/examples/lan-lab.ini");
    EXPECT_EQ(example.error, "");
    EXPECT_EQ(example.instruments.size(), 3u);
}

}  // namespace
}  // namespace braxcfg::visa::lan::sim
