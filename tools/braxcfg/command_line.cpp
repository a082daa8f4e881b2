#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>

#include "braxcfg_version.h"
#include "tool_text.h"

namespace braxcfg::tool {
namespace {

// The option a message of the parser is about: "--timeout" from
// "--timeout: ...".
std::string optionOf(const std::string& message) { return message.substr(0, message.find(':')); }

// One command's options as the parser knows them.
struct CommandOptions {
    const Command* command = nullptr;
    CLI::App* app = nullptr;
    std::vector<std::pair<const OptionSpec*, CLI::Option*>> options;
    std::vector<std::string> operands;
};

CLI::Validator rangeCheck(const OptionSpec& declaration) {
    return CLI::Validator(
        [&declaration](std::string& value) -> std::string {
            long long number = 0;
            return parseWholeNumber(value, declaration.min, declaration.max, number) ? std::string() : declaration.rangeText;
        },
        std::to_string(declaration.min) + ".." + std::to_string(declaration.max));
}

void declare(CLI::App& tool, const Command& command, CommandOptions& out) {
    out.command = &command;
    out.app = tool.add_subcommand(command.name, command.summary);
    out.app->footer(command.usage);
    for (const OptionSpec& declaration : command.options) {
        CLI::Option* option = declaration.value == nullptr ? out.app->add_flag(declaration.name) : out.app->add_option(declaration.name);
        option->description(declaration.help);
        if (declaration.value != nullptr) {
            option->type_name(declaration.value)->expected(1)->allow_extra_args(false);
            option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        }
        if (declaration.rangeText != nullptr) option->check(rangeCheck(declaration));
        out.options.emplace_back(&declaration, option);
    }
    out.app->add_option("operands", out.operands, "the command's operands; after \"--\" even one that starts with \"-\"")
        ->type_name("ARG");
}

// Converts what the parser read, and the operands after "--" (`marked`),
// into the command's arguments. False, with
// `error`, for an argument that cannot be system text or an option given
// twice that takes one value.
bool collect(const CommandOptions& declared, const std::vector<std::string>& marked, ParsedArgs& out,
             std::string& error) {
    for (const auto& [declaration, option] : declared.options) {
        if (option->count() == 0) continue;
        if (declaration->value == nullptr) {
            // The parser takes "--json=x" as a flag with the value x.
            for (const std::string& value : option->results())
                if (value != "true") {
                    error = std::string("option ") + declaration->name + " takes no value";
                    return false;
                }
            out.options.push_back({declaration->name, {}});
            continue;
        }
        const std::vector<std::string>& values = option->results();
        if (values.size() > 1 && !declaration->repeats) {
            error = std::string("option ") + declaration->name + " given more than once";
            return false;
        }
        for (const std::string& value : values) {
            GivenOption given{declaration->name, value};
            if (!declaration->path && !toSystemText(value, given.value, error)) return false;
            out.options.push_back(std::move(given));
        }
    }
    std::vector<std::string> operands = declared.operands;
    operands.insert(operands.end(), marked.begin(), marked.end());
    for (const std::string& operand : operands) {
        out.operands.emplace_back();
        if (declared.command->operandPaths)
            out.operands.back() = operand;
        else if (!toSystemText(operand, out.operands.back(), error))
            return false;
    }
    return true;
}

// One line naming what is wrong: the parser's words where they are clear,
// the tool's own where they were not.
std::string describe(const CLI::ParseError& error, const CLI::App& tool) {
    const std::string message = error.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        const std::vector<std::string> extras = tool.remaining(true);
        const std::string word = extras.empty() ? message : extras.front();
        if (!word.empty() && word[0] == '-') return "unknown option " + word;
        return "unknown command '" + word + "'";
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr && message.find("missing") != std::string::npos)
        return "option " + optionOf(message) + " needs a value";
    if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr)
        return optionOf(message) + " " + message.substr(std::min(message.size(), optionOf(message).size() + 2));
    return message;
}

// "--name=" with nothing after it, which the parser would answer by taking
// the next word as the value: the message for the first, or empty.
std::string emptyValue(Args::const_iterator word, Args::const_iterator end) {
    for (; word != end; ++word)
        if (word->size() > 3 && word->rfind("--", 0) == 0 && word->back() == '=') {
            const std::string name = word->substr(0, word->size() - 1);
            return "option " + name + (name == "--store" ? " needs a file name, not an empty one" : " needs a value");
        }
    return {};
}

}  // namespace

