#pragma once
// The LAN instruments of a lab file, as the simulator serves them. A lab
// file is a profile (INI) file with one section per instrument, named by its
// resource string; sections of other interfaces (GPIB0::22::INSTR) belong to
// the auto-configuration and are skipped here. Keys of a TCPIP section:
//
//   Identification = Maker,Model,Serial,Version   the *IDN? answer (required)
//   Protocols      = VXI-11 HiSLIP SOCKET         default: the resource's own
//   DeviceNames    = inst0 gpib0,5                VXI-11 names; default: inst0
//                                                 and the resource's name
//   CorePort       = 0                            VXI-11 core channel; 0: any
//   PortmapperPort = 11111                        used when 111 cannot be bound
//   HislipPort     = 4880                         default: the resource's port
//   SocketPort     = 5025                         default: the resource's port
//   MdnsName       = Scope 4                      default: the model field
//   Reply.<query>  = answer                       a canned answer, e.g.
//                                                 Reply.MEAS:VOLT? = 1.25
//
// Key names ignore case; separators in lists are blanks or commas between
// words ("gpib0,5" stays one word since it has no blank).
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace braxcfg::visa::lan::sim {

struct LabInstrument {
    std::string resource;  // the section name
    int line = 0;          // of the section header
    std::string address;   // the resource's host
    std::string identification;
    bool vxi11 = false;
    bool hislip = false;
    bool socket = false;
    std::vector<std::string> deviceNames;
    std::uint16_t corePort = 0;
    std::uint16_t portmapperPort = 0;  // 0: none given
    std::string hislipSubAddress = "hislip0";
    std::uint16_t hislipPort = 4880;
    std::uint16_t socketPort = 5025;
    std::string mdnsName;
    std::vector<std::pair<std::string, std::string>> replies;  // query, answer
};

struct Lab {
    std::vector<LabInstrument> instruments;  // TCPIP sections, in file order
    std::string error;                       // "FILE:LINE: reason"; empty when the file is good
};

// `name` stands for the file in messages.
Lab parseLab(std::string_view text, const std::string& name);
Lab readLab(const std::string& path);

// The answer to one query ("*IDN?", a canned reply), compared without
// regard to case and blanks around it; false when the instrument has none.
bool answerQuery(const LabInstrument& instrument, std::string_view query, std::string& answer);

}  // namespace braxcfg::visa::lan::sim
