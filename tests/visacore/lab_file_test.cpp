// The simulator's reading of a lab file: defaults taken from the resource
// string, its keys, and each refusal naming the file and line.
#include "visacore/lan/sim/lab_instruments.h"

#include <gtest/gtest.h>

namespace braxcfg::visa::lan::sim {
namespace {

// The defaults a resource string gives (VXI-11 and its device name, the
// model field as mDNS name) and the keys the simulator and discovery tests
// write are read back there; here the rest of the format.
TEST(LabFile, KeysAndDefaultsFromTheResourceString) {
    const Lab lab = parseLab("; a lab\n[GPIB0::22::INSTR]\nIdentification = Tolvane,DMM 7,1001,1.2\n"
                             "[TCPIP0::10.0.0.2::hislip1,4881::INSTR]\n"
                             "identification = \"Tolvane,Analyzer 2,2,1\"\r\n"
                             "PROTOCOLS = hislip, socket\n"
                             "# written by hand\n"
                             "SocketPort = 5026\n"
                             "PortmapperPort = 11111\n"
                             "Reply.MEAS:VOLT? = 1.25\n",
                             "lab.ini");
    ASSERT_EQ(lab.error, "");
    ASSERT_EQ(lab.instruments.size(), 1u) << "the GPIB section is the auto-configuration's";
    const LabInstrument& in = lab.instruments[0];
    EXPECT_EQ(std::tie(in.address, in.line, in.vxi11, in.hislip, in.socket, in.hislipSubAddress, in.hislipPort),
              std::make_tuple("10.0.0.2", 4, false, true, true, "hislip1", 4881));
    EXPECT_EQ(std::tie(in.socketPort, in.portmapperPort, in.identification),
              std::make_tuple(5026, 11111, "Tolvane,Analyzer 2,2,1"));
    std::string answer;
    EXPECT_TRUE(answerQuery(in, " meas:volt?", answer) && answer == "1.25");
}

TEST(LabFile, RefusalsNameFileAndLine) {
    const std::string good = "[TCPIP0::127.0.0.1::INSTR]\nIdentification = A,B,C,D\n";
    const struct { std::string text; std::string error; } cases[] = {
        {"Identification = A\n" + good, "lab.ini:1: a line before the first [RESOURCE]"},
        {good + "Protocols = VXI-11 USBTMC\n", "lab.ini:3: unknown protocol \"USBTMC\" (VXI-11, HiSLIP or SOCKET)"},
        {good + "HislipPort = 70000\n", "lab.ini:3: HislipPort needs a port number, not \"70000\""},
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
        const Lab lab = parseLab(c.text, "lab.ini");
        EXPECT_EQ(lab.error, c.error);
        EXPECT_TRUE(lab.instruments.empty()) << "a refused file serves nothing: " << c.text;
    }
}

// A missing file's message is the simulate command's test.
TEST(LabFile, TheExampleServes) {
    EXPECT_EQ(readLab(BRAXCFG_SOURCE_DIR "/examples/lan-lab.ini").instruments.size(), 3u);
}

}  // namespace
}  // namespace braxcfg::visa::lan::sim