void printOverview(std::ostream& out) {
    out << "usage: braxcfg [--store PATH] COMMAND [ARGS...]\n"
           "       braxcfg --version\n\ncommands:\n";
    for (const Command& command : registeredCommands()) {
        std::string name = command.name;
        name.resize(std::max<std::size_t>(name.size(), 12), ' ');
        out << "  " << name << "  " << command.summary << "\n";
    }
    out << "\nThe store is PATH, else $BRAXCFG_STORE, else the machine-wide or per-user file.\n"
           "'braxcfg COMMAND --help' describes a command.\n";
}

// "help [COMMAND]" in the command's place, after any --store, reads as
// "[COMMAND] --help", so both ways of asking answer alike.
Args helpAsOption(Args words) {
    std::size_t at = 0;
    while (at < words.size() && words[at].rfind("--store", 0) == 0) at += words[at] == "--store" ? 2 : 1;
    if (at >= words.size() || words[at] != "help") return words;
    words.erase(words.begin() + static_cast<std::ptrdiff_t>(at));
    // An unknown word after "help" stays a command the parser refuses.
    const bool known = at == words.size() || std::any_of(registeredCommands().begin(), registeredCommands().end(),
                                                         [&](const Command& c) { return c.name == words[at]; });
    if (known) words.insert(words.begin() + static_cast<std::ptrdiff_t>(std::min(at + 1, words.size())), "--help");
    return words;
}

std::optional<int> readCommandLine(const Args& given, CommandLine& out) {
    if (given.empty()) return std::nullopt;
    const Args words = helpAsOption(given);
    // "--" ends the options: what follows it are the command's operands as
    // they are, so the parser sees only the words before it.
    const auto end = std::find(words.begin(), words.end(), "--");
    if (const std::string mistake = emptyValue(words.begin(), end); !mistake.empty()) return fail(mistake);
    CLI::App tool("the configuration tool that hosts the plug-in", "braxcfg");
    // --store may stand among a command's options too: what a command does
    // not know goes up to the tool.
    tool.fallthrough();
    tool.require_subcommand(0, 1);
    CLI::Option* store = tool.add_option("--store")
                             ->description("the store file")
                             ->type_name("PATH")
                             ->expected(1)
                             ->allow_extra_args(false)
                             ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    CLI::Option* version = tool.add_flag("--version")->description("print the version and exit");
    std::vector<CommandOptions> commands(registeredCommands().size());
    for (std::size_t i = 0; i < commands.size(); ++i) declare(tool, registeredCommands()[i], commands[i]);

    // The parser takes the words last first.
    std::vector<std::string> reversed(std::make_reverse_iterator(end), words.rend());
    const auto chosen = [&]() -> const CommandOptions* {
        for (const CommandOptions& command : commands)
            if (command.app->parsed()) return &command;
        return nullptr;
    };
    try {
        tool.parse(reversed);
    } catch (const CLI::CallForHelp&) {
        if (const CommandOptions* command = chosen())
            std::cout << command->app->help("braxcfg");
        else
            printOverview(std::cout);
        return 0;
    } catch (const CLI::ParseError& error) {
        const std::string message = describe(error, tool);
        if (message.rfind("unknown command", 0) == 0) printOverview(std::cerr);
        return fail(message);
    }

    const std::vector<std::string>& stores = store->results();
    if (stores.size() > 1) return fail("option --store given more than once");
    if (!stores.empty() && stores.front().empty()) return fail("option --store needs a file name, not an empty one");
    out.store = stores.empty() ? std::string() : stores.front();
    const CommandOptions* command = chosen();
    if (version->count() > 0) {
        if (command != nullptr) return fail("--version takes no arguments");
        // The version the build was configured with: the project's one version.
        std::cout << "braxcfg " BRAXCFG_VERSION_TEXT "\n";
        return 0;
    }
    if (command == nullptr) return end == words.end() ? std::nullopt : std::optional<int>(fail("\"--\" before a command"));
    out.command = command->command;
    std::string error;
    if (!collect(*command, {end == words.end() ? end : end + 1, words.end()}, out.args, error)) return fail(error);
    return std::nullopt;
}

}  // namespace braxcfg::tool
