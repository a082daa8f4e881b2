// braxcfg: the configuration tool that hosts the plug-in.
//   braxcfg [--store PATH] COMMAND [ARGS...]
//   braxcfg --version
#include <cstdlib>
#include <iostream>
#include <string>

#include "command.h"
#include "command_line.h"
#include "config_window_logic.h"

namespace {

const braxcfg::tool::Command* findCommand(const std::string& name) {
    for (const braxcfg::tool::Command& command : braxcfg::tool::registeredCommands())
        if (name == command.name) return &command;
    return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
    braxcfg::tool::CommandLine line;
    if (const auto done = braxcfg::tool::readCommandLine(braxcfg::tool::Args(argv + 1, argv + argc), line)) return *done;
    if (!line.store.empty()) {
        // The plug-in the tool loads reads the same store.
#ifdef _WIN32
        _putenv_s("BRAXCFG_STORE", line.store.c_str());
#else
        setenv("BRAXCFG_STORE", line.store.c_str(), 1);
#endif
    }
    if (line.command == nullptr) {
        // Without a command a person gets the configuration window, when one can be shown.
        line.command = braxcfg::tool::canShowWindows(std::getenv("QT_QPA_PLATFORM"), std::getenv("DISPLAY"),
                                                      std::getenv("WAYLAND_DISPLAY"))
                           ? findCommand("gui")
                           : nullptr;
        if (line.command == nullptr) {
            braxcfg::tool::printOverview(std::cout);
            return braxcfg::tool::kExitError;
        }
    }
    if (int rc = braxcfg::tool::prepareStore(line.command->store, line.store); rc != 0) return rc;
    return line.command->run(line.args);
}
