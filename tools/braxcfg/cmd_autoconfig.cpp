// autoconfig INTF [--json] [--dry-run]: the auto-configuration search of one
// interface without a window, in store mode: the new devices are written as
// device entries (not with --dry-run).
#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "command.h"
#include "tool_json.h"
#include "interface_keys.h"
#include "dialogs/done_auto_config_logic.h"
#include "platform/cp1252.h"
#include "platform/store.h"
#include "plugin.h"
#include "store/config_store.h"
#include "tool_text.h"

namespace braxcfg::tool {
namespace {

// --dry-run: what the store knows, plus what this search found so far, so a
// device reported twice is still listed once; nothing is written.
class DryRunDevices : public dialogs::AutoConfigDevices {
public:
    DryRunDevices(const store::ConfigStore& store, std::string intf) : stored_(store, std::move(intf)) {}
    std::vector<std::string> knownDevices() const override {
        std::vector<std::string> known = stored_.knownDevices();
        known.insert(known.end(), found_.begin(), found_.end());
        return known;
    }
    void addNewDevice(const std::string& name) override { found_.push_back(name); }

private:
    dialogs::StoreDevices stored_;
    std::vector<std::string> found_;
};

Json jsonList(const std::vector<std::string>& names) {
    Json list = Json::array();
    for (const std::string& name : names) list.push_back(jsonText(name));
    return list;
}

void printText(const std::string& intf, const std::string& visaName, const dialogs::AutoConfigResult& result,
               bool dryRun) {
    std::cout << "Known devices on " << forStdout(intf) << " (" << forStdout(visaName) << "):\n";
    for (const std::string& name : result.knownDevices) std::cout << "  " << forStdout(name) << "\n";
    if (result.knownDevices.empty()) std::cout << "  none\n";
    std::cout << (dryRun ? "New devices (not written, --dry-run):\n" : "New devices:\n");
    for (const std::string& name : result.newDevices) std::cout << "  " << forStdout(name) << "\n";
    if (result.newDevices.empty()) std::cout << "  none\n";
}

int runAutoconfig(const ParsedArgs& split) {
    if (split.operands.size() != 1) return fail("autoconfig needs one interface key name, such as INTF0");
    const std::string& intf = split.operands[0];
    const bool dryRun = hasOption(split, "--dry-run");
    if (const auto refused = refuseInterfaceKey(intf)) return *refused;
    const store::ConfigStore store;
    if (!store.IsValidVisaIntf(intf)) return fail(intf + " is not a valid VISA interface (no \"VISAName\")");
    if (!dryRun && !platform::currentStoreStatus().writable)
        return fail("the store " + platform::currentStoreStatus().path + " is not writable by this user");
    // Found devices are written at once; without a device list they would be lost.
    if (!dryRun)
        if (const auto refused = refuseWithoutDeviceList(intf)) return *refused;
    addPluginFolderToModulePath();

    const std::string visaName = store.GetVisaName(intf);
    dialogs::StoreDevices storeDevices(store, intf);
    DryRunDevices dryRunDevices(store, intf);
    dialogs::AutoConfigDevices& devices =
        dryRun ? static_cast<dialogs::AutoConfigDevices&>(dryRunDevices) : storeDevices;
    std::vector<std::string> messages;
    dialogs::AutoConfigReport report;
    report.showMessage = [&messages](const std::string& text) { messages.push_back(text); };
    // A long search shows that it is still going, one line per device.
    if (isatty(STDERR_FILENO))
        report.newDeviceFound = [](const std::string& name) { std::cerr << "found " << forStderr(name) << std::endl; };
    const dialogs::AutoConfigResult result = dialogs::runAutoConfigSearch(intf, visaName, devices, report);

    if (hasOption(split, "--json")) {
        const Json out = {{"interface", jsonText(intf)},
                          {"visaName", jsonText(visaName)},
                          {"known", jsonList(result.knownDevices)},
                          {"new", jsonList(result.newDevices)},
                          {"written", !dryRun},
                          {"errors", jsonList(messages)}};
        printJson(out);
    } else {
        printText(intf, visaName, result, dryRun);
    }
    for (const std::string& message : messages) std::cerr << "braxcfg: " << forStderr(message) << "\n";
    return messages.empty() ? 0 : kExitError;
}

const CommandRegistration kAutoconfig(
    {"autoconfig", "search an interface for new devices and add them",
     "usage: braxcfg autoconfig INTF [--json] [--dry-run]\n"
     "Runs the auto-configuration search of interface INTF (such as INTF0) through the\n"
     "auto-configuration module, as the plug-in does without its dialogs: prints the devices\n"
     "known before and the new ones (newest first) and writes the new ones as device entries.\n"
     "On a terminal, each device is shown on stderr as it is found.\n"
     "Exit 0; 2 when the search ended with an error (the devices found before it are kept).\n",
     StoreUse::Read, runAutoconfig,
     {{"--json", nullptr, "print {interface, visaName, known, new, written, errors} as JSON"}, {"--dry-run", nullptr, "search and print, but write nothing"}}});

}  // namespace
}  // namespace braxcfg::tool
