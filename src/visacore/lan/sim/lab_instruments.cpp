#include "visacore/lan/sim/lab_instruments.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "platform/profile_reader.h"
#include "visacore/lan/lan_resource.h"
#include "visacore/lan/dns_message.h"

namespace braxcfg::visa::lan::sim {
namespace {

constexpr std::string_view kReplyPrefix = "Reply.";

using dns::sameName;

std::vector<std::string> words(std::string_view text, bool commas) {
    std::vector<std::string> out;
    std::string current;
    for (char c : text) {
        if (c == ' ' || c == '\t' || (commas && c == ',')) {
            if (!current.empty()) out.push_back(std::move(current));
            current.clear();
        } else {
            current += c;
        }
    }
    if (!current.empty()) out.push_back(std::move(current));
    return out;
}

bool parsePort(std::string_view text, bool zeroAllowed, std::uint16_t& port) {
    if (text.empty() || text.size() > 5 || text.find_first_not_of("0123456789") != std::string_view::npos) return false;
    const unsigned long value = std::stoul(std::string(text));
    if (value > 65535 || (value == 0 && !zeroAllowed)) return false;
    port = static_cast<std::uint16_t>(value);
    return true;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

// The model field of "Maker,Model,Serial,Version", else the whole text.
std::string modelOf(const std::string& identification) {
    const auto first = identification.find(',');
    if (first == std::string::npos) return identification;
    const auto second = identification.find(',', first + 1);
    return std::string(trimmed(identification.substr(first + 1, second - first - 1)));
}

class SectionReader {
public:
    SectionReader(const std::string& file, LabInstrument& instrument) : file_(file), instrument_(instrument) {}

    // The error for `line`, or empty.
    std::string read(const platform::ProfileEntry& entry) {
        const std::string& key = entry.key;
        const std::string& value = entry.value;
        if (!entry.hasEquals) return at(entry.line, "expected NAME = VALUE");
        if (sameName(key, "Identification")) {
            instrument_.identification = value;
        } else if (sameName(key, "Protocols")) {
            instrument_.vxi11 = instrument_.hislip = instrument_.socket = false;
            for (const std::string& word : words(value, true)) {
                if (sameName(word, "VXI-11") || sameName(word, "VXI11")) instrument_.vxi11 = true;
                else if (sameName(word, "HiSLIP")) instrument_.hislip = true;
                else if (sameName(word, "SOCKET")) instrument_.socket = true;
                else return at(entry.line, "unknown protocol \"" + word + "\" (VXI-11, HiSLIP or SOCKET)");
            }
        } else if (sameName(key, "DeviceNames")) {
            instrument_.deviceNames = words(value, false);
        } else if (sameName(key, "CorePort")) {
            if (!parsePort(value, true, instrument_.corePort)) return badPort(entry);
        } else if (sameName(key, "PortmapperPort")) {
            if (!parsePort(value, false, instrument_.portmapperPort)) return badPort(entry);
        } else if (sameName(key, "HislipPort")) {
            if (!parsePort(value, false, instrument_.hislipPort)) return badPort(entry);
        } else if (sameName(key, "SocketPort")) {
            if (!parsePort(value, false, instrument_.socketPort)) return badPort(entry);
        } else if (sameName(key, "MdnsName")) {
            instrument_.mdnsName = value;
        } else if (key.size() > kReplyPrefix.size() && sameName(key.substr(0, kReplyPrefix.size()), kReplyPrefix)) {
            instrument_.replies.emplace_back(key.substr(kReplyPrefix.size()), value);
        }
        // Other keys are for other readers of the lab (the auto-configuration).
        return {};
    }

    std::string at(int line, const std::string& reason) const { return file_ + ":" + std::to_string(line) + ": " + reason; }

private:
    std::string badPort(const platform::ProfileEntry& entry) const {
        return at(entry.line, entry.key + " needs a port number, not \"" + entry.value + "\"");
    }

    const std::string& file_;
    LabInstrument& instrument_;
};

// The profile rules know only ";" comments; lab files also use "#".
bool isComment(const platform::ProfileEntry& entry) { return entry.key.starts_with('#'); }

// Defaults that come from the resource string itself.
void takeResourceDefaults(const LanResource& resource, LabInstrument& instrument) {
    instrument.address = resource.host;
    instrument.deviceNames = {"inst0"};
    switch (resource.protocol) {
    case LanProtocol::Vxi11:
        instrument.vxi11 = true;
        if (!sameName(resource.deviceName, "inst0")) instrument.deviceNames.push_back(resource.deviceName);
        break;
    case LanProtocol::Hislip:
        instrument.hislip = true;
        instrument.hislipSubAddress = resource.deviceName;
        instrument.hislipPort = resource.port;
        break;
    case LanProtocol::Socket:
        instrument.socket = true;
        instrument.socketPort = resource.port;
        break;
    }
}

}  // namespace

Lab parseLab(std::string_view text, const std::string& name) {
    Lab lab;
    std::vector<std::string> seen;
    for (const platform::ProfileSection& section : platform::listProfileSections(text)) {
        const auto fail = [&](int line, const std::string& reason) {
            return Lab{{}, name + ":" + std::to_string(line) + ": " + reason};
        };
        if (section.line == 0) {
            for (const platform::ProfileEntry& entry : section.entries)
                if (!isComment(entry)) return fail(entry.line, "a line before the first [RESOURCE]");
            continue;
        }
        for (const std::string& earlier : seen)
            if (sameName(earlier, section.name)) return fail(section.line, "[" + section.name + "] appears twice");
        seen.push_back(section.name);

        LanResource resource;
        const ViStatus parsed = parseLanResource(section.name, resource);
        if (parsed == VI_ERROR_NSUP_OPER) continue;  // another interface's instrument
        if (parsed != VI_SUCCESS) return fail(section.line, "\"" + section.name + "\" is not a resource string");

        LabInstrument instrument;
        instrument.resource = section.name;
        instrument.line = section.line;
        takeResourceDefaults(resource, instrument);
        SectionReader reader(name, instrument);
        for (const platform::ProfileEntry& entry : section.entries) {
            if (isComment(entry)) continue;
            if (std::string error = reader.read(entry); !error.empty()) return Lab{{}, error};
        }
        if (instrument.identification.empty()) return fail(section.line, "[" + section.name + "] has no Identification");
        if (!instrument.vxi11 && !instrument.hislip && !instrument.socket)
            return fail(section.line, "[" + section.name + "] serves no protocol");
        if (instrument.mdnsName.empty()) instrument.mdnsName = modelOf(instrument.identification);
        lab.instruments.push_back(std::move(instrument));
    }
    return lab;
}

Lab readLab(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return Lab{{}, path + ": cannot read the file"};
    std::ostringstream text;
    text << file.rdbuf();
    return parseLab(text.str(), path);
}

bool answerQuery(const LabInstrument& instrument, std::string_view query, std::string& answer) {
    query = trimmed(query);
    if (sameName(query, "*IDN?")) {
        answer = instrument.identification;
        return true;
    }
    for (const auto& [known, reply] : instrument.replies) {
        if (sameName(trimmed(known), query)) {
            answer = reply;
            return true;
        }
    }
    return false;
}

}  // namespace braxcfg::visa::lan::sim
