#pragma once
// The HiSLIP sessions a simulator keeps: Initialize on one connection opens
// a session, AsyncInitialize on another names it to join.
#include <cstdint>
#include <map>
#include <mutex>

#include "visacore/lan/sim/lab_instruments.h"

namespace braxcfg::visa::lan::sim {

class HislipSessions {
public:
    std::uint16_t open(const LabInstrument& instrument);
    bool exists(std::uint16_t id);
    void close(std::uint16_t id);

private:
    std::mutex mutex_;
    std::map<std::uint16_t, const LabInstrument*> sessions_;
    std::uint16_t next_ = 1;
};

}  // namespace braxcfg::visa::lan::sim
