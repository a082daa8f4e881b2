#pragma once
// What the simulator serves at one address: the instruments there, by the
// way a client names them on each protocol, and the ports it bound.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "visacore/lan/onc_rpc.h"
#include "visacore/lan/sim/lab_instruments.h"

namespace braxcfg::visa::lan::sim {

// Names compare without regard to case, as clients write them either way.
struct NoCase {
    bool operator()(const std::string& a, const std::string& b) const;
};

struct Site {
    std::string address;  // numeric, as bound
    bool ipv6 = false;
    std::uint16_t portmapperPort = 0;  // 0: no portmapper here
    std::uint16_t corePort = 0;        // 0: no VXI-11 here
    std::map<std::string, const LabInstrument*, NoCase> devices;  // VXI-11 device names
    // HiSLIP port -> sub-address -> instrument.
    std::map<std::uint16_t, std::map<std::string, const LabInstrument*, NoCase>> hislip;
    std::map<std::uint16_t, const LabInstrument*> sockets;
    std::vector<const LabInstrument*> instruments;  // every instrument here, once
};

// One accepted connection, read with blocking calls; reads fail at the end
// of the stream and when the simulator stops (it shuts the socket down).
struct Stream {
    int fd;
    bool read(std::size_t size, std::vector<std::uint8_t>& out) const;  // appends exactly `size` bytes
    bool readRecord(std::vector<std::uint8_t>& record) const;          // one RPC record, fragments joined
    bool write(const std::vector<std::uint8_t>& bytes) const;
};

// The protocol servers, one connection each; they return when the peer
// leaves or the stream fails.
void servePortmapper(const Stream& stream, const Site& site);
// The portmapper's reply record to one call, over TCP or (without its
// mark) UDP.
std::vector<std::uint8_t> portmapperAnswer(const rpc::Call& call, const Site& site);
void serveCore(const Stream& stream, const Site& site);
void serveSocket(const Stream& stream, const LabInstrument& instrument);

// HiSLIP sessions span two connections, so the server keeps them.
class HislipSessions;  // see hislip_service.h
void serveHislip(const Stream& stream, const std::map<std::string, const LabInstrument*, NoCase>& subAddresses,
                 HislipSessions& sessions);

// The answer the simulated instrument gives to a command, with its line
// end; empty when the command has none (a setting, or an unknown query).
std::string respond(const LabInstrument& instrument, std::string_view command);

}  // namespace braxcfg::visa::lan::sim
