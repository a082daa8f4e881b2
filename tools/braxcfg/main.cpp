// braxcfg: the configuration tool that hosts the plug-in.
//   braxcfg [--store PATH] COMMAND [ARGS...]
//   braxcfg --version
#include <cstdlib>
#include <iostream>
#include <string>

#include "braxcfg_version.h"
#include "command.h"
#include "config_window_logic.h"

namespace {

using braxcfg::tool::Args;
using braxcfg::tool::Command;

void printOverview(std::ostream& out) {
    out << "usage: braxcfg [--store PATH] COMMAND [ARGS...]\n"
           "       braxcfg --version\n\ncommands:\n";
    for (const Command& command : braxcfg::tool::registeredCommands()) {
        std::string name = command.name;
        name.resize(std::max<std::size_t>(name.size(), 12), ' ');
        out << "  " << name << "  " << command.summary << "\n";
    }
    out << "\nThe store is PATH, else $BRAXCFG_STORE, else the machine-wide or per-user file.\n"
           "'braxcfg COMMAND --help' describes a command.\n";
}

const Command* findCommand(const std::string& name) {
    for (const Command& command : braxcfg::tool::registeredCommands())
        if (name == command.name) return &command;
    return nullptr;
}

// --help anywhere before "--" asks for the command's usage.
bool asksForHelp(const Args& args) {
    for (const std::string& word : args) {
        if (word == "--") return false;
        if (word == "--help" || word == "-h") return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    Args args(argv + 1, argv + argc);
    std::string storeOption;
    // --store may stand before the command or among its options.
    for (std::size_t i = 0; i < args.size() && args[i] != "--"; ++i) {
        if (args[i] == "--store") {
            if (i + 1 >= args.size()) return braxcfg::tool::fail("option --store needs a value");
            storeOption = args[i + 1];
            if (storeOption.empty()) return braxcfg::tool::fail("option --store needs a file name, not an empty one");
            args.erase(args.begin() + static_cast<long>(i), args.begin() + static_cast<long>(i) + 2);
            break;
        }
    }
    if (!storeOption.empty()) {
        // The plug-in the tool loads reads the same store.
#ifdef _WIN32
        _putenv_s("BRAXCFG_STORE", storeOption.c_str());
#else
        setenv("BRAXCFG_STORE", storeOption.c_str(), 1);
#endif
    }
    // Without a command a person gets the configuration window, when one can be shown.
    if (args.empty() && braxcfg::tool::canShowWindows(std::getenv("QT_QPA_PLATFORM"), std::getenv("DISPLAY"),
                                                       std::getenv("WAYLAND_DISPLAY")))
        args.emplace_back("gui");
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        printOverview(std::cout);
        return args.empty() ? braxcfg::tool::kExitError : 0;
    }
    if (args[0] == "--version") {
        if (args.size() != 1) return braxcfg::tool::fail("--version takes no arguments");
        // The version the build was configured with: the project's one version.
        std::cout << "braxcfg " BRAXCFG_VERSION_TEXT "\n";
        return 0;
    }
    const Command* command = findCommand(args[0]);
    if (command == nullptr) {
        printOverview(std::cerr);
        return braxcfg::tool::fail("unknown command '" + args[0] + "'");
    }
    const Args rest(args.begin() + 1, args.end());
    if (asksForHelp(rest)) {
        std::cout << command->usage;
        return 0;
    }
    if (int rc = braxcfg::tool::prepareStore(command->store, storeOption); rc != 0) return rc;
    return command->run(rest);
}
