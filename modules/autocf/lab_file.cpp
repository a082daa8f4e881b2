#include "lab_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <sstream>

namespace braxcfg::lab {
namespace {

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

bool equalsIgnoreCase(const std::string& a, const std::string& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::toupper(static_cast<unsigned char>(x)) == std::toupper(static_cast<unsigned char>(y));
           });
}

constexpr std::array<const char*, 6> kResourceClasses = {"INSTR", "SOCKET", "INTFC", "MEMACC", "BACKPLANE", "SERVANT"};

}  // namespace

LabFile parseLabText(const std::string& text) {
    LabFile lab;
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        const std::string content = trimmed(line);
        if (content.empty() || content[0] == ';' || content[0] == '#') continue;
        if (content.front() == '[') {
            if (content.back() != ']' || content.size() < 3) {
                lab = {{}, "line " + std::to_string(number) + ": a section name needs [RESOURCE]"};
                return lab;
            }
            lab.instruments.push_back({trimmed(content.substr(1, content.size() - 2)), {}, {}});
            continue;
        }
        const auto equals = content.find('=');
        if (equals == std::string::npos || lab.instruments.empty()) {
            lab = {{}, "line " + std::to_string(number) + ": expected [RESOURCE] or NAME = VALUE"};
            return lab;
        }
        LabInstrument& instrument = lab.instruments.back();
        const std::string name = trimmed(content.substr(0, equals));
        const std::string value = trimmed(content.substr(equals + 1));
        if (equalsIgnoreCase(name, "Identification")) instrument.identification = value;
        instrument.values.emplace_back(name, value);
    }
    return lab;
}

LabFile readLabFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return {{}, "cannot read " + path};
    std::ostringstream text;
    text << file.rdbuf();
    return parseLabText(text.str());
}

std::string deviceNameOf(const std::string& resource) {
    const auto last = resource.rfind("::");
    if (last == std::string::npos) return resource;
    const std::string tail = resource.substr(last + 2);
    for (const char* resourceClass : kResourceClasses)
        if (equalsIgnoreCase(tail, resourceClass)) return resource.substr(0, last);
    return resource;
}

bool isOnInterface(const std::string& resource, const std::string& intfName) {
    const auto separator = resource.find("::");
    return separator != std::string::npos && equalsIgnoreCase(resource.substr(0, separator), intfName);
}

}  // namespace braxcfg::lab
