// setup INTF: silent first set-up of an interface (setupVisaIntf).
// end-pass: the end of a configuration pass (doVisaEndStuff).
// Both go through the loaded plug-in with no owner window, as a host calls
// them.
#include "command.h"
#include "interface_keys.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "plugin.h"
#include "store/config_store.h"
#include "visacore/config/reg_visa_config.h"
#include "visacore/interface_types.h"

namespace braxcfg::tool {
namespace {

// The exports return nothing: a change the plug-in could not write (store
// busy, disk full) shows only on its debug output. So the tool makes sure
// first that the store takes a change now, and afterwards that the change
// is there.
int storeTakesChanges() {
    const platform::StoreTransaction probe;  // rolled back at once
    return probe.active() ? 0 : fail(probe.failureMessage());
}

bool isSetUp(const store::ConfigStore& store, const std::string& intf) {
    return !store.IsValidVisaIntf(intf) || store.GetIntfType(intf) == visa::kIntfUnknown ||
           store.IsVisaIntfSetup(intf);
}

int checkWritten(const std::vector<std::string>& intfs) {
    const store::ConfigStore store;
    bool written = platform::Registry("VISAInfo", platform::kRegOpenExisting).isOpen();
    for (const std::string& intf : intfs) written = written && isSetUp(store, intf);
    if (written) return 0;
    return fail("the plug-in could not write the store " + platform::currentStoreStatus().path +
                " (busy or the disk is full); try again");
}

// The interfaces an end of pass sets up: those with a key, up to the highest number.
std::vector<std::string> passInterfaces() {
    const int max = store::ConfigStore().GetMaxIntfNum();
    std::vector<std::string> intfs;
    for (const int n : *visa::existingIntfNumbers())
        if (n <= max) intfs.push_back("INTF" + std::to_string(n));
    return intfs;
}

int runSetup(const ParsedArgs& split) {
    if (split.operands.size() != 1) return fail("setup needs one interface key name, such as INTF0");
    if (const auto refused = refuseInterfaceKey(split.operands[0])) return *refused;
    Plugin plugin;
    if (!plugin.loaded()) return fail(plugin.error());
    auto* setup = plugin.get<void(HWND, const char*)>("setupVisaIntf");
    if (setup == nullptr) return fail(plugin.error());
    if (const int rc = storeTakesChanges(); rc != 0) return rc;
    setup(nullptr, split.operands[0].c_str());
    return checkWritten({split.operands[0]});
}

int runEndPass(const ParsedArgs& split) {
    if (!split.operands.empty()) return fail("end-pass takes no operands");
    Plugin plugin;
    if (!plugin.loaded()) return fail(plugin.error());
    auto* endPass = plugin.get<void(HWND)>("doVisaEndStuff");
    if (endPass == nullptr) return fail(plugin.error());
    if (const int rc = storeTakesChanges(); rc != 0) return rc;
    endPass(nullptr);
    return checkWritten(passInterfaces());
}

const CommandRegistration kSetup({"setup", "set a new interface up silently (plug-in export)",
                                  "usage: braxcfg setup INTF\n"
                                  "Calls setupVisaIntf: an interface not yet set up is marked set up, with its\n"
                                  "devices identified at run time (serial: as intfcfg.ini says; TCPIP: kept in\n"
                                  "the store). Writes the VISA information block first. Prints nothing; exits 2\n"
                                  "when the store could not take the change (busy, disk full).\n",
                                  StoreUse::Write, runSetup});
const CommandRegistration kEndPass({"end-pass", "end a configuration pass (plug-in export)",
                                    "usage: braxcfg end-pass\n"
                                    "Calls doVisaEndStuff: writes the VISA information block, renames every valid\n"
                                    "interface's entries after its VISA name and sets up any interface not yet set\n"
                                    "up. Prints nothing; exits 2 when the store could not take the changes.\n",
                                    StoreUse::Write, runEndPass});

}  // namespace
}  // namespace braxcfg::tool
