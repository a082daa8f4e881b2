#pragma once
// The tool's command table. Each cmd_*.cpp defines its commands and
// registers them with a static CommandRegistration, so adding a command
// touches no other file.
#include <string>
#include <vector>

namespace braxcfg::tool {

enum class StoreUse {
    None,      // nothing is opened before the command runs: it never touches
               // the store, or calls prepareStore as its action needs
    ReadOnly,  // the command only reads: the store must exist, and is opened
               // read-only so that reading leaves no trace in it
    Read,      // the store must open (a missing one is made); a corrupt or
               // unreadable one is an error
    Write,     // as Read, and the user must be able to write it
};

using Args = std::vector<std::string>;

struct Command {
    const char* name;     // first word: "import", "rsrc", ...
    const char* summary;  // one line for the overview
    const char* usage;    // full --help text, options included
    StoreUse store;
    // Receives the arguments after the command name, without --store.
    // Returns the exit code.
    int (*run)(const Args& args);
};

class CommandRegistration {
public:
    explicit CommandRegistration(const Command& command);
};

const std::vector<Command>& registeredCommands();

// Exit code for errors of use, input and store, with the message on stderr.
inline constexpr int kExitError = 2;
int fail(const std::string& message);

// Opens the store as `use` needs it (nothing for StoreUse::None): the file
// `path`, or the one resolveStorePath() names when `path` is empty. 0, or
// kExitError after saying why the store cannot be used.
int prepareStore(StoreUse use, const std::string& path = "");

// "--" ends the options; after it every argument is an operand, even an
// empty one or one that starts with "-".
struct SplitArgs {
    std::vector<std::string> options;   // "--x" words before "--", with their values in place
    std::vector<std::string> operands;  // everything else, in order
};

// Arguments that name files: they stay as the system gave them, while every
// other operand and option value becomes system text (cp1252, see
// tool_text.h).
struct PathArgs {
    std::vector<std::string> options;  // options whose value is a path
    bool operands = false;             // the operands are paths
};

// Separates options from operands. `valued` lists the options that take a
// value ("--key"); their value is the next word. Unknown options, and an
// argument that cannot be system text, are an error reported through
// `error`.
bool splitArgs(const Args& args, const std::vector<std::string>& flags, const std::vector<std::string>& valued,
               SplitArgs& out, std::string& error, const PathArgs& paths = {});
// The value of a valued option, or empty/false when absent.
std::string optionValue(const SplitArgs& split, const std::string& name);
bool hasOption(const SplitArgs& split, const std::string& name);

}  // namespace braxcfg::tool

namespace braxcfg::tool {

// A whole decimal number from `min` to `max` (no sign, no blanks).
bool parseWholeNumber(const std::string& text, long long min, long long max, long long& value);

}  // namespace braxcfg::tool
