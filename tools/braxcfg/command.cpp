#include "command.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "platform/store.h"
#include "tool_text.h"
#include "visacore/probe_timeout.h"

namespace braxcfg::tool {
namespace {

std::vector<Command>& table() {
    static std::vector<Command> commands;
    return commands;
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

OptionSpec millisecondsTimeout() {
    static const std::string range = "takes milliseconds from 1 to " + std::to_string(visa::kMaxProbeTimeout.count());
    return {"--timeout", "MS", "give up after MS milliseconds", false, 1, visa::kMaxProbeTimeout.count(), range.c_str()};
}

std::string optionValue(const ParsedArgs& args, const std::string& name) {
    const std::vector<std::string> values = optionValues(args, name);
    return values.empty() ? std::string() : values.back();
}

bool hasOption(const ParsedArgs& args, const std::string& name) {
    return std::any_of(args.options.begin(), args.options.end(),
                       [&](const GivenOption& given) { return given.name == name; });
}

std::vector<std::string> optionValues(const ParsedArgs& args, const std::string& name) {
    std::vector<std::string> values;
    for (const GivenOption& given : args.options)
        if (given.name == name) values.push_back(given.value);
    return values;
}

}  // namespace braxcfg::tool

namespace braxcfg::tool {

bool parseWholeNumber(const std::string& text, long long min, long long max, long long& value) {
    if (text.empty() || text.size() > 12 || text.find_first_not_of("0123456789") != std::string::npos) return false;
    value = std::stoll(text);
    return value >= min && value <= max;
}

}  // namespace braxcfg::tool
