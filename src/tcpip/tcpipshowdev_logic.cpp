#include "tcpip/tcpipshowdev_logic.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <vector>

#include "rsrc/io_parms.h"

namespace braxcfg::tcpip {
namespace {

constexpr int kLastAutomaticAlias = 999;
constexpr std::size_t kKorlAddressSize = 256;  // terminator included

// The text after `from`, or empty when `from` lies beyond the end.
std::string tailFrom(const std::string& text, std::size_t from) {
    return from < text.size() ? text.substr(from) : std::string();
}

}  // namespace

EntryParts splitEntry(const std::string& entry) {
    const std::size_t tab = entry.find('\t');
    if (tab == std::string::npos) return {std::string(), entry};
    return {entry.substr(0, tab), entry.substr(tab + 1)};
}

std::string makeEntry(const std::string& alias, const std::string& resource) { return alias + "\t" + resource; }

ShowDevButtonStates showDevButtonStates(bool busy, bool editable, bool anySelected) {
    ShowDevButtonStates states;
    if (busy) return states;
    states.okEnabled = states.cancelEnabled = true;
    states.addEnabled = editable;
    states.editEnabled = states.testEnabled = states.removeEnabled = editable && anySelected;
    return states;
}

SelectionButtonStates selectionButtonStates(int selectedCount) {
    return {selectedCount == 1, true, selectedCount >= 1};
}

bool findAutomaticAlias(AList& aliases, AliasEntry& entry) {
    for (int n = 1; n <= kLastAutomaticAlias; ++n) {
        entry.setName("TcpipDevice" + std::to_string(n));
        if (aliases.findDuplicate(&entry) == nullptr) return true;
    }
    return false;
}

std::optional<std::string> duplicateDevice(const std::vector<std::string>& entries, const std::string& bareResource) {
    const auto found = std::find(entries.begin(), entries.end(), bareResource);
    if (found == entries.end()) return std::nullopt;
    return *found;
}

std::string duplicateDeviceMessage(const std::string& entry) { return entry + " is a duplicate device name."; }

std::string duplicateAliasMessage(const std::string& alias) { return alias + " is a duplicate alias name."; }

std::optional<std::string> formatKorlAddress(const std::string& korlIntfName, const std::string& rsrcClass,
                                             const std::string& host, const std::string& device) {
    if (korlIntfName.empty()) return std::nullopt;
    char address[kKorlAddressSize];
    if (rsrcClass == "INSTR")
        std::snprintf(address, sizeof address, "%s[%s]:%s", korlIntfName.c_str(), host.c_str(), device.c_str());
    else
        std::snprintf(address, sizeof address, "%s,%s[%s]", korlIntfName.c_str(), device.c_str(), host.c_str());
    return std::string(address);
}

std::optional<std::string> korlAddressOf(const std::string& resource) {
    rsrc::IoParms parms;
    std::vector<char> text(resource.begin(), resource.end());
    text.push_back('\0');
    parms.parse(text.data(), false);
    char korlName[rsrc::IoParms::kIntfNameSize] = {};
    parms.getKorlIntfName(korlName, sizeof korlName);
    const auto element = [](const char* text) { return std::string(text != nullptr ? text : ""); };
    return formatKorlAddress(korlName, element(parms.getRsrcClassStr()), element(parms.getParam(1)),
                             element(parms.getParam(2)));
}

std::optional<ResourceParts> takeApartResource(const std::string& resource) {
    if (resource.size() < 10) return std::nullopt;
    const std::size_t lastColon = resource.rfind(':');
    if (lastColon == std::string::npos) return std::nullopt;
    // Drops "::" and the class.
    const std::string head = resource.substr(0, lastColon == 0 ? 0 : lastColon - 1);
    if (head.size() < 7) return std::nullopt;
    const std::size_t firstColon = head.find(':');
    if (firstColon == std::string::npos) return std::nullopt;
    ResourceParts parts;
    parts.prefix = head.substr(0, firstColon + 2);
    const std::string rest = tailFrom(head, firstColon + 2);
    if (rest.size() < 4) return std::nullopt;
    const std::size_t hostEnd = rest.find(':');
    if (hostEnd == std::string::npos) return std::nullopt;
    parts.host = rest.substr(0, hostEnd);
    parts.device = tailFrom(rest, hostEnd + 2);
    return parts;
}

std::vector<DeviceWrite> planDeviceWrites(const std::vector<std::string>& entries) {
    std::vector<DeviceWrite> writes;
    writes.reserve(entries.size());
    for (const std::string& entry : entries) {
        const EntryParts parts = splitEntry(entry);
        const std::size_t lastColon = std::min(parts.resource.rfind(':'), parts.resource.size());
        writes.push_back({parts.resource.substr(0, lastColon == 0 ? 0 : lastColon - 1),
                          tailFrom(parts.resource, lastColon + 1), parts.alias});
    }
    return writes;
}

AliasEntry* recordEditedAlias(AList& aliases, AliasEntry* remembered, const std::string& newAlias,
                              const std::string& resource) {
    if (remembered == nullptr) {
        if (newAlias.empty()) return nullptr;
        auto* record = new (std::nothrow) AliasEntry(newAlias, resource, std::nullopt);
        if (record == nullptr) return nullptr;
        return aliases.addRecord(record) == 0 ? nullptr : record;
    }
    if (newAlias.empty()) {
        aliases.markDeleted(remembered);
    } else {
        aliases.markChanged(remembered);
        remembered->setName(newAlias);
        remembered->setRsrcString(resource);
    }
    return nullptr;
}

}  // namespace braxcfg::tcpip
