#include "command.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "platform/store.h"
#include "tool_text.h"

namespace braxcfg::tool {
namespace {

std::vector<Command>& table() {
    static std::vector<Command> commands;
    return commands;
}

bool contains(const std::vector<std::string>& list, const std::string& word) {
    return std::find(list.begin(), list.end(), word) != list.end();
}

// An argument as the command sees it: system text unless it names a file.
bool take(const std::string& word, bool isPath, std::vector<std::string>& into, std::string& error) {
    into.emplace_back();
    if (isPath) {
        into.back() = word;
        return true;
    }
    return toSystemText(word, into.back(), error);
}

}  // namespace

CommandRegistration::CommandRegistration(const Command& command) { table().push_back(command); }

const std::vector<Command>& registeredCommands() {
    auto& commands = table();
    std::sort(commands.begin(), commands.end(),
              [](const Command& a, const Command& b) { return std::string(a.name) < b.name; });
    return commands;
}

int prepareStore(StoreUse use, const std::string& path) {
    using namespace platform;
    if (use == StoreUse::None) return 0;
    if (path.empty() && std::getenv("BRAXCFG_STORE") != nullptr && *std::getenv("BRAXCFG_STORE") == '\0')
        return fail("BRAXCFG_STORE is set but empty; name a store file or unset it");
    const std::string file = path.empty() ? resolveStorePath() : path;
    const StoreStatus status =
        openStore(file, use == StoreUse::ReadOnly ? StoreAccess::ReadOnly : StoreAccess::Change);
    if (status.state != StoreOpenState::Open) return fail("cannot use the store " + file + ": " + status.error);
    if (use == StoreUse::Write && !status.writable)
        return fail("the store " + file + " is not writable by this user; run as its owner or pass --store PATH");
    return 0;
}

int fail(const std::string& message) {
    std::cerr << "braxcfg: " << message << "\n";
    return kExitError;
}

bool splitArgs(const Args& args, const std::vector<std::string>& flags, const std::vector<std::string>& valued,
               SplitArgs& out, std::string& error, const PathArgs& paths) {
    out = {};
    bool optionsEnded = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (optionsEnded || word.size() < 2 || word[0] != '-') {
            if (!take(word, paths.operands, out.operands, error)) return false;
        } else if (word == "--") {
            optionsEnded = true;
        } else if (contains(flags, word)) {
            out.options.push_back(word);
        } else if (contains(valued, word)) {
            if (i + 1 >= args.size()) {
                error = "option " + word + " needs a value";
                return false;
            }
            out.options.push_back(word);
            if (!take(args[++i], contains(paths.options, word), out.options, error)) return false;
        } else {
            error = "unknown option " + word;
            return false;
        }
    }
    return true;
}

std::string optionValue(const SplitArgs& split, const std::string& name) {
    for (std::size_t i = 0; i + 1 < split.options.size(); ++i)
        if (split.options[i] == name) return split.options[i + 1];
    return {};
}

bool hasOption(const SplitArgs& split, const std::string& name) { return contains(split.options, name); }

}  // namespace braxcfg::tool

namespace braxcfg::tool {

bool parseWholeNumber(const std::string& text, long long min, long long max, long long& value) {
    if (text.empty() || text.size() > 12 || text.find_first_not_of("0123456789") != std::string::npos) return false;
    value = std::stoll(text);
    return value >= min && value <= max;
}

}  // namespace braxcfg::tool
