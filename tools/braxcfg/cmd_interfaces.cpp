// interfaces: overview of the store's INTF<n> keys.
// valid | is-setup | editable | start INTF: the plug-in's answers, through
// its exports, exactly as a host gets them.
#include <cstdio>
#include <iostream>
#include <sstream>

#include "command.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "plugin.h"
#include "store/config_store.h"
#include "tool_text.h"
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
    for (const int n : *visa::existingIntfNumbers()) {
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
        std::cout << padded(forStdout(row.key), 8) << " " << padded(forStdout(row.visaName), 12) << " "
                  << padded(forStdout(row.typeWord), 9) << " " << padded(row.setUp ? "set-up" : "not-set-up", 10)
                  << " " << padded(row.hasAutoConfig ? std::to_string(row.autoConfig) : "-", 10) << " "
                  << row.devices << "\n";
    }
    std::cout.flush();
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

// Calls one export of the loaded plug-in with the interface key name.
int runPredicate(const Args& args, const char* exportName, bool printsResult) {
    SplitArgs split;
    std::string error;
    if (!splitArgs(args, {}, {}, split, error)) return fail(error);
    if (split.operands.size() != 1) return fail(std::string("expected one interface key name, such as INTF0"));
    Plugin plugin;
    if (!plugin.loaded()) return fail(plugin.error());
    if (printsResult) {
        auto* fn = plugin.get<int(const char*)>(exportName);
        if (fn == nullptr) return fail(plugin.error());
        std::cout << fn(split.operands[0].c_str()) << "\n";
    } else {
        auto* fn = plugin.get<void(const char*)>(exportName);
        if (fn == nullptr) return fail(plugin.error());
        fn(split.operands[0].c_str());
    }
    return 0;
}

const CommandRegistration kInterfaces({"interfaces", "list the store's interfaces",
                                       "usage: braxcfg interfaces [--json]\n"
                                       "One line per INTF<n> key, by number: key, VISA name,\n"
                                       "type word, set up or not, \"VISAAutoConfig\" when present, device entries.\n",
                                       StoreUse::ReadOnly, runInterfaces});
const CommandRegistration kValid({"valid", "is the interface a valid VISA interface (plug-in export)",
                                  "usage: braxcfg valid INTF\nPrints 1 or 0, as isValidVisaIntf answers.\n",
                                  StoreUse::Read, [](const Args& a) { return runPredicate(a, "isValidVisaIntf", true); }});
const CommandRegistration kIsSetup({"is-setup", "has the plug-in set the interface up (plug-in export)",
                                    "usage: braxcfg is-setup INTF\nPrints 1 or 0, as isVisaIntfSetup answers.\n",
                                    StoreUse::Read,
                                    [](const Args& a) { return runPredicate(a, "isVisaIntfSetup", true); }});
const CommandRegistration kEditable({"editable", "may the interface's devices be edited (plug-in export)",
                                     "usage: braxcfg editable INTF\nPrints 1 or 0, as isVisaIntfEditable answers.\n",
                                     StoreUse::Read,
                                     [](const Args& a) { return runPredicate(a, "isVisaIntfEditable", true); }});
const CommandRegistration kStart({"start", "call doVisaStartStuff for the interface (plug-in export)",
                                  "usage: braxcfg start INTF\nCalls doVisaStartStuff; prints nothing.\n",
                                  StoreUse::Read,
                                  [](const Args& a) { return runPredicate(a, "doVisaStartStuff", false); }});

}  // namespace
}  // namespace braxcfg::tool
