// dialog new-device | choice | ready | tcpip | tcpip-resource: opens one
// dialog by itself, for a person to try or, with --screenshot, to save its
// picture.
#include <QApplication>
#include <QDialog>
#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>

#include "command.h"
#include "dialogs/config_choice.h"
#include "dialogs/new_device.h"
#include "dialogs/ready_auto_config.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "tcpip/tcpipnewdev.h"
#include "tcpip/tcpipshowdev.h"
#include "visacore/visa_types.h"
#include "ui/dialog_ids.h"
#include "ui/host_owner.h"
#include "ui/modal.h"
#include "ui/screenshot.h"

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
    std::string error;    // the dialog could not be opened
};

Outcome openNewDevice(const SplitArgs& split) {
    dialogs::CNewDevice dialog(nullptr);
    dialog.m_prefix = optionValue(split, "--prefix");
    const int result = dialog.doModal();
    return {result, result == ui::kIdOk ? dialog.m_deviceName + "\n" : std::string(), {}};
}

Outcome openChoice(const SplitArgs& split) {
    dialogs::CConfigChoice dialog(nullptr);
    dialog.m_intfName = optionValue(split, "--intf");
    dialog.m_choice = 0;
    const int result = dialog.doModal();
    // The set-up workflow reads the choice however the dialog was closed.
    return {result, std::to_string(dialog.m_choice) + "\n", {}};
}

Outcome openReady(const SplitArgs& split) {
    dialogs::CReadyAutoConfig dialog(nullptr);
    dialog.m_intfName = optionValue(split, "--intf");
    return {dialog.doModal(), std::string(), {}};
}

// The LAN resource list of a TCPIP interface, as the plug-in opens it for
// an interface the user may edit; OK writes the store.
Outcome openTcpip(const SplitArgs& split) {
    const std::string& intf = split.operands[1];
    platform::currentStore();
    if (const platform::StoreStatus& status = platform::currentStoreStatus();
        status.state != platform::StoreOpenState::Open)
        return {kExitError, {}, "cannot use the store " + status.path + ": " + status.error};
    const store::ConfigStore config;
    if (config.GetIntfType(intf) != visa::VI_INTF_TCPIP) return {kExitError, {}, intf + " is not a TCPIP interface"};
    tcpip::tcpipshowdev dialog(nullptr);
    dialog.Init(&config, intf, config.GetVisaName(intf), true, 1);
    return {dialog.doModal(), std::string(), {}};
}

// The add/edit dialog of one LAN resource. A list that is never shown owns
// it, so that Test works as it does from the list.
Outcome openTcpipResource(const SplitArgs& split) {
    tcpip::tcpipshowdev owner(nullptr);
    tcpip::tcpipnewdev dialog(&owner, nullptr);
    dialog.m_prefix = optionValue(split, "--prefix");
    dialog.m_host = optionValue(split, "--host");
    dialog.m_device = optionValue(split, "--device");
    dialog.m_alias = optionValue(split, "--alias");
    const int result = dialog.doModal();
    if (result != ui::kIdOk) return {result, std::string(), {}};
    return {result, dialog.m_bareResource + "::" + dialog.m_rsrcClass + "\n" + dialog.m_alias + "\n", {}};
}

struct DialogKind {
    const char* name;
    const char* needs;  // the option it needs, or "INTF" for an operand
    Outcome (*open)(const SplitArgs& split);
};

constexpr DialogKind kDialogs[] = {
    {"new-device", "--prefix", openNewDevice}, {"choice", "--intf", openChoice},
    {"ready", "--intf", openReady},            {"tcpip", "INTF", openTcpip},
    {"tcpip-resource", "--prefix", openTcpipResource},
};

int runDialog(const Args& args) {
    SplitArgs split;
    std::string error;
    if (!splitArgs(args, {}, {"--prefix", "--intf", "--host", "--device", "--alias", "--screenshot"}, split, error))
        return fail(error);
    if (split.operands.empty()) return fail("expected one dialog: new-device, choice, ready, tcpip or tcpip-resource");
    const DialogKind* kind = nullptr;
    for (const DialogKind& candidate : kDialogs)
        if (split.operands[0] == candidate.name) kind = &candidate;
    if (kind == nullptr) return fail("unknown dialog '" + split.operands[0] + "'");
    const bool needsOperand = std::string(kind->needs) == "INTF";
    if (split.operands.size() != (needsOperand ? 2u : 1u) || (!needsOperand && optionValue(split, kind->needs).empty()))
        return fail(std::string(kind->name) + " needs " + kind->needs);
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
        const Outcome outcome = kind->open(split);
        if (!outcome.error.empty()) return fail(outcome.error);
        return instead.saved() ? 0 : fail("cannot write " + screenshot);
    }
    const Outcome outcome = kind->open(split);
    if (!outcome.error.empty()) return fail(outcome.error);
    std::cout << outcome.printed;
    return outcome.result == ui::kIdOk ? 0 : kExitCancel;
}

const CommandRegistration kDialog(
    {"dialog", "open one dialog to try it, or save its picture",
     "usage: braxcfg dialog new-device --prefix PREFIX [--screenshot FILE]\n"
     "       braxcfg dialog choice --intf VISANAME [--screenshot FILE]\n"
     "       braxcfg dialog ready --intf VISANAME [--screenshot FILE]\n"
     "       braxcfg dialog tcpip INTF [--screenshot FILE]\n"
     "       braxcfg dialog tcpip-resource --prefix PREFIX [--host H] [--device D] [--alias A]\n"
     "                                     [--screenshot FILE]\n"
     "Opens the dialog as the plug-in would and waits for a person.\n"
     "  new-device  the new device dialog for an interface prefix such as GPIB0::;\n"
     "              prints the device name after OK\n"
     "  choice      the configuration choice for an interface such as GPIB0, preset to\n"
     "              the recommended method; prints the chosen method 0, 1 or 2\n"
     "  ready       the question before an auto configuration of the interface\n"
     "  tcpip       the LAN resource list of the TCPIP interface INTF (INTF2); OK writes\n"
     "              its devices and aliases to the store\n"
     "  tcpip-resource  the add/edit dialog of one LAN resource for a prefix such as\n"
     "              TCPIP0::, with the fields preset; prints the resource string and the\n"
     "              alias (an empty line when none) after OK; writes nothing\n"
     "Exit 0 on OK or Continue, 1 on Cancel, 2 when the dialog cannot be opened.\n"
     "--screenshot FILE  save the dialog as a PNG and close it at once (no display needed).\n",
     StoreUse::None, runDialog});

}  // namespace
}  // namespace braxcfg::tool
