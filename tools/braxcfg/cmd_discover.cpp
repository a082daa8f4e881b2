// discover [--timeout S] [--json] [--add INTF]: finds LAN instruments by
// VXI-11 broadcast and mDNS at once and asks each for its identification.
#include <unistd.h>

#include <cmath>
#include <iostream>

#include "command.h"
#include "tool_json.h"
#include "lan_device_entries.h"
#include "visacore/status_text.h"
#include "visacore/lan/lan_discovery.h"

namespace braxcfg::tool {
namespace {

using visa::ViStatus;
using visa::lan::DiscoveredInstrument;

constexpr double kMaxTimeoutSeconds = 60;

bool parseSeconds(const std::string& text, std::chrono::milliseconds& out) {
    if (text.empty() || text.find_first_not_of("0123456789.") != std::string::npos || text.size() > 8) return false;
    char* end = nullptr;
    const double seconds = std::strtod(text.c_str(), &end);
    if (end != text.c_str() + text.size() || !(seconds > 0) || seconds > kMaxTimeoutSeconds) return false;
    out = std::chrono::milliseconds(static_cast<long long>(std::ceil(seconds * 1000)));
    return true;
}

std::vector<std::string> methodNames(unsigned methods) {
    std::vector<std::string> names;
    if ((methods & visa::lan::kFoundByVxi11Broadcast) != 0) names.push_back("vxi11-broadcast");
    if ((methods & visa::lan::kFoundByMdns) != 0) names.push_back("mdns");
    return names;
}

// Instruments may answer in any encoding: printJson turns bytes that are
// not UTF-8 into U+FFFD rather than making the output invalid.
void printInstrumentsJson(const std::vector<DiscoveredInstrument>& instruments) {
    Json list = Json::array();
    for (const DiscoveredInstrument& instrument : instruments) {
        Json entry{{"address", instrument.address},
                   {"methods", methodNames(instrument.methods)},
                   {"resources", instrument.resources}};
        if (!instrument.name.empty()) entry["name"] = instrument.name;
        if (instrument.identifyStatus == visa::VI_SUCCESS)
            entry["identification"] = instrument.identification;
        else if (instrument.identifyStatus != visa::VI_ERROR_NSUP_OPER)
            entry["identifyStatus"] = visa::statusCodeText(instrument.identifyStatus);
        list.push_back(std::move(entry));
    }
    printJson(list);
}

void printText(const std::vector<DiscoveredInstrument>& instruments) {
    for (const DiscoveredInstrument& instrument : instruments) {
        std::string methods;
        for (const std::string& name : methodNames(instrument.methods)) methods += (methods.empty() ? "" : ", ") + name;
        std::cout << instrument.address << "  (" << methods << ")";
        if (!instrument.name.empty()) std::cout << "  \"" << instrument.name << "\"";
        std::cout << "\n";
        if (instrument.identifyStatus == visa::VI_SUCCESS)
            std::cout << "  identification: " << instrument.identification << "\n";
        else if (instrument.identifyStatus != visa::VI_ERROR_NSUP_OPER)
            std::cout << "  identification: none (" << visa::statusCodeText(instrument.identifyStatus) << ")\n";
        for (const std::string& resource : instrument.resources) std::cout << "  " << resource << "\n";
    }
    if (instruments.empty()) std::cout << "no LAN instrument answered\n";
}

int runDiscover(const ParsedArgs& split) {
    if (!split.operands.empty()) return fail("discover takes no operand");
    visa::lan::DiscoveryOptions options;
    if (hasOption(split, "--timeout") && !parseSeconds(optionValue(split, "--timeout"), options.timeout))
        return fail("--timeout takes seconds, more than 0 and at most 60 (2, 0.5)");
    const bool json = hasOption(split, "--json");
    const bool progress = isatty(STDERR_FILENO) != 0;
    std::size_t found = 0;
    if (progress) {
        std::cerr << "searching the LAN..." << std::flush;
        options.onFound = [&found](const DiscoveredInstrument& instrument) {
            ++found;
            std::cerr << "\r\033[Ksearching the LAN... " << found << " answer(s), last from " << instrument.address
                      << std::flush;
        };
    }
    const std::vector<DiscoveredInstrument> instruments = visa::lan::discoverLanInstruments(options);
    if (progress) std::cerr << "\r\033[K" << std::flush;
    if (json)
        printInstrumentsJson(instruments);
    else
        printText(instruments);
    if (!hasOption(split, "--add")) return 0;
    std::vector<std::string> resources;
    for (const DiscoveredInstrument& instrument : instruments)
        resources.insert(resources.end(), instrument.resources.begin(), instrument.resources.end());
    // The listing went to stdout already; the entries' report must not spoil JSON.
    return addLanDeviceEntries(optionValue(split, "--add"), resources, json ? std::cerr : std::cout);
}

const CommandRegistration kDiscover({"discover", "find LAN instruments (VXI-11 broadcast and mDNS)",
                                     "usage: braxcfg discover [--timeout S] [--json] [--add INTF]\n"
                                     "Sends a VXI-11 portmapper broadcast on every up IPv4 interface and\n"
                                     "mDNS queries for _vxi-11._tcp, _hislip._tcp, _scpi-raw._tcp and\n"
                                     "_lxi._tcp (IPv4 and IPv6) at once, collects answers for S seconds\n"
                                     "(default 2), then asks each instrument for its identification.\n"
                                     "Each instrument is listed once with the methods that found it and\n"
                                     "the resource strings it offers.\n",
                                     StoreUse::None, runDiscover,
                                     {{"--timeout", "S", "how long to collect answers (up to 60 seconds)"},
                                      {"--json", nullptr, "print a JSON array instead of text"},
                                      {"--add", "INTF",
                                       "add every resource found as a device entry of the TCPIP interface INTF "
                                       "(renumbered to its board), in one go"}}});

}  // namespace
}  // namespace braxcfg::tool
