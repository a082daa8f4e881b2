#pragma once
// Reading the tool's command line: the tool's own options (--store,
// --version, --help), then one command word with its options and operands
// as the command table declares them.
#include <iosfwd>
#include <optional>
#include <string>

#include "command.h"

namespace braxcfg::tool {

struct CommandLine {
    std::string store;  // --store PATH; empty when not given
    const Command* command = nullptr;
    ParsedArgs args;
};

// Reads `words`, the arguments after the program name. Nothing when a
// command is to run (`out` names it, or holds none when the line names no
// command); otherwise the exit code, after
// printing what was asked for (help, version) or what is wrong with the
// line: 0 for help and version, kExitError for a mistake.
std::optional<int> readCommandLine(const Args& words, CommandLine& out);

// The tool's usage and its commands, one line each.
void printOverview(std::ostream& out);

}  // namespace braxcfg::tool
