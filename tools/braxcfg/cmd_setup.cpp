// setup INTF: silent first set-up of an interface (setupVisaIntf).
// end-pass: the end of a configuration pass (doVisaEndStuff).
// Both go through the loaded plug-in with no owner window, as a host calls
// them.
#include "command.h"
#include "interface_keys.h"
#include "plugin.h"

namespace braxcfg::tool {
namespace {

int runSetup(const Args& args) {
    SplitArgs split;
    std::string error;
    if (!splitArgs(args, {}, {}, split, error)) return fail(error);
    if (split.operands.size() != 1) return fail("setup needs one interface key name, such as INTF0");
    if (const auto refused = refuseInterfaceKey(split.operands[0])) return *refused;
    Plugin plugin;
    if (!plugin.loaded()) return fail(plugin.error());
    auto* setup = plugin.get<void(HWND, const char*)>("setupVisaIntf");
    if (setup == nullptr) return fail(plugin.error());
    setup(nullptr, split.operands[0].c_str());
    return 0;
}

int runEndPass(const Args& args) {
    SplitArgs split;
    std::string error;
    if (!splitArgs(args, {}, {}, split, error)) return fail(error);
    if (!split.operands.empty()) return fail("end-pass takes no operands");
    Plugin plugin;
    if (!plugin.loaded()) return fail(plugin.error());
    auto* endPass = plugin.get<void(HWND)>("doVisaEndStuff");
    if (endPass == nullptr) return fail(plugin.error());
    endPass(nullptr);
    return 0;
}

const CommandRegistration kSetup({"setup", "set a new interface up silently (plug-in export)",
                                  "usage: braxcfg setup INTF\n"
                                  "Calls setupVisaIntf: an interface not yet set up is marked set up, with its\n"
                                  "devices identified at run time (serial: as intfcfg.ini says; TCPIP: kept in\n"
                                  "the store). Writes the VISA information block first. Prints nothing.\n",
                                  StoreUse::Write, runSetup});
const CommandRegistration kEndPass({"end-pass", "end a configuration pass (plug-in export)",
                                    "usage: braxcfg end-pass\n"
                                    "Calls doVisaEndStuff: writes the VISA information block, renames every valid\n"
                                    "interface's entries after its VISA name and sets up any interface not yet set\n"
                                    "up. Prints nothing.\n",
                                    StoreUse::Write, runEndPass});

}  // namespace
}  // namespace braxcfg::tool
