// The simulator's raw SCPI socket: one answer line per query line.
#include "visacore/lan/sim/sim_site.h"

namespace braxcfg::visa::lan::sim {
namespace {

// A longer line is cut; no client of a simulated instrument sends one.
constexpr std::size_t kMaxLine = 1 << 20;

}  // namespace

void serveSocket(const Stream& stream, const LabInstrument& instrument) {
    std::string line;
    for (std::vector<std::uint8_t> byte; stream.read(1, byte); byte.clear()) {
        if (byte[0] != '\n') {
            if (line.size() < kMaxLine) line += static_cast<char>(byte[0]);
            continue;
        }
        const std::string answer = respond(instrument, line);
        line.clear();
        if (!answer.empty() && !stream.write({answer.begin(), answer.end()})) return;
    }
}

}  // namespace braxcfg::visa::lan::sim
