// interfaces: overview of the store's INTF<n> keys.
// valid | is-setup | editable | start INTF: the plug-in's answers, through
// its exports, exactly as a host gets them.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include "command.h"
#include "interface_keys.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "plugin.h"
#include "store/config_store.h"
#include "tool_json.h"
#include "tool_text.h"
#include "visacore/config/reg_visa_config.h"

namespace braxcfg::tool {
namespace {

void printRowsJson(const std::vector<InterfaceRow>& rows) {
    Json list = Json::array();
    for (const InterfaceRow& row : rows)
        list.push_back({{"key", jsonText(row.key)},
                        {"visaName", jsonText(row.visaName)},
                        {"type", jsonText(row.typeWord)},
                        {"setUp", row.setUp},
                        {"autoConfig", row.hasAutoConfig ? Json(row.autoConfig) : Json(nullptr)},
                        {"devices", row.devices.size()}});
    printJson(list);
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
                  << row.devices.size() << "\n";
    }
    std::cout.flush();
}

int runAdd(const ParsedArgs& split) {
    if (split.operands.size() != 2) return fail("usage: braxcfg interfaces add TYPE [--board N] [--socket]");
    NewInterface request;
    request.type = split.operands[1];
    request.socket = hasOption(split, "--socket");
    if (const std::string board = optionValue(split, "--board"); !board.empty()) {
        char* end = nullptr;
        const long number = std::strtol(board.c_str(), &end, 10);
        if (*end != '\0' || board[0] == '-' || board[0] == '+' || number > INT32_MAX)
            return fail("--board takes a number from 0 to 65535, not '" + board + "'");
        request.board = static_cast<int>(number);
    }
    const AddedInterface added = addInterface(request);
    if (!added.error.empty()) return fail(added.error);
    Plugin plugin;
    auto* setup = plugin.get<void(HWND, const char*)>("setupVisaIntf");
    if (setup == nullptr) return fail("added " + added.key + " but cannot set it up: " + plugin.error());
    setup(nullptr, added.key.c_str());
    std::cout << added.key << "\n";
    return 0;
}

// interfaces add | remove: the store must be writable, unlike for the overview.
int runInterfaceChange(const ParsedArgs& split) {
    const bool adding = split.operands[0] == "add";
    for (const GivenOption& given : split.options)
        if (given.name == "--json" || !adding)
            return fail("option " + given.name + " does not go with 'interfaces " + split.operands[0] + "'");
    if (!platform::currentStoreStatus().writable)
        return fail("the store " + platform::currentStoreStatus().path + " is not writable by this user");
    if (adding) return runAdd(split);
    if (split.operands.size() != 2) return fail("usage: braxcfg interfaces remove INTF");
    if (const auto refused = refuseInterfaceKey(split.operands[1])) return *refused;
    if (const std::string failure = removeInterface(split.operands[1]); !failure.empty()) return fail(failure);
    return 0;
}

int runInterfaces(const ParsedArgs& split) {
    // The overview leaves no trace in the store; a change may make the store.
    const bool changes = !split.operands.empty() && (split.operands[0] == "add" || split.operands[0] == "remove");
    if (const int rc = prepareStore(changes ? StoreUse::Write : StoreUse::ReadOnly); rc != 0) return rc;
    if (changes) return runInterfaceChange(split);
    if (hasOption(split, "--board") || hasOption(split, "--socket"))
        return fail("--board and --socket belong to 'interfaces add'");
    if (!split.operands.empty()) return fail("interfaces takes no operands");
    const auto rows = readInterfaces();
    if (hasOption(split, "--json"))
        printRowsJson(rows);
    else
        printTable(rows);
    return 0;
}

// Calls one export of the loaded plug-in with the interface key name.
int runPredicate(const ParsedArgs& split, const char* exportName, bool printsResult) {
    if (split.operands.size() != 1) return fail(std::string("expected one interface key name, such as INTF0"));
    if (const auto refused = refuseInterfaceKey(split.operands[0])) return *refused;
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

const CommandRegistration kInterfaces({"interfaces", "list, add or remove the store's interfaces",
                                       "usage: braxcfg interfaces [--json]\n"
                                       "       braxcfg interfaces add TYPE [--board N] [--socket]\n"
                                       "       braxcfg interfaces remove INTF\n"
                                       "One line per INTF<n> key, by number: key, VISA name,\n"
                                       "type word, set up or not, \"VISAAutoConfig\" when present, device entries.\n"
                                       "'add' creates the lowest free INTF<n> key for an interface of TYPE (GPIB,\n"
                                       "TCPIP, VXI, GPIB-VXI, ASRL, USB, PXI, RSIB) with board N (default: the lowest\n"
                                       "free one), INSTR resources or with --socket SOCKET ones, sets it up through\n"
                                       "the plug-in (setupVisaIntf) and prints the new key. A VISA name already in\n"
                                       "use is refused. 'remove' deletes the key INTF with everything below it.\n",
                                       StoreUse::None, runInterfaces,
                                       {{"--json", nullptr, "print JSON instead of the table"},
                                        {"--board", "N", "add: the board number (0 to 65535)"},
                                        {"--socket", nullptr, "add: SOCKET resources instead of INSTR"}}});
const CommandRegistration kValid({"valid", "is the interface a valid VISA interface (plug-in export)",
                                  "usage: braxcfg valid INTF\nPrints 1 or 0, as isValidVisaIntf answers.\n",
                                  StoreUse::Read, [](const ParsedArgs& a) { return runPredicate(a, "isValidVisaIntf", true); }});
const CommandRegistration kIsSetup({"is-setup", "has the plug-in set the interface up (plug-in export)",
                                    "usage: braxcfg is-setup INTF\nPrints 1 or 0, as isVisaIntfSetup answers.\n",
                                    StoreUse::Read,
                                    [](const ParsedArgs& a) { return runPredicate(a, "isVisaIntfSetup", true); }});
const CommandRegistration kEditable({"editable", "may the interface's devices be edited (plug-in export)",
                                     "usage: braxcfg editable INTF\nPrints 1 or 0, as isVisaIntfEditable answers.\n",
                                     StoreUse::Read,
                                     [](const ParsedArgs& a) { return runPredicate(a, "isVisaIntfEditable", true); }});
const CommandRegistration kStart({"start", "call doVisaStartStuff for the interface (plug-in export)",
                                  "usage: braxcfg start INTF\nCalls doVisaStartStuff; prints nothing.\n",
                                  StoreUse::Read,
                                  [](const ParsedArgs& a) { return runPredicate(a, "doVisaStartStuff", false); }});

}  // namespace
}  // namespace braxcfg::tool
