// A lab file is whatever a user wrote: the simulator's reader must refuse
// or accept it without crashing, and an accepted one must be servable
// (every instrument with an identification and a protocol).
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "visacore/lan/sim/lab_instruments.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace braxcfg::visa::lan::sim;
    const Lab lab = parseLab(std::string_view(reinterpret_cast<const char*>(data), size), "fuzz.ini");
    for (const LabInstrument& instrument : lab.instruments) {
        if (instrument.identification.empty() || !(instrument.vxi11 || instrument.hislip || instrument.socket))
            __builtin_trap();
        std::string answer;
        answerQuery(instrument, "*IDN?", answer);
    }
    if (!lab.error.empty() && !lab.instruments.empty()) __builtin_trap();
    return 0;
}
