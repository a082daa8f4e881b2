// interfaces: overview of the store's INTF<n> keys.
#include <cstdio>
#include <iostream>
#include <sstream>

#include "command.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "visacore/config/reg_visa_config.h"

namespace braxcfg::tool {
namespace {

struct InterfaceRow {
    std::string key;
    std::string visaName;
    std::string typeWord;
    bool setUp = false;
    bool hasAutoConfig = false;
    int autoConfig = 0;
    std::uint32_t devices = 0;
};

std::vector<InterfaceRow> readInterfaces() {
    const store::ConfigStore store;
    std::vector<InterfaceRow> rows;
    for (const int n : visa::existingIntfNumbers()) {
        InterfaceRow row;
        row.key = "INTF" + std::to_string(n);
        const platform::Registry key(row.key, platform::kRegOpenExisting);
        if (!key.isOpen()) continue;
        row.visaName = key.getString("VISAName");
        row.typeWord = key.getString("VISAIntfType");
        row.setUp = store.IsVisaIntfSetup(row.key) != 0;
        row.hasAutoConfig = key.valueExists("VISAAutoConfig");
        row.autoConfig = key.getBool("VISAAutoConfig");
        while (!store.GetDeviceName(row.key, row.devices).empty()) ++row.devices;
        rows.push_back(row);
    }
    return rows;
}

std::string jsonString(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out += escaped;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

void printJson(const std::vector<InterfaceRow>& rows) {
    std::cout << "[";
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const InterfaceRow& row = rows[i];
        std::cout << (i ? ",\n " : "\n ") << "{\"key\": " << jsonString(row.key)
                  << ", \"visaName\": " << jsonString(row.visaName) << ", \"type\": " << jsonString(row.typeWord)
                  << ", \"setUp\": " << (row.setUp ? "true" : "false") << ", \"autoConfig\": "
                  << (row.hasAutoConfig ? std::to_string(row.autoConfig) : "null") << ", \"devices\": " << row.devices
                  << "}";
    }
    std::cout << (rows.empty() ? "]\n" : "\n]\n");
}

void printTable(const std::vector<InterfaceRow>& rows) {
    if (rows.empty()) {
        std::cout << "No interfaces in " << platform::currentStoreStatus().path
                  << ". Import a configuration with: braxcfg import FILE.reg\n";
        return;
    }
    std::printf("%-8s %-12s %-9s %-10s %-10s %s\n", "KEY", "VISANAME", "TYPE", "SETUP", "AUTOCONFIG", "DEVICES");
    for (const InterfaceRow& row : rows) {
        std::printf("%-8s %-12s %-9s %-10s %-10s %u\n", row.key.c_str(), row.visaName.c_str(), row.typeWord.c_str(),
                    row.setUp ? "set-up" : "not-set-up",
                    row.hasAutoConfig ? std::to_string(row.autoConfig).c_str() : "-", row.devices);
    }
}

int runInterfaces(const Args& args) {
    SplitArgs split;
    std::string error;
    if (!splitArgs(args, {"--json"}, {}, split, error)) return fail(error);
    if (!split.operands.empty()) return fail("interfaces takes no operands");
    const auto rows = readInterfaces();
    if (hasOption(split, "--json"))
        printJson(rows);
    else
        printTable(rows);
    return 0;
}

const CommandRegistration kInterfaces({"interfaces", "list the store's interfaces",
                                       "usage: braxcfg interfaces [--json]\n"
                                       "One line per INTF<n> key, by number: key, VISA name,\n"
                                       "type word, set up or not, \"VISAAutoConfig\" when present, device entries.\n",
                                       StoreUse::Read, runInterfaces});
}  // namespace
}  // namespace braxcfg::tool
