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

// One option a command accepts. A flag has no value; a valued option takes
// "--name VALUE" or "--name=VALUE".
struct OptionSpec {
    const char* name;   // "--timeout"
    const char* value;  // its value's name in the help ("MS"), nullptr for a flag
    const char* help;   // one line for the command's help
    bool path = false;  // the value names a file and stays as the system gave it
    // A whole number from min to max, checked while the arguments are read;
    // `rangeText` ("takes milliseconds from 1 to 60000") says so when it is
    // not. No check when rangeText is nullptr.
    long long min = 0;
    long long max = 0;
    const char* rangeText = nullptr;
    bool repeats = false;  // may be given more than once
};

// A command's arguments after reading: the options given, in order, with
// their values (empty for a flag), and the operands. "--" ends the
// options; after it every argument is an operand, even an empty one or one
// that starts with "-". Values and operands are system text (cp1252, see
// tool_text.h) except those that name files.
struct GivenOption {
    std::string name;  // "--timeout"
    std::string value;
};

struct ParsedArgs {
    std::vector<GivenOption> options;
    std::vector<std::string> operands;
};

struct Command {
    const char* name;     // first word: "import", "rsrc", ...
    const char* summary;  // one line for the overview
    const char* usage;    // the forms and what the command does, for --help
    StoreUse store;
    // Receives the arguments after the command word, without --store.
    // Returns the exit code.
    int (*run)(const ParsedArgs& args);
    std::vector<OptionSpec> options = {};
    bool operandPaths = false;  // the operands name files
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

// --timeout MS: milliseconds from 1 to the longest a LAN probe may wait.
OptionSpec millisecondsTimeout();

// The value of a valued option (its last one), or empty/false when absent.
std::string optionValue(const ParsedArgs& args, const std::string& name);
bool hasOption(const ParsedArgs& args, const std::string& name);
// Every value of a repeatable option, in order.
std::vector<std::string> optionValues(const ParsedArgs& args, const std::string& name);

}  // namespace braxcfg::tool

namespace braxcfg::tool {

// A whole decimal number from `min` to `max` (no sign, no blanks).
bool parseWholeNumber(const std::string& text, long long min, long long max, long long& value);

}  // namespace braxcfg::tool
