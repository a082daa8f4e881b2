// edit INTF: the plug-in's device list for the interface (editVisaIntf).
// configure INTF: the choice of how its devices are found, and that method.
// Both open dialogs for a person and need a display.
#include <iostream>

#include "command.h"
#include "config_window_logic.h"
#include "entry/braxcfg_app.h"
#include "interface_keys.h"
#include "platform/registry.h"
#include "plugin.h"
#include "store/config_store.h"
#include "ui/host_owner.h"

namespace braxcfg::tool {
namespace {

constexpr int kExitNegative = 1;

// The one interface key a command works on, checked; its exit code when refused.
std::optional<int> takeInterface(const ParsedArgs& split, const char* command, std::string& intf) {
    if (split.operands.size() != 1)
        return fail(std::string(command) + " needs one interface key name, such as INTF0");
    intf = split.operands[0];
    return refuseInterfaceKey(intf);
}

int noDisplay(const char* command) { return fail(std::string(command) + " opens a dialog: no display (set DISPLAY)"); }

int runEdit(const ParsedArgs& args) {
    std::string intf;
    if (const auto refused = takeInterface(args, "edit", intf)) return *refused;
    Plugin plugin;
    auto* editable = plugin.get<int(const char*)>("isVisaIntfEditable");
    auto* edit = plugin.get<void(HWND, const char*)>("editVisaIntf");
    if (editable == nullptr || edit == nullptr) return fail(plugin.error());
    if (editable(intf.c_str()) == 0) {
        std::cerr << "braxcfg: " << intf << " has no device list to edit (editable are valid GPIB, VXI, GPIB-VXI "
                  << "and TCPIP interfaces, while the product's VISA is present)\n";
        return kExitNegative;
    }
    if (!ui::displayAvailable()) return noDisplay("edit");
    edit(nullptr, intf.c_str());
    return 0;
}

int runConfigure(const ParsedArgs& args) {
    std::string intf;
    if (const auto refused = takeInterface(args, "configure", intf)) return *refused;
    // The choice flow has no export: the tool runs the plug-in's own code.
    entry::CBraxcfgApp app;
    if (!isAddressBased(platform::Registry(intf, platform::kRegOpenExisting).getString("VISAIntfType"))) {
        std::cerr << "braxcfg: " << intf << " is not a GPIB, VXI or GPIB-VXI interface; 'braxcfg edit " << intf
                  << "' edits its devices\n";
        return kExitNegative;
    }
    if (!ui::displayAvailable()) return noDisplay("configure");
    app.ConfigureByChoice(entry::HostWindow(), intf);
    return 0;
}

const CommandRegistration kEdit({"edit", "edit an interface's devices in the plug-in's dialog (plug-in export)",
                                 "usage: braxcfg edit INTF\n"
                                 "Calls editVisaIntf: opens the device list of a GPIB, VXI or GPIB-VXI interface,\n"
                                 "or the list of LAN resources of a TCPIP interface, for a person to edit; OK\n"
                                 "writes the list. Exit 1 when the interface is not editable.\n",
                                 StoreUse::Write, runEdit});
const CommandRegistration kConfigure(
    {"configure", "choose how an interface's devices are found, and do it",
     "usage: braxcfg configure INTF\n"
     "For a GPIB, VXI or GPIB-VXI interface: asks whether to identify its devices now,\n"
     "at run time or by hand, sets the interface up so and opens what that method needs\n"
     "(the auto configuration, the device list). Exit 1 for other interface types.\n",
     StoreUse::Write, runConfigure});

}  // namespace
}  // namespace braxcfg::tool
