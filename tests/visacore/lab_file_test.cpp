// The simulator's reading of a lab file: defaults taken from the resource
// string, its keys, and each refusal naming the file and line.
#include "visacore/lan/sim/lab_instruments.h"

#include <gtest/gtest.h>

namespace braxcfg::visa::lan::sim {
namespace {

// An instrument on one line: where it is served, how, and as what.
std::string line(const LabInstrument& in) {
    std::string text = in.address + ":" + std::to_string(in.line) + (in.vxi11 ? " vxi11" : "") +
                       (in.hislip ? " hislip" : "") + (in.socket ? " socket" : "") + " devices";
    for (const std::string& name : in.deviceNames) text += " " + name;
    return text + ", " + in.hislipSubAddress + " port " + std::to_string(in.hislipPort) + ", socket " +
           std::to_string(in.socketPort) + ", core " + std::to_string(in.corePort) + ", portmapper " +
           std::to_string(in.portmapperPort) + ", mdns '" + in.mdnsName + "', " + in.identification;
}

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
                             "# written by hand\n"
                             "PortmapperPort = 11111\n"
                             "Reply.MEAS:VOLT? = 1.25\n",
                             "lab.ini");
    ASSERT_EQ(lab.error, "");
    std::vector<std::string> lines;
    for (const LabInstrument& instrument : lab.instruments) lines.push_back(line(instrument));
    // The GPIB section is the auto-configuration's; the model field names the mDNS instance.
    EXPECT_EQ(lines, (std::vector<std::string>{
        "127.0.0.1:5 vxi11 devices inst0 gpib0,5, hislip0 port 4880, socket 5025, core 0, portmapper 0, "
        "mdns 'Scope 4', Tolvane,Scope 4,4004,5.5",
        "10.0.0.2:7 hislip socket devices inst0, hislip1 port 4881, socket 5026, core 0, portmapper 11111, "
        "mdns 'Bench', Tolvane,Analyzer 2,2,1"}));
    // *IDN? and a query without reply are the simulator's identify rows.
    std::string answer;
    EXPECT_TRUE(answerQuery(lab.instruments.at(1), " meas:volt?", answer) && answer == "1.25");
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
