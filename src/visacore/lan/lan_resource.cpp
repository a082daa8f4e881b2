#include "visacore/lan/lan_resource.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

namespace braxcfg::visa::lan {
namespace {

// Longest device name or host accepted; longer text is not a resource name
// anyone typed, and keeps the wire messages small.
constexpr std::size_t kMaxPartLength = 255;

bool equalsWord(std::string_view text, std::string_view word) {
    return text.size() == word.size() &&
           std::equal(text.begin(), text.end(), word.begin(), [](char a, char b) {
               return std::toupper(static_cast<unsigned char>(a)) == std::toupper(static_cast<unsigned char>(b));
           });
}

bool startsWithWord(std::string_view text, std::string_view word) {
    return text.size() >= word.size() && equalsWord(text.substr(0, word.size()), word);
}

bool allDigits(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Decimal number without sign, at most `max`.
bool parseNumber(std::string_view text, unsigned long max, unsigned long& value) {
    if (!allDigits(text) || text.size() > 9) return false;
    value = 0;
    for (char c : text) value = value * 10 + static_cast<unsigned long>(c - '0');
    return value <= max;
}

bool parsePort(std::string_view text, std::uint16_t& port) {
    unsigned long value = 0;
    if (!parseNumber(text, 65535, value) || value == 0) return false;
    port = static_cast<std::uint16_t>(value);
    return true;
}

// Splits at "::" outside square brackets, so an IPv6 host ([fe80::1]) or a
// device name with a bracketed part (usb0[1::2::3::0]) stays whole.
// Balanced on purpose, unlike IoParms::splitElements (which reads a name as
// the run time does: "[" reaches to the next "]", a stray "]" is a plain
// character, an unclosed "[" hides the rest): the probe connects to the host
// it reads, so brackets that do not pair or nest refuse the name instead of
// guessing a host.
bool splitPartsBalanced(std::string_view text, std::vector<std::string_view>& parts) {
    int depth = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '[') ++depth;
        if (text[i] == ']' && --depth < 0) return false;
        if (depth == 0 && text[i] == ':' && i + 1 < text.size() && text[i + 1] == ':') {
            parts.push_back(text.substr(start, i - start));
            start = i + 2;
            ++i;
        }
    }
    parts.push_back(text.substr(start));
    return depth == 0;
}

// The interface word and board of the first part ("TCPIP0", "gpib-vxi3").
bool splitInterface(std::string_view part, std::string_view word, unsigned& board) {
    if (!startsWithWord(part, word)) return false;
    const std::string_view digits = part.substr(word.size());
    unsigned long value = 0;
    if (digits.empty()) {
        board = 0;
        return true;
    }
    if (!parseNumber(digits, 65535, value)) return false;
    board = static_cast<unsigned>(value);
    return true;
}

bool isOtherInterface(std::string_view part) {
    static constexpr std::array<std::string_view, 7> kWords = {"GPIB-VXI", "GPIB", "VXI", "ASRL", "PXI", "USB", "RSIB"};
    unsigned board = 0;
    return std::any_of(kWords.begin(), kWords.end(),
                       [&](std::string_view word) { return splitInterface(part, word, board); });
}

bool isHostNameChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '.' || c == '_';
}

// Hex digits, colons, an embedded IPv4 part and a zone ("%eth0").
bool isIpv6Char(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == ':' || c == '.' || c == '%';
}

bool parseHost(std::string_view part, std::string& host) {
    if (part.empty() || part.size() > kMaxPartLength) return false;
    if (part.front() == '[') {
        if (part.size() < 3 || part.back() != ']') return false;
        const std::string_view inner = part.substr(1, part.size() - 2);
        if (!std::all_of(inner.begin(), inner.end(), isIpv6Char)) return false;
        host.assign(inner);
        return true;
    }
    if (!std::all_of(part.begin(), part.end(), isHostNameChar)) return false;
    host.assign(part);
    return true;
}

bool isDeviceNameChar(char c) {
    return c > ' ' && c < 0x7F && c != '"' && c != '\\';
}

// "hislipN" or "hislipN,port"; true with the protocol set when the name is
// a HiSLIP one, false when it is malformed.
bool parseHislipName(std::string_view name, LanResource& out) {
    const std::size_t comma = name.find(',');
    const std::string_view subAddress = name.substr(0, comma);
    if (!allDigits(subAddress.substr(6))) return false;
    out.protocol = LanProtocol::Hislip;
    out.deviceName.assign(subAddress);
    out.port = kHislipDefaultPort;
    return comma == std::string_view::npos || parsePort(name.substr(comma + 1), out.port);
}

bool parseDeviceName(std::string_view name, LanResource& out) {
    if (name.empty() || name.size() > kMaxPartLength || !std::all_of(name.begin(), name.end(), isDeviceNameChar))
        return false;
    if (startsWithWord(name, "hislip")) return parseHislipName(name, out);
    out.protocol = LanProtocol::Vxi11;
    out.deviceName.assign(name);
    return true;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    return text;
}

}  // namespace

ViStatus parseLanResource(std::string_view text, LanResource& out) {
    out = LanResource{};
    std::vector<std::string_view> parts;
    if (!splitPartsBalanced(trimmed(text), parts)) return VI_ERROR_INV_RSRC_NAME;
    if (!splitInterface(parts[0], "TCPIP", out.board))
        return parts.size() >= 2 && isOtherInterface(parts[0]) ? VI_ERROR_NSUP_OPER : VI_ERROR_INV_RSRC_NAME;
    if (parts.size() < 2 || parts.size() > 4 || !parseHost(parts[1], out.host)) return VI_ERROR_INV_RSRC_NAME;

    const std::string_view last = parts.back();
    if (parts.size() > 2 && equalsWord(last, "SOCKET")) {
        out.protocol = LanProtocol::Socket;
        return parts.size() == 4 && parsePort(parts[2], out.port) ? VI_SUCCESS : VI_ERROR_INV_RSRC_NAME;
    }
    // The class may be left out; INSTR is then meant.
    const bool hasClass = parts.size() > 2 && equalsWord(last, "INSTR");
    const std::size_t nameParts = parts.size() - (hasClass ? 1 : 0);
    if (nameParts > 3) return VI_ERROR_INV_RSRC_NAME;
    const std::string_view deviceName = nameParts == 3 ? parts[2] : std::string_view("inst0");
    return parseDeviceName(deviceName, out) ? VI_SUCCESS : VI_ERROR_INV_RSRC_NAME;
}

std::string formatLanResource(const LanResource& resource) {
    const bool ipv6 = resource.host.find(':') != std::string::npos;
    std::string text = "TCPIP" + std::to_string(resource.board) + "::" +
                       (ipv6 ? "[" + resource.host + "]" : resource.host) + "::";
    switch (resource.protocol) {
    case LanProtocol::Socket: return text + std::to_string(resource.port) + "::SOCKET";
    case LanProtocol::Hislip:
        text += resource.deviceName;
        if (resource.port != kHislipDefaultPort) text += "," + std::to_string(resource.port);
        return text + "::INSTR";
    case LanProtocol::Vxi11: break;
    }
    return text + resource.deviceName + "::INSTR";
}

}  // namespace braxcfg::visa::lan
