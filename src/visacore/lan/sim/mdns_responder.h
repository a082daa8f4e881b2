#pragma once
// The simulator's mDNS answers: for each question about an instrument
// service type, one response per instrument offering it, with the PTR,
// SRV, TXT and address records a one-shot querier needs in one packet.
#include <cstdint>
#include <vector>

#include "visacore/lan/dns_message.h"
#include "visacore/lan/sim/sim_site.h"

namespace braxcfg::visa::lan::sim {

std::vector<std::vector<std::uint8_t>> mdnsResponses(const dns::Message& query, const std::vector<Site>& sites);

}  // namespace braxcfg::visa::lan::sim
