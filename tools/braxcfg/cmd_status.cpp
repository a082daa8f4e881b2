// status CODE: the name and standard description of a VISA status.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "command.h"
#include "tool_json.h"
#include "visacore/status_text.h"

namespace braxcfg::tool {
namespace {

// "0xBFFF0011", or a decimal number as a signed (-1073807343) or unsigned
// 32-bit value.
bool parseStatus(const std::string& text, visa::ViStatus& status) {
    if (text.empty()) return false;
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const char* digits = hex ? "0123456789abcdefABCDEF" : "0123456789";
    const std::size_t start = hex ? 2 : (text[0] == '-' ? 1 : 0);
    if (start >= text.size() || text.find_first_not_of(digits, start) != std::string::npos) return false;
    errno = 0;
    char* end = nullptr;
    const long long value = std::strtoll(text.c_str(), &end, hex ? 16 : 10);
    if (errno != 0 || *end != '\0' || value < -2147483648LL || value > 0xFFFFFFFFLL) return false;
    status = static_cast<visa::ViStatus>(static_cast<std::uint32_t>(value));
    return true;
}

int runStatus(const ParsedArgs& args) {
    // A negative code is an operand, not an option, with or without a "--"
    // before it.
    if (args.operands.size() != 1) return fail("status needs exactly one CODE");
    const std::string& code = args.operands[0];
    visa::ViStatus status = 0;
    if (!parseStatus(code, status)) return fail("'" + code + "' is not a status (0xBFFF0011 or -1073807343)");
    if (hasOption(args, "--json")) {
        printJson(jsonStatus(status));
        return 0;
    }
    const visa::StatusText* entry = visa::findStatusText(status);
    char number[16];
    std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(status));
    std::cout << (entry != nullptr ? entry->name : "unknown status") << " (" << number << ")\n"
              << visa::statusDescription(status) << "\n";
    return 0;
}

const CommandRegistration kStatus({"status", "name and description of a VISA status code",
                                   "usage: braxcfg status [--json] CODE\n"
                                   "CODE is hexadecimal with 0x (0xBFFF0011) or decimal, signed or not\n"
                                   "(-1073807343). Prints the status's name and number on the first line and\n"
                                   "its standard description on the second; a code VISA does not define is\n"
                                   "named \"unknown status\" with a generic description.\n",
                                   StoreUse::None, runStatus, {{"--json", nullptr, "print JSON instead of text"}}});

}  // namespace
}  // namespace braxcfg::tool
