#include "interface_keys.h"

#include <algorithm>
#include <iostream>

#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "visacore/config/reg_visa_config.h"
#include "visacore/interface_types.h"

namespace braxcfg::tool {
namespace {

using platform::kRegOpenExisting;
using platform::kRegOpenOrCreate;
using platform::Registry;

constexpr int kMaxBoard = 65535;

std::string upperAscii(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c); });
    return text;
}

// The store's spelling of a type word given in any case; empty when unknown.
std::string knownTypeWord(const std::string& given) {
    for (const visa::InterfaceType& type : visa::kInterfaceTypes)
        if (upperAscii(given) == type.word) return std::string(type.word);
    return {};
}

bool interfaceKeyExists(const std::string& intf) { return Registry(intf, kRegOpenExisting).isOpen(); }

// The VISA names of every interface key, upper-cased.
std::vector<std::string> usedVisaNames() {
    std::vector<std::string> names;
    for (const std::string& key : Registry("", kRegOpenExisting).subkeyNames())
        if (isInterfaceKeyName(key)) names.push_back(upperAscii(Registry(key, kRegOpenExisting).getString("VISAName")));
    return names;
}

bool isUsed(const std::vector<std::string>& used, const std::string& visaName) {
    return std::find(used.begin(), used.end(), upperAscii(visaName)) != used.end();
}

}  // namespace

std::vector<InterfaceRow> readInterfaces() {
    const store::ConfigStore store;
    std::vector<InterfaceRow> rows;
    for (const int n : *visa::existingIntfNumbers()) {
        InterfaceRow row;
        row.key = "INTF" + std::to_string(n);
        const Registry key(row.key, kRegOpenExisting);
        if (!key.isOpen()) continue;
        row.visaName = key.getString("VISAName");
        row.typeWord = key.getString("VISAIntfType");
        row.setUp = store.IsVisaIntfSetup(row.key) != 0;
        row.hasAutoConfig = key.valueExists("VISAAutoConfig");
        row.autoConfig = key.getBool("VISAAutoConfig");
        row.devices = store.GetDeviceNames(row.key);
        rows.push_back(row);
    }
    return rows;
}

bool isInterfaceKeyName(const std::string& name) {
    if (name.size() <= 4 || upperAscii(name.substr(0, 4)) != "INTF") return false;
    return std::all_of(name.begin() + 4, name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::optional<int> refuseWithoutDeviceList(const std::string& intf) {
    if (Registry(intf + "\\VISADev", kRegOpenExisting).isOpen()) return std::nullopt;
    std::cerr << "braxcfg: " << intf << " has no device list yet; set it up first: braxcfg setup " << intf << "\n";
    return 2;
}

std::optional<int> refuseInterfaceKey(const std::string& intf) {
    if (!isInterfaceKeyName(intf)) {
        std::cerr << "braxcfg: '" << intf << "' is not an interface key name (INTF0, INTF1, ...)\n";
        return 2;
    }
    if (!interfaceKeyExists(intf)) {
        std::cerr << "braxcfg: there is no interface " << intf << " in " << platform::currentStoreStatus().path
                  << " (braxcfg interfaces lists them)\n";
        return 1;
    }
    return std::nullopt;
}

std::vector<std::string> addableTypeWords() {
    return {"GPIB", "TCPIP", "VXI", "GPIB-VXI", "ASRL", "USB", "PXI", "RSIB"};
}

AddedInterface addInterface(const NewInterface& request) {
    AddedInterface added;
    const std::string type = knownTypeWord(request.type);
    if (type.empty()) {
        added.error = "unknown interface type '" + request.type + "' (GPIB, VXI, GPIB-VXI, ASRL, PXI, TCPIP, USB or RSIB)";
        return added;
    }
    if (request.board && (*request.board < 0 || *request.board > kMaxBoard)) {
        added.error = "the board number must be from 0 to " + std::to_string(kMaxBoard);
        return added;
    }
    if (request.socket && type != "TCPIP") {
        added.error = "only TCPIP interfaces have SOCKET resources";
        return added;
    }
    platform::StoreTransaction transaction;
    if (!transaction.active()) {
        added.error = transaction.failureMessage();
        return added;
    }
    const std::vector<std::string> used = usedVisaNames();
    if (request.board) {
        added.visaName = type + std::to_string(*request.board);
        if (isUsed(used, added.visaName)) {
            added.error = "another interface is already called " + added.visaName + "; nothing was added";
            added.visaName.clear();
            return added;
        }
    } else {
        // Serial ports count from 1, as the machine's own ports do.
        for (int board = type == "ASRL" ? 1 : 0; added.visaName.empty() || isUsed(used, added.visaName); ++board)
            added.visaName = type + std::to_string(board);
    }
    int number = 0;
    while (interfaceKeyExists("INTF" + std::to_string(number))) ++number;
    const std::string key = "INTF" + std::to_string(number);
    {
        const Registry intfKey(key, kRegOpenOrCreate);
        intfKey.setString("VISAName", added.visaName);
        intfKey.setString("VISAIntfType", type);
        intfKey.setString("VISARsrcType", request.socket ? "SOCKET" : "INSTR");
    }
    if (!transaction.commit()) {
        added.error = transaction.failureMessage();
        added.visaName.clear();
        return added;
    }
    added.key = key;
    return added;
}

std::string removeInterface(const std::string& intf) {
    platform::StoreTransaction transaction;
    if (!transaction.active()) return transaction.failureMessage();
    const platform::RegResult deleted = Registry("", kRegOpenExisting).deleteTree(intf);
    if (deleted != platform::kErrorSuccess)
        return "cannot remove " + intf + ": " + platform::storeFailureMessage(platform::storeFailureOf(deleted));
    if (!transaction.commit()) return transaction.failureMessage();
    return {};
}

}  // namespace braxcfg::tool
