// dialog new-device | choice | ready: opens one dialog by itself, for a
// person to try or, with --screenshot, to save its picture.
#include <QApplication>
#include <QDialog>
#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>

#include "command.h"
#include "tool_text.h"
#include "dialogs/config_choice.h"
#include "dialogs/done_auto_config.h"
#include "dialogs/new_device.h"
#include "dialogs/ready_auto_config.h"
#include "dialogs/show_devices.h"
#include "plugin.h"
#include "store/config_store.h"
#include "tcpip/tcpipnewdev.h"
#include "tcpip/tcpipshowdev.h"
#include "ui/dialog_ids.h"
#include "ui/host_owner.h"
#include "ui/modal.h"
#include "ui/screenshot.h"
#include "visacore/visa_types.h"

namespace braxcfg::tool {
namespace {

constexpr int kExitCancel = 1;

// While it lives, every modal run shows its dialog just long enough to save
// its picture, and ends it with Cancel.
class ScreenshotInstead {
public:
    explicit ScreenshotInstead(std::string path) : path_(std::move(path)) {
        previous_ = ui::setModalHandler([this](QDialog& dialog) {
            dialog.show();
            saved_ = ui::saveScreenshot(dialog, path_);
            dialog.hide();
            return ui::kIdCancel;
        });
    }
    ~ScreenshotInstead() { ui::setModalHandler(std::move(previous_)); }
    ScreenshotInstead(const ScreenshotInstead&) = delete;
    ScreenshotInstead& operator=(const ScreenshotInstead&) = delete;
    bool saved() const { return saved_; }

private:
    std::string path_;
    bool saved_ = false;
    ui::ModalHandler previous_;
};

struct Outcome {
    int result;
    std::string printed;  // what a person reads after the run
    std::string error = {};  // why the dialog could not be opened
};

// What one dialog is opened with: the value of its option or its operand,
// and --list.
struct DialogInput {
    std::string value;
    bool list = false;
    const ParsedArgs* split = nullptr;  // for a dialog's further options
};

Outcome openNewDevice(const DialogInput& input) {
    const std::string& prefix = input.value;
    dialogs::CNewDevice dialog(nullptr);
    dialog.m_prefix = prefix;
    const int result = dialog.doModal();
    return {result, result == ui::kIdOk ? dialog.m_deviceName + "\n" : std::string()};
}

Outcome openChoice(const DialogInput& input) {
    const std::string& intf = input.value;
    dialogs::CConfigChoice dialog(nullptr);
    dialog.m_intfName = intf;
    dialog.m_choice = 0;
    const int result = dialog.doModal();
    // The set-up workflow reads the choice however the dialog was closed.
    return {result, std::to_string(dialog.m_choice) + "\n"};
}

Outcome openReady(const DialogInput& input) {
    const std::string& intf = input.value;
    dialogs::CReadyAutoConfig dialog(nullptr);
    dialog.m_intfName = intf;
    return {dialog.doModal(), std::string()};
}

// The device list of an interface as the plug-in opens it: editable, auto
// add allowed. OK writes the store.
Outcome openDevices(const DialogInput& input) {
    const store::ConfigStore store;
    std::string rsrcType;
    store.GetIntfType(input.value, rsrcType);
    dialogs::CShowDevices dialog(nullptr);
    dialog.Init(store, input.value, store.GetVisaName(input.value), rsrcType, true, true);
    return {dialog.doModal(), std::string()};
}

// The search's result dialog. Store mode writes the new devices; list mode
// works on a device list holding the stored devices, and writes nothing.
Outcome openAutoConfig(const DialogInput& input) {
    const store::ConfigStore store;
    const std::string visaName = store.GetVisaName(input.value);
    dialogs::CShowDevices deviceList(nullptr);
    dialogs::CDoneAutoConfig dialog(nullptr);
    if (input.list) {
        deviceList.Init(store, input.value, visaName, "INSTR", true, true);
        int position = 0;
        for (const std::string& device : store.GetDeviceNames(input.value))
            deviceList.m_deviceList.insertString(position++, device);
        dialog.InitListMode(deviceList, input.value, visaName);
    } else {
        dialog.InitStoreMode(store, input.value, visaName);
    }
    return {dialog.doModal(), std::string()};
}

// The LAN resource list of a TCPIP interface, as the plug-in opens it for
// an interface the user may edit; OK writes its devices and aliases.
Outcome openTcpip(const DialogInput& input) {
    const store::ConfigStore config;
    if (config.GetIntfType(input.value) != visa::VI_INTF_TCPIP)
        return {kExitError, std::string(), input.value + " is not a TCPIP interface"};
    tcpip::tcpipshowdev dialog(nullptr);
    dialog.Init(&config, input.value, config.GetVisaName(input.value), true, 1);
    return {dialog.doModal(), std::string()};
}

// The add/edit dialog of one LAN resource. A list that is never shown owns
// it, so that Test works as it does from the list.
Outcome openTcpipResource(const DialogInput& input) {
    tcpip::tcpipshowdev owner(nullptr);
    tcpip::tcpipnewdev dialog(&owner, nullptr);
    dialog.m_prefix = input.value;
    dialog.m_host = optionValue(*input.split, "--host");
    dialog.m_device = optionValue(*input.split, "--device");
    dialog.m_alias = optionValue(*input.split, "--alias");
    const int result = dialog.doModal();
    if (result != ui::kIdOk) return {result, std::string()};
    return {result, dialog.m_bareResource + "::" + dialog.m_rsrcClass + "\n" + dialog.m_alias + "\n"};
}

struct DialogKind {
    const char* name;
    // The option holding the one value the dialog needs; null when it is
    // the operand after the dialog's name (an interface key name).
    const char* option;
    Outcome (*open)(const DialogInput& input);
};

constexpr DialogKind kDialogs[] = {
    {"new-device", "--prefix", openNewDevice},   {"choice", "--intf", openChoice},
    {"ready", "--intf", openReady},              {"devices", nullptr, openDevices},
    {"autoconfig", nullptr, openAutoConfig},     {"tcpip", nullptr, openTcpip},
    {"tcpip-resource", "--prefix", openTcpipResource},
};

// The interface a store-backed dialog opens, checked before any window.
int prepareInterface(const std::string& intf) {
    if (const int rc = prepareStore(StoreUse::Write); rc != 0) return rc;
    if (!store::ConfigStore().IsValidVisaIntf(intf))
        return fail(intf + " is not a valid VISA interface (no \"VISAName\")");
    addPluginFolderToModulePath();
    return 0;
}

int runDialog(const ParsedArgs& split) {
    if (split.operands.empty())
        return fail("expected one dialog: new-device, choice, ready, devices, autoconfig, tcpip or tcpip-resource");
    const DialogKind* kind = nullptr;
    for (const DialogKind& candidate : kDialogs)
        if (split.operands[0] == candidate.name) kind = &candidate;
    if (kind == nullptr) return fail("unknown dialog '" + forStderr(split.operands[0]) + "'");
    DialogInput input;
    input.list = hasOption(split, "--list");
    input.split = &split;
    if (kind->option != nullptr) {
        if (split.operands.size() != 1) return fail("unexpected operands");
        input.value = optionValue(split, kind->option);
        if (input.value.empty()) return fail(std::string(kind->name) + " needs " + kind->option);
    } else {
        if (split.operands.size() != 2) return fail(std::string(kind->name) + " needs an interface key name, such as INTF0");
        input.value = split.operands[1];
        if (const int rc = prepareInterface(input.value); rc != 0) return rc;
    }
    if (input.list && std::string(kind->name) != "autoconfig") return fail("--list belongs to 'dialog autoconfig'");
    const std::string screenshot = optionValue(split, "--screenshot");

    // A picture needs no display.
    if (!screenshot.empty() && std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    if (!ui::displayAvailable()) return fail("no display to show the dialog on; set DISPLAY or use --screenshot FILE");
    // The tool is the host here: its application lives for this command.
    int argc = 1;
    char name[] = "braxcfg";
    char* argv[] = {name, nullptr};
    QApplication application(argc, argv);

    if (!screenshot.empty()) {
        const ScreenshotInstead instead(screenshot);
        const Outcome outcome = kind->open(input);
        if (!outcome.error.empty()) return fail(outcome.error);
        return instead.saved() ? 0 : fail("cannot write " + screenshot);
    }
    const Outcome outcome = kind->open(input);
    if (!outcome.error.empty()) return fail(outcome.error);
    std::cout << forStdout(outcome.printed, "\n");
    return outcome.result == ui::kIdOk ? 0 : kExitCancel;
}

const CommandRegistration kDialog(
    {"dialog", "open one dialog to try it, or save its picture",
     "usage: braxcfg dialog new-device --prefix PREFIX [--screenshot FILE]\n"
     "       braxcfg dialog choice --intf VISANAME [--screenshot FILE]\n"
     "       braxcfg dialog ready --intf VISANAME [--screenshot FILE]\n"
     "       braxcfg dialog devices INTF [--screenshot FILE]\n"
     "       braxcfg dialog autoconfig INTF [--list] [--screenshot FILE]\n"
     "       braxcfg dialog tcpip INTF [--screenshot FILE]\n"
     "       braxcfg dialog tcpip-resource --prefix PREFIX [--host H] [--device D] [--alias A]\n"
     "                                     [--screenshot FILE]\n"
     "Opens the dialog as the plug-in would and waits for a person.\n"
     "  new-device  the new device dialog for an interface prefix such as GPIB0::;\n"
     "              prints the device name after OK\n"
     "  choice      the configuration choice for an interface such as GPIB0, preset to\n"
     "              the recommended method; prints the chosen method 0, 1 or 2\n"
     "  ready       the question before an auto configuration of the interface\n"
     "  devices     the device list of interface INTF (such as INTF0); OK writes it\n"
     "  autoconfig  runs the auto-configuration search of INTF and shows its result; the new\n"
     "              devices are written, or with --list only added to an unseen device list\n"
     "  tcpip       the LAN resource list of the TCPIP interface INTF (such as INTF2); OK\n"
     "              writes its devices and aliases\n"
     "  tcpip-resource  the add/edit dialog of one LAN resource for a prefix such as\n"
     "              TCPIP0::, with the fields preset; prints the resource string and the\n"
     "              alias (an empty line when none) after OK; writes nothing\n"
     "Exit 0 on OK or Continue, 1 on Cancel, 2 when the dialog cannot be opened.\n",
     StoreUse::None, runDialog,
     {{"--list", nullptr, "autoconfig: only add the new devices to an unseen device list"},
      {"--prefix", "PREFIX", "the interface prefix (new-device, tcpip-resource)"},
      {"--intf", "VISANAME", "the interface's VISA name (choice, ready)"},
      {"--host", "H", "the preset host (tcpip-resource)"},
      {"--device", "D", "the preset device name (tcpip-resource)"},
      {"--alias", "A", "the preset alias (tcpip-resource)"},
      {"--screenshot", "FILE", "save the dialog as a PNG and close it at once (no display needed)", true}}});

}  // namespace
}  // namespace braxcfg::tool
