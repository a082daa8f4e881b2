// test RESOURCE [--alias NAME] [--timeout MS]: the TCPIP dialogs' resource
// test without a window. The message box the test would show is printed
// instead: its caption on the first line, its text after it, and the
// probe's status last, so a timeout can be told from a refusal.
#include <chrono>
#include <iostream>

#include "command.h"
#include "tool_json.h"
#include "tcpip/resource_probe.h"
#include "tool_text.h"
#include "ui/testing/message_box_capture.h"
#include "visacore/probe_timeout.h"
#include "visacore/status_text.h"

namespace braxcfg::tool {
namespace {

// "VI_ERROR_TMO (0xBFFF0015): Timeout expired before operation completed."
std::string statusLine(visa::ViStatus status) {
    const visa::StatusText* known = visa::findStatusText(status);
    return std::string(known != nullptr ? known->name : "unknown status") + " (" + visa::statusCodeText(status) +
           "): " + visa::statusDescription(status);
}

int runProbe(const ParsedArgs& split) {
    if (split.operands.size() != 1) return fail("test needs exactly one RESOURCE");
    visa::ProbeControl control;
    if (hasOption(split, "--timeout")) control.timeout = std::chrono::milliseconds(std::stoll(optionValue(split, "--timeout")));

    const ui::MessageBoxCapture boxes;
    visa::ViStatus status = visa::VI_SUCCESS;
    const int found = tcpip::TestResource(nullptr, optionValue(split, "--alias"), split.operands[0], control, &status);
    if (boxes.requests().empty()) return fail("the VISA resource manager could not be opened");
    const ui::MessageBoxRequest& box = boxes.requests().front();
    if (hasOption(split, "--json"))
        printJson({{"resource", jsonText(split.operands[0])},
                   {"found", found == 1},
                   {"caption", jsonText(box.caption)},
                   {"text", jsonText(box.text)},
                   {"status", jsonStatus(status)}});
    else
        std::cout << forStdout(box.caption) << "\n" << forStdout(box.text, "\n") << "\n" << statusLine(status) << "\n";
    return found == 1 ? 0 : 1;
}

const CommandRegistration kTest({"test", "test a LAN resource as the TCPIP dialogs' Test button does",
                                 "usage: braxcfg test RESOURCE [--alias NAME] [--timeout MS] [--json]\n"
                                 "Locates RESOURCE (TCPIP::host[::device][::INSTR] or\n"
                                 "TCPIP::host::port::SOCKET) and prints what the resource test would show:\n"
                                 "the caption on the first line, then the text, then the probe's status:\n"
                                 "its name, code and description (VI_ERROR_TMO (0xBFFF0015): ...).\n"
                                 "Without --timeout it gives up after the product setting\n"
                                 "\"ResourceTestTimeout\", else 3000 milliseconds.\n"
                                 "Exit status 0 when the resource was found, 1 when it was not.\n",
                                 StoreUse::Read, runProbe,
                                 {{"--alias", "NAME", "the resource's alias, named in the text when it is found"},
                                  millisecondsTimeout(), {"--json", nullptr, "print JSON instead of the three parts"}}});

}  // namespace
}  // namespace braxcfg::tool
