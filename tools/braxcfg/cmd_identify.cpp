// identify RESOURCE [--timeout MS]: asks a LAN instrument who it is.
#include <iostream>

#include "command.h"
#include "tool_json.h"
#include "visacore/lan/lan_query.h"
#include "visacore/lan/lan_resource.h"
#include "visacore/probe_timeout.h"
#include "visacore/status_text.h"

namespace braxcfg::tool {
namespace {

using visa::ViStatus;
std::string statusLine(ViStatus status) {
    const visa::StatusText* text = visa::findStatusText(status);
    return std::string(text != nullptr ? text->name : "status") + " (" + visa::statusCodeText(status) + "): " +
           visa::statusDescription(status);
}

int runIdentify(const ParsedArgs& split) {
    if (split.operands.size() != 1) return fail("identify needs exactly one RESOURCE");
    const std::string& resource = split.operands[0];
    visa::lan::LanProbeOptions options;
    if (hasOption(split, "--timeout")) options.budget = std::chrono::milliseconds(std::stoll(optionValue(split, "--timeout")));
    visa::lan::LanResource parsed;
    if (const ViStatus status = visa::lan::parseLanResource(resource, parsed); status != visa::VI_SUCCESS)
        return fail("\"" + resource + "\" is not a LAN resource (TCPIP::host[::device][::INSTR] or " +
                    "TCPIP::host::port::SOCKET)");

    std::string answer;
    const ViStatus status = visa::lan::queryLanResource(resource, visa::lan::kIdentificationQuery, options, answer);
    if (hasOption(split, "--json"))
        printJson({{"resource", jsonText(resource)},
                   {"identification", status == visa::VI_SUCCESS ? Json(answer) : Json(nullptr)},
                   {"status", jsonStatus(status)}});
    if (status != visa::VI_SUCCESS) {
        std::cerr << "braxcfg: " << resource << ": " << statusLine(status) << "\n";
        return 1;
    }
    if (!hasOption(split, "--json")) std::cout << answer << "\n";
    return 0;
}

const CommandRegistration kIdentify({"identify", "ask a LAN instrument for its identification (*IDN?)",
                                     "usage: braxcfg identify RESOURCE [--timeout MS] [--json]\n"
                                     "Opens RESOURCE (TCPIP::host[::device][::INSTR] over VXI-11 or HiSLIP,\n"
                                     "or TCPIP::host::port::SOCKET), sends *IDN?, prints the answer and closes.\n"
                                     "Without --timeout it gives up after 3000 milliseconds.\n"
                                     "Exit status 0 when the instrument answered; 1 when it could not be\n"
                                     "reached or did not answer (the status on stderr, as the resource test\n"
                                     "reports it); 2 for a malformed RESOURCE or option.\n",
                                     StoreUse::None, runIdentify,
                                     {millisecondsTimeout(), {"--json", nullptr, "print JSON instead of the answer"}}});

}  // namespace
}  // namespace braxcfg::tool
