// valid | is-setup | editable | start INTF: the plug-in's answers, through
// its exports, exactly as a host gets them.
#include <iostream>

#include "command.h"
#include "plugin.h"

namespace braxcfg::tool {
namespace {

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
