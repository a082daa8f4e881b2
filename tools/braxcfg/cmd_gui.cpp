// gui [--screenshot FILE]: the configuration window on the store.
// Without a command, braxcfg opens it too when there is a display.
#include <QApplication>
#include <cstdlib>

#include "command.h"
#include "config_window.h"
#include "plugin.h"
#include "ui/host_owner.h"
#include "ui/screenshot.h"

namespace braxcfg::tool {
namespace {

int runGui(const ParsedArgs& split) {
    if (!split.operands.empty()) return fail("gui takes no operands");
    const std::string screenshot = optionValue(split, "--screenshot");
    // A picture needs no display.
    if (!screenshot.empty() && std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    if (!ui::displayAvailable())
        return fail("no display to show the window on; set DISPLAY, or use the commands ('braxcfg --help')");
    Plugin plugin;
    if (!plugin.loaded()) return fail(plugin.error());
    int argc = 1;
    char name[] = "braxcfg";
    char* argv[] = {name, nullptr};
    QApplication application(argc, argv);
    ConfigWindow window(plugin);
    window.show();
    if (!screenshot.empty()) {
        // A picture is no configuration pass: the window is not closed.
        QApplication::processEvents();
        return ui::saveScreenshot(window, screenshot) ? 0 : fail("cannot write " + screenshot);
    }
    return application.exec();
}

const CommandRegistration kGui({"gui", "the configuration window (the default when there is a display)",
                                "usage: braxcfg gui [--screenshot FILE]\n"
                                "Opens the window that lists the store's interfaces with their devices:\n"
                                "add, remove, edit (the plug-in's device lists), configure (how devices\n"
                                "are found), import and export .reg files. Closing it ends the\n"
                                "configuration pass (doVisaEndStuff).\n",
                                StoreUse::Write, runGui,
                                {{"--screenshot", "FILE", "save the window as a PNG and quit (no display needed)", true}}});

}  // namespace
}  // namespace braxcfg::tool
