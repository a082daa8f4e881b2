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
#include "dialogs/new_device.h"
#include "dialogs/ready_auto_config.h"
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
};

Outcome openNewDevice(const std::string& prefix) {
    dialogs::CNewDevice dialog(nullptr);
    dialog.m_prefix = prefix;
    const int result = dialog.doModal();
    return {result, result == ui::kIdOk ? dialog.m_deviceName + "\n" : std::string()};
}

Outcome openChoice(const std::string& intf) {
    dialogs::CConfigChoice dialog(nullptr);
    dialog.m_intfName = intf;
    dialog.m_choice = 0;
    const int result = dialog.doModal();
    // The set-up workflow reads the choice however the dialog was closed.
    return {result, std::to_string(dialog.m_choice) + "\n"};
}

Outcome openReady(const std::string& intf) {
    dialogs::CReadyAutoConfig dialog(nullptr);
    dialog.m_intfName = intf;
    return {dialog.doModal(), std::string()};
}

struct DialogKind {
    const char* name;
    const char* option;  // the one value the dialog needs
    Outcome (*open)(const std::string& value);
};

constexpr DialogKind kDialogs[] = {
    {"new-device", "--prefix", openNewDevice},
    {"choice", "--intf", openChoice},
    {"ready", "--intf", openReady},
};

int runDialog(const Args& args) {
    SplitArgs split;
    std::string error;
    if (!splitArgs(args, {}, {"--prefix", "--intf", "--screenshot"}, split, error, {{"--screenshot"}}))
        return fail(error);
    if (split.operands.size() != 1) return fail("expected one dialog: new-device, choice or ready");
    const DialogKind* kind = nullptr;
    for (const DialogKind& candidate : kDialogs)
        if (split.operands[0] == candidate.name) kind = &candidate;
    if (kind == nullptr) return fail("unknown dialog '" + forStderr(split.operands[0]) + "'");
    const std::string value = optionValue(split, kind->option);
    if (value.empty()) return fail(std::string(kind->name) + " needs " + kind->option);
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
        kind->open(value);
        return instead.saved() ? 0 : fail("cannot write " + screenshot);
    }
    const Outcome outcome = kind->open(value);
    std::cout << forStdout(outcome.printed, "\n");
    return outcome.result == ui::kIdOk ? 0 : kExitCancel;
}

const CommandRegistration kDialog(
    {"dialog", "open one dialog to try it, or save its picture",
     "usage: braxcfg dialog new-device --prefix PREFIX [--screenshot FILE]\n"
     "       braxcfg dialog choice --intf VISANAME [--screenshot FILE]\n"
     "       braxcfg dialog ready --intf VISANAME [--screenshot FILE]\n"
     "Opens the dialog as the plug-in would and waits for a person.\n"
     "  new-device  the new device dialog for an interface prefix such as GPIB0::;\n"
     "              prints the device name after OK\n"
     "  choice      the configuration choice for an interface such as GPIB0, preset to\n"
     "              the recommended method; prints the chosen method 0, 1 or 2\n"
     "  ready       the question before an auto configuration of the interface\n"
     "Exit 0 on OK or Continue, 1 on Cancel.\n"
     "--screenshot FILE  save the dialog as a PNG and close it at once (no display needed).\n",
     StoreUse::None, runDialog});

}  // namespace
}  // namespace braxcfg::tool
