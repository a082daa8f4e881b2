#include "dialogs/address_rules.h"

namespace braxcfg::dialogs {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Past the end the text reads as its terminator, which is neither a digit
// nor a colon.
char at(std::string_view text, std::size_t i) { return i < text.size() ? text[i] : '\0'; }

// The colon-pair walk: every colon must start a "::" that is not followed
// by a third colon. The character after a pair is known not to be a colon
// and is skipped.
const char* checkColonPairs(std::string_view address) {
    std::size_t i = 0;
    while (i < address.size()) {
        if (address[i] != ':') {
            ++i;
            continue;
        }
        if (at(address, i + 1) != ':') return kAddressSingleColon;
        if (at(address, i + 2) == ':') return kAddressTripleColon;
        i += 3;
    }
    return nullptr;
}

const char* firstFailingRule(std::string_view address) {
    if (address.find_first_not_of("0123456789:") != std::string_view::npos) return kAddressBadCharacter;
    if (address.empty()) return kAddressEmpty;
    if (address[0] == '0' && address.size() > 1 && isDigit(address[1])) return kAddressLeadingZero;
    // Only the first ":0" counts, and anything at all after its "0" fails,
    // a colon too: "24::0:" is refused for a leading zero.
    const std::size_t zero = address.find(":0");
    if (zero != std::string_view::npos && address.size() > zero + 2) return kAddressLeadingZero;
    if (!isDigit(address.back())) return kAddressNoFinalNumber;
    return checkColonPairs(address);
}

}  // namespace

std::optional<std::string> checkDeviceAddress(std::string_view address) {
    if (const char* message = firstFailingRule(address)) return std::string(message);
    return std::nullopt;
}

}  // namespace braxcfg::dialogs
